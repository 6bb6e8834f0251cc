// The two base classes of the minimal host's plug-ins.

#include "ToolsInterface.h"

namespace {
constexpr int toolsPluginType = 3;
}

PluginInterface::PluginInterface(const QString &name, int pluginType, QWidget *parent)
    : QWidget(parent)
    , m_type(pluginType)
    , m_givenName(name)
{
}

PluginInterface::~PluginInterface() = default;

QString PluginInterface::name() const
{
    return m_givenName;
}

QString PluginInterface::key() const
{
    return m_givenKey;
}

void PluginInterface::setKey(const QString &key)
{
    m_givenKey = key;
}

int PluginInterface::pluginType()
{
    return m_type;
}

void PluginInterface::exportValue(const export_type_t *, QVariant) {}

QString PluginInterface::version()
{
    return {};
}

void PluginInterface::aboutToExit() {}

void PluginInterface::setEnabled(bool enabled)
{
    QWidget::setEnabled(enabled);
}

void PluginInterface::importValue(const export_type_t *, QVariant, QObject *) {}

void PluginInterface::showEvent(QShowEvent *event)
{
    ++m_timesShown;
    QWidget::showEvent(event);
}

void PluginInterface::hideEvent(QHideEvent *event)
{
    ++m_timesHidden;
    QWidget::hideEvent(event);
}

ToolsInterface::ToolsInterface(const QString &name, const QString &, ToolsType::Types type,
                               unsigned char motor, QVXLModuleInterface *module, QString,
                               QWidget *parent)
    : PluginInterface(name, toolsPluginType, parent)
    , m_owner(module)
    , m_kind(type)
    , m_axis(motor)
{
}

ToolsInterface::~ToolsInterface() = default;

QVXLModuleInterface *ToolsInterface::module()
{
    return m_owner;
}

int ToolsInterface::motorNumber()
{
    return m_axis;
}

CommandHandlerInterface *ToolsInterface::commandHandler()
{
    return nullptr;
}

int ToolsInterface::userFunction(unsigned char *, unsigned char *, unsigned char, unsigned char)
{
    ++m_requests;
    return 0;
}

QString ToolsInterface::toolsName(bool)
{
    return m_title;
}

void ToolsInterface::setToolsName(QString name)
{
    m_title = name;
}

void ToolsInterface::siblingIsVisible(const QString &, bool) {}

void ToolsInterface::showPlugin() {}

void ToolsInterface::hidePlugin() {}

bool ToolsInterface::isUsableForVariant(int)
{
    return true;
}

QList<int> ToolsInterface::compatibleVariants()
{
    return {};
}

QWidget *ToolsInterface::subWidget(int)
{
    return nullptr;
}

void ToolsInterface::updateSubWidgetValues(int) {}

void ToolsInterface::registerSubWidgetTraces(int) {}

void ToolsInterface::unRegisterSubWidgetTraces(int) {}

ToolsInterface *ToolsInterface::clone(QString, unsigned char, QVXLModuleInterface *)
{
    return nullptr;
}

void ToolsInterface::handleMessageFromToolsPlugin(int, QString) {}

void ToolsInterface::handleChangedParameterList() {}

void ToolsInterface::showStatusMessage(const QString &, int) {}
