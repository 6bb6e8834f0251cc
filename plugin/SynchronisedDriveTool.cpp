#include "SynchronisedDriveTool.h"

#include "ChartView.h"
#include "ToolConstants.h"
#include "ui_SynchronisedDriveTool.h"

#include "DynamicProperty.h"
#include "HostLocale.h"
#include "QVXLModuleInterface.h"

#include <QtCharts/QChart>
#include <QtCharts/QValueAxis>

namespace {

const auto className = QStringLiteral("SynchronisedDriveTool");
const auto toolIcon = QStringLiteral(":/Software-Icons/Data");

} // namespace

SynchronisedDriveTool::SynchronisedDriveTool()
    : ToolsInterface(QStringLiteral("undefined"), className, ToolsType::SynchronisedDriveTool, 0,
                     nullptr, toolIcon, nullptr)
{
}

// Each step relies on the ones before it.
SynchronisedDriveTool::SynchronisedDriveTool(const QString &name, unsigned char motor,
                                             QVXLModuleInterface *module)
    : ToolsInterface(name, className, ToolsType::SynchronisedDriveTool, motor, module, toolIcon,
                     nullptr)
    , ui(new Ui_SynchronisedDriveTool)
{
    initPanel();
    initChip();
    initChart();
    initChartView();
    initAxes();
    initSeries();
    initLimits();
    initLinkButtons();
    initFlightPath();
    connectRangeHandlers();
}

SynchronisedDriveTool::~SynchronisedDriveTool() = default;

QString SynchronisedDriveTool::version()
{
    return QStringLiteral("4.6.0 - tools_synchronised_drive_tool;Plugin-Interface.4.6.0."
                          "tools_synchronised_drive_tool;Plugin ;Plugin.Interface.");
}

ToolsInterface *SynchronisedDriveTool::clone(QString name, unsigned char motor,
                                             QVXLModuleInterface *module)
{
    return new SynchronisedDriveTool(name, motor, module);
}

void SynchronisedDriveTool::showPlugin()
{
    if (!isComplete())
        return;
    const QPointer<SynchronisedDriveTool> self(this);
    const unsigned int hides = begun.hides;
    timerEvent(nullptr);
    if (self)
        initExternTools();
    if (self)
        setRampLink();
    // A host that handles events while it waits for the module may have hidden the tool again.
    if (self && begun.hides == hides)
        updateTimer.start(drive::idleUpdatePeriodMs, Qt::PreciseTimer, this);
}

void SynchronisedDriveTool::hidePlugin()
{
    // A move that runs goes on being sampled, and is drawn when the tool is shown again.
    ++begun.hides;
    updateTimer.stop();
}

bool SynchronisedDriveTool::Begun::operator!=(const Begun &other) const
{
    return starts != other.starts || stops != other.stops || picks != other.picks ||
           updateTicks != other.updateTicks || hides != other.hides;
}

/// A prototype never is, and a tool not before it has its series: what the host calls then would
/// find no chart.
bool SynchronisedDriveTool::isComplete() const
{
    return traceSeries;
}

void SynchronisedDriveTool::initPanel()
{
    QLocale::setDefault(curLocale);
    ui->setupUi(this);
    setToolsName(QStringLiteral("Synchronized drive"));
    setProperty(DynamicProperty::WindowFlags, static_cast<unsigned int>(Qt::SubWindow));
    setProperty(DynamicProperty::DoNotAnimate, true);
}

void SynchronisedDriveTool::initChip()
{
    icProduct = module() ? module()->getIcProduct(motorByte()) : nullptr;
    if (icProduct)
        initXmlRegister();
}

void SynchronisedDriveTool::initLimits()
{
    ui->spM0min->setValue(-drive::initialLimit);
    ui->spM1min->setValue(-drive::initialLimit);
    ui->spM0max->setValue(drive::initialLimit);
    ui->spM1max->setValue(drive::initialLimit);
}

void SynchronisedDriveTool::initLinkButtons()
{
    ui->btnShowPosition->setProperty(drive::property::ExToolName, QStringLiteral("Position mode"));
    ui->btnShowRegister->setProperty(drive::property::ExToolName,
                                     QStringLiteral("Register browser"));
}
