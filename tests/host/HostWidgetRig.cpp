#include "HostWidgetRig.h"

#include "HeadlessPlatform.h"
#include "HostLocale.h"
#include "ProductBuilder.h"
#include "XmlRegisterWidgetContainer.h"

#include <QFormLayout>
#include <QLabel>
#include <QSpinBox>
#include <QTest>

namespace {

class PlainTool : public ToolsInterface
{
public:
    explicit PlainTool(QVXLModuleInterface *module)
        : ToolsInterface(QStringLiteral("plain"), QStringLiteral("PlainTool"),
                         ToolsType::PositionMode, 0, module, QString(), nullptr)
    {
    }
};

} // namespace

void HostWidgetRig::initTestCase()
{
    silenceHeadlessPlatform();
}

void HostWidgetRig::init()
{
    link = RecordingLink();
    QLocale::setDefault(curLocale);
    ProductBuilder builder;
    auto *const target = builder.addRegister({QStringLiteral("TARGET"), 0x2d, true, true, 100,
                                              QStringLiteral("pps"), QStringLiteral("Where to")});
    builder.addField(target, {QStringLiteral("TARGET"), QStringLiteral("Target"), 0, 32, true});
    auto *const actual = builder.addRegister(
        {QStringLiteral("ACTUAL"), 0x21, true, false, 0, QString(), QString(), -8388608, 8388607});
    builder.addField(actual, {QStringLiteral("ACTUAL"), QStringLiteral("Actual"), 0, 32, true});
    auto *const mode = builder.addRegister({QStringLiteral("MODE"), 0x20, true, true, 0x101});
    builder.addField(mode, {QStringLiteral("SPEED"), QStringLiteral("Speed"), 8, 8});
    builder.addField(mode, {QStringLiteral("LATCH"), QStringLiteral("Latch"), 0, 1});
    module = std::make_unique<HostModule>(QStringLiteral("module"), QStringLiteral("m/"), &link);
    const std::shared_ptr<XmlProductIC> chip = builder.take();
    module->setProduct(0, chip);
    module->setProduct(1, chip);
    tool = std::make_unique<PlainTool>(module.get());
    container = new XmlRegisterWidgetContainer(new QFormLayout, tool.get(), QString());
    (new QVBoxLayout(tool.get()))->addWidget(container->widget());
    tool->show();
    QVERIFY(QTest::qWaitForWindowActive(tool.get()));
}

void HostWidgetRig::cleanup()
{
    tool.reset();
    module.reset();
    QVERIFY(!container);
}

XmlValueRegisterField *HostWidgetRig::field(const char *identifier) const
{
    return module->getIcProduct(0)->getRegisterFieldByIdentifier(QString::fromLatin1(identifier),
                                                                 false, true);
}

XmlRegisterWidget *HostWidgetRig::makeWidget(const char *identifier)
{
    auto *const widget = new XmlRegisterWidget(field(identifier), tool.get());
    container->addXmlWidget(widget);
    return widget;
}

QSpinBox *HostWidgetRig::spinBox(const char *identifier) const
{
    return tool->findChild<QSpinBox *>(QLatin1String(identifier) + QStringLiteral("_input"));
}

QString HostWidgetRig::actualText(const char *identifier) const
{
    return tool->findChild<QLabel *>(QLatin1String(identifier) + QStringLiteral("_actual"))->text();
}

unsigned long long HostWidgetRig::passed(qint64 value)
{
    return static_cast<unsigned long long>(value);
}

QString HostWidgetRig::write(int address, int value)
{
    return QStringLiteral("write 0x%1 m0 %2")
        .arg(QString::number(address, 16).toUpper())
        .arg(value);
}
