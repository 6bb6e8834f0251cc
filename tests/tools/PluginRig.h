#pragma once

#include "ToolsInterface.h"

#include <QPointer>

/// Base of the tests of the workbench's own tools plug-ins: a tool out of the built module of one
/// of them. The tool itself is made and deleted by the derived class.
class PluginRig : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

protected:
    /// `file` is that of the plug-in under test.
    explicit PluginRig(const QString &file)
        : pluginFile(file)
    {
    }

    /// A plug-in's factory object. Null, with the loader's reason printed, when it cannot be
    /// loaded.
    static ToolsInterface *loadPrototype(const QString &file);
    ToolsInterface *loadPrototype() const { return loadPrototype(pluginFile); }

    /// The interval in ms of the object's first active timer; -1 when none is active.
    static int timerInterval(QObject *object);

    /// Puts the tool on screen and calls showPlugin().
    void show() const;
    QString status() const;

    QPointer<ToolsInterface> tool;

private:
    QString pluginFile;
};
