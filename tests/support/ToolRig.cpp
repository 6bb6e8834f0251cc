#include "ToolRig.h"

#include "ProductBuilder.h"
#include "XmlProductIC.h"
#include "XmlRegisterWidget.h"
#include "XmlValueRegisterField.h"

#include <QMetaMethod>
#include <QPluginLoader>
#include <QSpinBox>
#include <QTest>
#include <QTimerEvent>
#include <QWheelEvent>

namespace {

const QStringList &registerNames()
{
    // Not in the order of their addresses in any chip: the position in this list makes the address.
    static const QStringList names = [] {
        QStringList all{QStringLiteral("M1_XTARGET"), QStringLiteral("M0_VACTUAL"),
                        QStringLiteral("RAMPMODE"),   QStringLiteral("M1_VACTUAL"),
                        QStringLiteral("M0_XACTUAL"), QStringLiteral("M1_VMAX"),
                        QStringLiteral("M0_XTARGET"), QStringLiteral("M0_VMAX"),
                        QStringLiteral("M1_XACTUAL")};
        for (const char *axis : {"M1_", "M0_"}) {
            for (const char *setting : {"D2", "AMAX", "V1", "DMAX", "A1", "V2", "D1", "A2"})
                all << QLatin1String(axis) + QLatin1String(setting);
        }
        return all;
    }();
    return names;
}

bool isReadOnly(const QString &name)
{
    return name.endsWith(QLatin1String("ACTUAL"));
}

bool isPosition(const QString &name)
{
    return name.contains(QLatin1String("_X"));
}

std::shared_ptr<XmlProductIC> makeProduct(const RigGaps &gaps)
{
    ProductBuilder builder;
    for (const QString &name : registerNames()) {
        if (gaps.registers.contains(name))
            continue;
        RegisterInfo info;
        info.name = name;
        info.address = ToolRig::address(name);
        info.writable = !isReadOnly(name);
        XmlValueRegister *reg = builder.addRegister(info);
        if (gaps.fields.contains(name))
            continue;
        FieldInfo field;
        field.identifier = name;
        field.name = name + QLatin1String(" field");
        field.width = isPosition(name) ? 24 : 32;
        field.isSigned = true;
        builder.addField(reg, field);
    }
    return builder.take();
}

int moduleNumber()
{
    static int number = 0;
    return ++number;
}

} // namespace

ToolsInterface *toolPrototype()
{
    static QPluginLoader loader(QStringLiteral(TOOL_MODULE_FILE));
    loader.setLoadHints(QLibrary::ResolveAllSymbolsHint);
    auto *prototype = qobject_cast<ToolsInterface *>(loader.instance());
    if (!prototype)
        qCritical("%s", qPrintable(loader.errorString()));
    return prototype;
}

void callEverySlot(QObject *tool)
{
    QString key = QStringLiteral("key");
    bool isVisible = true;
    QPointF point(10, 20);
    QPoint outer(1, -1);
    int number = 100;
    QEvent *event = nullptr;
    QWheelEvent wheel(QPointF(100, 100), QPointF(100, 100), QPoint(), QPoint(0, 120), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QWheelEvent *wheelPointer = &wheel;
    const QHash<QByteArray, void *> values{{"QString", &key},
                                           {"bool", &isVisible},
                                           {"QPointF", &point},
                                           {"QPoint", &outer},
                                           {"int", &number},
                                           {"QTimerEvent*", &event},
                                           {"QWheelEvent*", &wheelPointer}};
    const QMetaObject *meta = tool->metaObject();
    for (int i = meta->methodOffset(); i < meta->methodCount(); ++i) {
        void *arguments[] = {nullptr, nullptr, nullptr};
        const QList<QByteArray> types = meta->method(i).parameterTypes();
        for (int j = 0; j < types.size(); ++j)
            arguments[j + 1] = values.value(types.at(j));
        tool->qt_metacall(QMetaObject::InvokeMetaMethod, i, arguments);
    }
}

ToolRig::ToolRig(unsigned char motor, const RigGaps &gaps)
{
    const QString key = QStringLiteral("module-%1/").arg(moduleNumber());
    if (gaps.hasModule) {
        hostModule = std::make_unique<HostModule>(QStringLiteral("rig module"), key, &link);
        if (gaps.hasChip) {
            const std::shared_ptr<XmlProductIC> product = makeProduct(gaps);
            hostModule->setProduct(0, product);
            hostModule->setProduct(1, product);
            hostModule->setProduct(motor, product);
        }
    }
    for (const QString &name : registerNames()) {
        if (!isPosition(name) && !isReadOnly(name))
            setRegister(name, 1000);
    }
    working = toolPrototype()->clone(QStringLiteral("rig tool"), motor, hostModule.get());
}

ToolRig::~ToolRig()
{
    deleteTool();
}

void ToolRig::deleteTool()
{
    delete working.data();
}

void ToolRig::show()
{
    working->resize(900, 600);
    working->show();
    QVERIFY(QTest::qWaitForWindowExposed(working));
    working->showPlugin();
}

XmlRegisterWidget *ToolRig::registerWidget(const char *identifier) const
{
    const QString name = QLatin1String(identifier) + QLatin1String(" field");
    const QList<XmlRegisterWidget *> all = working->findChildren<XmlRegisterWidget *>();
    for (XmlRegisterWidget *candidate : all) {
        if (candidate->registerField() && candidate->registerField()->getName() == name)
            return candidate;
    }
    return nullptr;
}

QtCharts::QChartView *ToolRig::view() const
{
    return working->findChild<QtCharts::QChartView *>();
}

QtCharts::QValueAxis *ToolRig::axisX() const
{
    return qobject_cast<QtCharts::QValueAxis *>(chart()->axes(Qt::Horizontal).value(0));
}

QtCharts::QValueAxis *ToolRig::axisY() const
{
    return qobject_cast<QtCharts::QValueAxis *>(chart()->axes(Qt::Vertical).value(0));
}

QtCharts::QScatterSeries *ToolRig::target() const
{
    return qobject_cast<QtCharts::QScatterSeries *>(chart()->series().value(0));
}

QtCharts::QScatterSeries *ToolRig::actual() const
{
    return qobject_cast<QtCharts::QScatterSeries *>(chart()->series().value(1));
}

QtCharts::QLineSeries *ToolRig::trace() const
{
    return qobject_cast<QtCharts::QLineSeries *>(chart()->series().value(2));
}

QString ToolRig::limits() const
{
    return QStringLiteral("%1 %2 %3 %4")
        .arg(widget<QSpinBox>("spM0min")->value())
        .arg(widget<QSpinBox>("spM0max")->value())
        .arg(widget<QSpinBox>("spM1min")->value())
        .arg(widget<QSpinBox>("spM1max")->value());
}

void ToolRig::setLimits(int m0min, int m0max, int m1min, int m1max)
{
    // An upper limit first when it makes room for the lower one, and once more behind it.
    const struct
    {
        const char *name;
        int value;
    } steps[] = {{"spM0max", m0max}, {"spM0min", m0min}, {"spM0max", m0max},
                 {"spM1max", m1max}, {"spM1min", m1min}, {"spM1max", m1max}};
    for (const auto &step : steps)
        widget<QSpinBox>(step.name)->setValue(step.value);
}

bool ToolRig::setTarget(QPointF point, QPoint outer) const
{
    return QMetaObject::invokeMethod(tool(), "setTargetPosition", Q_ARG(QPointF, point),
                                     Q_ARG(QPoint, outer));
}

QList<int> ToolRig::timerIntervals() const
{
    QList<int> intervals;
    const auto timers = QAbstractEventDispatcher::instance()->registeredTimers(working);
    for (const auto &timer : timers)
        intervals << timer.interval;
    std::sort(intervals.begin(), intervals.end());
    return intervals;
}

bool ToolRig::deliverTimer(int intervalMs) const
{
    const auto timers = QAbstractEventDispatcher::instance()->registeredTimers(working);
    for (const auto &timer : timers) {
        if (timer.interval == intervalMs) {
            QTimerEvent event(timer.timerId);
            QCoreApplication::sendEvent(working, &event);
            return true;
        }
    }
    return false;
}

bool ToolRig::updateTick() const
{
    return deliverTimer(50) || deliverTimer(100);
}

bool ToolRig::sample(int x, int y)
{
    link.position0 = x;
    link.position1 = y;
    return sampleTick();
}

QPoint ToolRig::pixelOf(const QPointF &value) const
{
    return chart()->mapToPosition(value, target()).toPoint();
}

unsigned int ToolRig::address(const QString &registerName)
{
    constexpr unsigned int firstAddress = 0x11;
    return firstAddress + 3 * static_cast<unsigned int>(registerNames().indexOf(registerName));
}

QStringList ToolRig::takeCalls()
{
    QStringList named;
    const QStringList taken = link.takeCalls();
    for (const QString &taken1 : taken) {
        QStringList words = taken1.split(QLatin1Char(' '));
        if (words.at(0) != QLatin1String("user")) {
            const unsigned int at = words.at(1).toUInt(nullptr, 16);
            for (const QString &name : registerNames()) {
                if (address(name) == at)
                    words[1] = name;
            }
        }
        named << words.join(QLatin1Char(' '));
    }
    return named;
}

// Key events of the test library count as coming from the window system, which is what makes the
// application note the modifiers.

HeldKeys::HeldKeys(QWidget *receiver, Qt::KeyboardModifiers modifiers)
    : widget(receiver)
{
    QTest::keyPress(widget, Qt::Key_Control, modifiers);
}

HeldKeys::~HeldKeys()
{
    if (widget)
        QTest::keyRelease(widget, Qt::Key_Control, Qt::NoModifier);
}
