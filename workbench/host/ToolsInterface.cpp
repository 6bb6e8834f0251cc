#include "ToolsInterface.h"

#include "HostRegistry.h"
#include "ModuleLink.h"
#include "PluginInterface_p.h"
#include "QVXLModuleInterface_p.h"
#include "ToolDetails.h"

#include <QIcon>
#include <QPointer>

class ToolsInterfacePrivate
{
public:
    static const ToolsInterfacePrivate *of(const ToolsInterface *tool) { return tool->d.get(); }

    ToolDetails details;
    QPointer<QVXLModuleInterface> module;
    unsigned char motor = 0;
    QString title;
};

ToolDetails ToolDetails::of(const ToolsInterface *tool)
{
    return tool ? ToolsInterfacePrivate::of(tool)->details : ToolDetails();
}

ToolsInterface::ToolsInterface(const QString &name, const QString &className, ToolsType::Types type,
                               unsigned char motor, QVXLModuleInterface *module, QString icon,
                               QWidget *parent)
    : PluginInterface(std::make_unique<PluginInterfacePrivate>(name, PluginKind::Tool), parent)
    , d(std::make_unique<ToolsInterfacePrivate>())
{
    d->details = {className, type, icon};
    d->module = module;
    d->motor = motor;
    d->title = name;
    if (!icon.isEmpty())
        setWindowIcon(QIcon(icon));
}

ToolsInterface::~ToolsInterface() = default;

QVXLModuleInterface *ToolsInterface::module()
{
    return d->module;
}

int ToolsInterface::motorNumber()
{
    return d->motor;
}

CommandHandlerInterface *ToolsInterface::commandHandler()
{
    auto *const state = d->module ? QVXLModuleInterfacePrivate::of(d->module) : nullptr;
    return state && state->link ? &state->handler : nullptr;
}

int ToolsInterface::userFunction(unsigned char *a, unsigned char *b, unsigned char function,
                                 unsigned char arg)
{
    ModuleLink *const link = d->module ? QVXLModuleInterfacePrivate::of(d->module)->link : nullptr;
    unsigned char first = a ? *a : 0;
    unsigned char second = b ? *b : 0;
    unsigned int reply = 0;
    if (!link || !link->userFunction(&first, &second, function, arg, d->motor, &reply))
        return 0;
    if (a)
        *a = first;
    if (b)
        *b = second;
    return static_cast<int>(reply);
}

QString ToolsInterface::toolsName(bool withMotor)
{
    return withMotor ? d->title + QLatin1Char(' ') + QString::number(d->motor) : d->title;
}

void ToolsInterface::setToolsName(QString name)
{
    d->title = name;
}

void ToolsInterface::siblingIsVisible(const QString &, bool) {}

void ToolsInterface::showPlugin() {}

void ToolsInterface::hidePlugin() {}

bool ToolsInterface::isUsableForVariant(int variant)
{
    const QList<int> variants = compatibleVariants();
    return variants.isEmpty() || variants.contains(variant);
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

void ToolsInterface::showStatusMessage(const QString &text, int timeoutMs)
{
    emit HostRegistry::instance()->statusMessage(text, timeoutMs);
}
