#include "BrowserRig.h"

#include "HostRegistry.h"
#include "ProductBuilder.h"
#include "XmlProductIC.h"
#include "XmlValueRegister.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QLineEdit>
#include <QTableView>
#include <QTest>
#include <QTimerEvent>
#include <QToolButton>

bool ModeWatchingLink::readRegister(unsigned int address, unsigned char motor, int *value)
{
    modes << module->isCircularMode();
    const bool isAnswered = RecordingLink::readRegister(address, motor, value);
    *value &= keptBits;
    return isAnswered;
}

BrowserRig::BrowserRig()
    : PluginRig(QStringLiteral(REGISTER_BROWSER_FILE))
{
}

void BrowserRig::init()
{
    link = ModeWatchingLink();
    module = std::make_unique<HostModule>(QStringLiteral("module"), QStringLiteral("m/"), &link);
    link.module = module.get();
    const auto product = makeProduct();
    module->setProduct(0, product);
    module->setProduct(1, product);
    tool = loadPrototype()->clone(QStringLiteral("browser"), 0, module.get());
    HostRegistry::add(tool, QStringLiteral("m/browser/0"));
}

void BrowserRig::cleanup()
{
    letSearchFieldFinish();
    delete tool;
    module.reset();
}

/// Its clear button fades in and out by an animation that belongs to nobody: one that is left
/// running at the end of the process counts as a leak.
void BrowserRig::letSearchFieldFinish()
{
    const auto *search = tool ? tool->findChild<QLineEdit *>(QStringLiteral("leSearch")) : nullptr;
    const auto *button = search ? search->findChild<QToolButton *>() : nullptr;
    if (!button)
        return;
    QTRY_COMPARE(button->property("opacity").toReal(), search->text().isEmpty() ? 0.0 : 1.0);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

std::shared_ptr<XmlProductIC> BrowserRig::makeProduct()
{
    ProductBuilder builder;
    const auto add = [&builder](RegisterInfo info, const QList<FieldInfo> &fields = {}) {
        XmlValueRegister *const reg = builder.addRegister(info);
        for (const FieldInfo &field : fields)
            builder.addField(reg, field);
    };
    const auto text = [](const char *latin1) { return QString::fromLatin1(latin1); };
    for (unsigned int i = 0; i < 6; ++i)
        add({QStringLiteral("PLAIN%1").arg(i), 0x40 + i});
    add({text("SPEED"), 0x13, true, true, 0, text("units/s"), text("How fast"), 0, 5000},
        {{text("SPEED"), text("Speed"), 0, 32, true}});
    add({text("PLACE"), 0x10, true, false, 0, text("units"), text("Where it is")},
        {{text("PLACE"), text("Place"), 0, 24, true}});
    add({text("OFFSET"), 0x11, true, true}, {{text("OFFSET"), text("Offset"), 0, 8, true}});
    add({text("CONFIG"), 0x05, true, true, 0, QString(), text("Switches")},
        {{text("CFG_LOW"), text("Low"), 0, 4}, {text("CFG_HIGH"), text("High"), 8, 8, true}});
    add({text("TRIGGER"), 0x02, false, true});
    add({text("SECRET"), 0x03, true, true, 0, QString(), QString(), 0, 0, false});
    return builder.take();
}

XmlValueRegister *BrowserRig::reg(const char *name) const
{
    return module->getIcProduct(0)->getRegisterByName(QLatin1String(name), false);
}

QTableView *BrowserRig::table(const char *name) const
{
    return tool->findChild<QTableView *>(QLatin1String(name));
}

QStringList BrowserRig::names() const
{
    QStringList all;
    const QAbstractItemModel *const model = table()->model();
    for (int row = 0; row < model->rowCount(); ++row)
        all << model->index(row, Name).data().toString();
    return all;
}

QModelIndex BrowserRig::cell(const QString &registerName, int column) const
{
    const int row = names().indexOf(registerName);
    return table()->model()->index(row, column);
}

QString BrowserRig::text(const QString &registerName, int column) const
{
    return cell(registerName, column).data().toString();
}

bool BrowserRig::isGrey(const QString &registerName) const
{
    const QVariant brush = cell(registerName, Decimal).data(Qt::ForegroundRole);
    return brush.value<QBrush>() ==
           QApplication::palette().brush(QPalette::Disabled, QPalette::Text);
}

bool BrowserRig::deliverTimer(QObject *object)
{
    const auto timers = QAbstractEventDispatcher::instance()->registeredTimers(object);
    if (timers.isEmpty())
        return false;
    QTimerEvent event(timers.first().timerId);
    QCoreApplication::sendEvent(object, &event);
    return true;
}

/// Enough ticks for every register, with a link that answers or not.
void BrowserRig::round() const
{
    for (int i = 0; i < readableCount; ++i)
        QVERIFY(deliverTimer(tool));
}

QLineEdit *BrowserRig::openEditor(QTableView *view, const QModelIndex &index) const
{
    view->scrollTo(index);
    view->setCurrentIndex(index);
    const QPoint middle = view->visualRect(index).center();
    QTest::mouseClick(view->viewport(), Qt::LeftButton, Qt::NoModifier, middle);
    QTest::mouseDClick(view->viewport(), Qt::LeftButton, Qt::NoModifier, middle);
    return view->viewport()->findChild<QLineEdit *>();
}

void BrowserRig::enter(QTableView *view, const QModelIndex &index, const QString &entered) const
{
    QLineEdit *const editor = openEditor(view, index);
    QVERIFY(editor);
    QTest::keyClick(editor, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(editor, entered);
    QTest::keyClick(editor, Qt::Key_Return);
    settle();
}

/// Lets an editor hand back its text, and then what that led to.
void BrowserRig::settle()
{
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
}

QVariantList BrowserRig::listOf(const QList<unsigned int> &addresses)
{
    QVariantList list;
    for (const unsigned int address : addresses)
        list << address;
    return list;
}

void BrowserRig::import(const QVariant &value, QObject *sender) const
{
    // A type of the same name counts, whatever object it is.
    const export_type_t type{QStringLiteral("RergisterList"), QVariant::List};
    tool->importValue(&type, value, sender);
}
