#include "PluginInterface.h"

#include "HostRegistry.h"
#include "PluginInterface_p.h"

#include <QPointer>

#include <algorithm>

PluginInterfacePrivate::PluginInterfacePrivate(const QString &pluginName, PluginKind pluginKind)
    : name(pluginName)
    , kind(pluginKind)
{
}

PluginInterface::PluginInterface(std::unique_ptr<PluginInterfacePrivate> state, QWidget *parent)
    : QWidget(parent)
    , d(std::move(state))
{
}

PluginInterface::~PluginInterface()
{
    HostRegistry::remove(this);
}

QString PluginInterface::name() const
{
    return d->name;
}

QString PluginInterface::key() const
{
    return d->key;
}

int PluginInterface::pluginType()
{
    return static_cast<int>(d->kind);
}

void PluginInterface::exportValue(const export_type_t *type, QVariant value)
{
    if (!type)
        return;
    // A receiver may delete any plug-in, this one included, so only guarded copies are used below.
    const auto plugins = PluginHandlerPrivate::entries();
    QStringList keys = plugins.keys();
    std::sort(keys.begin(), keys.end());
    QList<QPointer<PluginInterface>> receivers;
    for (const QString &receiverKey : qAsConst(keys))
        receivers.append(plugins.value(receiverKey));
    receivers.removeAll(this);
    const QPointer<PluginInterface> sender(this);
    for (const QPointer<PluginInterface> &receiver : qAsConst(receivers)) {
        if (receiver)
            receiver->importValue(type, value, sender);
    }
}

QString PluginInterface::version()
{
    return QString();
}

void PluginInterface::aboutToExit() {}

void PluginInterface::setEnabled(bool enabled)
{
    QWidget::setEnabled(enabled);
}

void PluginInterface::importValue(const export_type_t *, QVariant, QObject *) {}

void PluginInterface::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
}

void PluginInterface::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
}
