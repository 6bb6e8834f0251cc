#include "PluginLoader.h"

#include "ToolsInterface.h"

#include <QCoreApplication>
#include <QDir>
#include <QJsonObject>
#include <QLibrary>
#include <QPluginLoader>

namespace workbench {

namespace {

QString interfaceIdentifier()
{
    return QString::fromLatin1(qobject_interface_iid<ToolsInterface *>());
}

/// Why a file with this metadata is not loaded; empty when it is to be loaded.
QString objection(const QJsonObject &metaData, const QString &loaderReason)
{
    if (metaData.isEmpty())
        return QStringLiteral("not a plug-in: ") + loaderReason.simplified();
    const QString identifier = metaData.value(QLatin1String("IID")).toString();
    if (identifier != interfaceIdentifier())
        return QStringLiteral("interface \"%1\" instead of \"%2\"")
            .arg(identifier, interfaceIdentifier());
    return QString();
}

} // namespace

PluginLoader::~PluginLoader()
{
    for (const QPointer<ToolsInterface> &tool : qAsConst(tools))
        delete tool;
}

QString PluginLoader::defaultFolder()
{
    return QDir::cleanPath(QCoreApplication::applicationDirPath() + QLatin1Char('/') +
                           QStringLiteral(WORKBENCH_PLUGINS_FROM_BIN));
}

void PluginLoader::loadFolder(const QString &folder)
{
    const QDir dir(folder);
    if (!dir.exists()) {
        rejectedFiles.append({folder, QStringLiteral("no such folder")});
        return;
    }
    const QStringList names = dir.entryList(QDir::Files | QDir::System, QDir::Name);
    for (const QString &name : names)
        loadFile(dir.absoluteFilePath(name));
}

void PluginLoader::loadFile(const QString &path)
{
    QPluginLoader loader(path);
    loader.setLoadHints(QLibrary::ResolveAllSymbolsHint);
    const QString name = QFileInfo(path).fileName();
    const QString reason = objection(loader.metaData(), loader.errorString());
    if (!reason.isEmpty()) {
        rejectedFiles.append({name, reason});
        return;
    }
    QObject *const instance = loader.instance();
    if (auto *const tool = qobject_cast<ToolsInterface *>(instance))
        tools.append(tool);
    else
        rejectedFiles.append(
            {name, instance ? QStringLiteral("makes no tool") : loader.errorString().simplified()});
}

QVector<ToolsInterface *> PluginLoader::prototypes() const
{
    QVector<ToolsInterface *> alive;
    for (const QPointer<ToolsInterface> &tool : tools) {
        if (tool)
            alive.append(tool);
    }
    return alive;
}

} // namespace workbench
