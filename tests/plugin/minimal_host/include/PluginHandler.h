#pragma once

#include <QHash>
#include <QString>

class PluginInterface;

class PluginHandler
{
public:
    static PluginHandler *instance(bool renew);
    QHash<QString, PluginInterface *> plugins() const;

private:
    QHash<QString, PluginInterface *> m_byKey;
};
