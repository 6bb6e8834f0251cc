#include "SynchronisedDriveTool.h"

#include "Positions.h"
#include "ToolConstants.h"
#include "ui_SynchronisedDriveTool.h"

#include "BasicTools.h"
#include "QVXLModuleInterface.h"
#include "XmlProductIC.h"
#include "XmlRegisterSet.h"
#include "XmlRegisterWidget.h"
#include "XmlRegisterWidgetContainer.h"
#include "XmlValueRegister.h"
#include "XmlValueRegisterField.h"

#include <QFormLayout>
#include <QtCharts/QScatterSeries>

#include <algorithm>

namespace {

XmlValueRegister *registerBehind(XmlRegisterWidget *widget)
{
    XmlValueRegisterField *field = widget ? widget->registerField() : nullptr;
    return field ? field->getRegister() : nullptr;
}

/// The tool, unless it is gone or being destroyed: while its children die a guard still holds it,
/// but what it holds is no longer of this class.
SynchronisedDriveTool *complete(const QPointer<QObject> &tool)
{
    return qobject_cast<SynchronisedDriveTool *>(tool.data());
}

} // namespace

void SynchronisedDriveTool::initXmlRegister()
{
    QList<QVariant> addresses;
    bindRegisters(addresses);

    auto *container = new XmlRegisterWidgetContainer(new QFormLayout, this, QString());
    bindFields(container);
    container->widget()->layout()->setContentsMargins(0, 0, 0, 0);
    ui->settingsLayout->insertWidget(0, container->widget());

    for (XmlRegisterWidget *widget : container->getXmlWidgets()) {
        if (XmlValueRegister *reg = registerBehind(widget))
            addresses << reg->address();
    }
    listRegisters(addresses);
    listRampRegisters();
    watchWrites();
}

void SynchronisedDriveTool::bindRegisters(QList<QVariant> &addresses)
{
    const auto bind = [&](QPointer<XmlValueRegister> &member, const QString &name) {
        member = icProduct->getRegisterByName(name, true);
        if (member)
            addresses << member->address();
    };
    bind(rampModeRegister, QStringLiteral("RAMPMODE"));
    bind(m0VmaxRegister, QStringLiteral("M0_VMAX"));
    bind(m0VactualRegister, QStringLiteral("M0_VACTUAL"));
    bind(m1VmaxRegister, QStringLiteral("M1_VMAX"));
    bind(m1VactualRegister, QStringLiteral("M1_VACTUAL"));
}

void SynchronisedDriveTool::bindFields(XmlRegisterWidgetContainer *container)
{
    const auto addRow = [&](QPointer<XmlRegisterWidget> &row, const QString &identifier) {
        XmlValueRegisterField *field =
            icProduct->getRegisterFieldByIdentifier(identifier, false, true);
        if (!field)
            return false;
        row = new XmlRegisterWidget(field, this);
        container->addXmlWidget(row);
        return true;
    };
    const auto follow = [this](XmlRegisterWidget *row, int axis) {
        connect(row, &XmlRegisterWidget::valueChanged,
                [self = QPointer<QObject>(this), axis](int value) {
                    if (Tool *tool = complete(self))
                        tool->targetWidgetChanged(axis, value);
                });
    };
    if (addRow(m0XactualWidget, QStringLiteral("M0_XACTUAL")))
        m0XactualWidget->setInputWidgetReadOnly(true);
    if (addRow(m1XactualWidget, QStringLiteral("M1_XACTUAL")))
        m1XactualWidget->setInputWidgetReadOnly(true);
    if (addRow(m0XtargetWidget, QStringLiteral("M0_XTARGET")))
        follow(m0XtargetWidget, 0);
    if (addRow(m1XtargetWidget, QStringLiteral("M1_XTARGET")))
        follow(m1XtargetWidget, 1);
}

void SynchronisedDriveTool::listRegisters(QList<QVariant> addresses)
{
    std::sort(addresses.begin(), addresses.end(),
              [](const QVariant &a, const QVariant &b) { return a.toUInt() < b.toUInt(); });
    QString toolTip = QStringLiteral("Show Register Browser with:");
    for (const QVariant &address : qAsConst(addresses)) {
        XmlRegisterSet *registers = icProduct->registerSet();
        XmlValueRegister *reg = registers ? registers->getRegister(address.toUInt()) : nullptr;
        toolTip += QLatin1Char('\n') +
                   BasicTools::iToHex(address.toUInt(), 2, QStringLiteral("0x")) +
                   QStringLiteral(" : ") + (reg ? reg->name() : QString());
    }
    ui->btnShowRegister->setToolTip(toolTip);
    ui->btnShowRegister->setProperty(drive::property::RegisterList, addresses);
}

void SynchronisedDriveTool::listRampRegisters()
{
    QList<QVariant> addresses;
    const auto append = [&addresses](XmlValueRegister *reg) {
        if (reg)
            addresses << reg->address();
    };
    append(m0VmaxRegister);
    append(m1VmaxRegister);
    for (const char *axis : {"M0_", "M1_"}) {
        for (const char *setting : {"AMAX", "DMAX", "V1", "A1", "D1", "V2", "A2", "D2"})
            append(
                icProduct->getRegisterByName(QLatin1String(axis) + QLatin1String(setting), true));
    }
    ui->btnShowPosition->setProperty(drive::property::RampList, addresses);
}

/// The value and the motor of a write are not looked at: a ramp register written by anyone, for any
/// motor, may have changed what the move depends on. The watch ends with the tool: the module
/// lives on, and what is connected to it must not be code of a file that the host has unloaded.
void SynchronisedDriveTool::watchWrites()
{
    connect(
        module(), &QVXLModuleInterface::registerOutputBufferHasWritten, this,
        [self = QPointer<QObject>(this)](unsigned short address) {
            if (Tool *tool = complete(self))
                tool->registerWritten(address);
        },
        Qt::DirectConnection);
}

void SynchronisedDriveTool::registerWritten(unsigned short address)
{
    const QVariant watched = ui->btnShowPosition->property(drive::property::RampList);
    if (watched.toList().contains(int(address)))
        setRampLink();
}

/// The marker follows a target edited in its row or written elsewhere.
void SynchronisedDriveTool::targetWidgetChanged(int axis, int value)
{
    if (targetSeries) {
        QPointF point = target();
        (axis == 0 ? point.rx() : point.ry()) = value;
        targetSeries->replace(0, point);
    }
    const QPointer<XmlRegisterWidget> &widget = axis == 0 ? m0XtargetWidget : m1XtargetWidget;
    if (widget)
        widget->updateActualValue(value, true);
}

unsigned char SynchronisedDriveTool::motorByte()
{
    return static_cast<unsigned char>(motorNumber() & 0xFF);
}

/// The value of the chip's register of that name, 0 when it has none; of a read that fails,
/// whatever the host makes of a 0. Behind the read the tool may be gone.
int SynchronisedDriveTool::getRegisterValue(const QString &name)
{
    int value = 0;
    // The chip is the module's, and goes with it.
    XmlValueRegister *reg =
        icProduct && module() ? icProduct->getRegisterByName(name, true) : nullptr;
    if (reg)
        module()->readChannelRegister(reg, motorByte(), &value);
    return value;
}
