#pragma once

#include <QPointer>
#include <QString>
#include <QVector>

class ToolsInterface;

namespace workbench {

/// A file in the plug-ins folder that gave no tool.
struct RejectedFile
{
    QString fileName; ///< without its folder
    QString reason;   ///< one line
};

/// Loads the tools plug-ins of a folder. A file's metadata is read first, and only a file with the
/// identifier of the host's tools interface is loaded into the process. The libraries stay loaded
/// until the process ends; the prototypes are deleted with the loader, tools made from them live
/// on. GUI thread.
class PluginLoader
{
public:
    PluginLoader() = default;
    ~PluginLoader();
    PluginLoader(const PluginLoader &) = delete;
    PluginLoader &operator=(const PluginLoader &) = delete;

    /// The folder that belongs to the running program, in the build tree as after installation.
    static QString defaultFolder();

    /// Looks at every file of the folder, in the order of their names. A folder that does not exist
    /// counts as one rejected file.
    void loadFolder(const QString &folder);

    void loadFile(const QString &path);

    /// One for each plug-in, in the order of loading.
    QVector<ToolsInterface *> prototypes() const;

    const QVector<RejectedFile> &rejected() const { return rejectedFiles; }

private:
    QVector<QPointer<ToolsInterface>> tools;
    QVector<RejectedFile> rejectedFiles;
};

} // namespace workbench
