#include <QObject>

/// Has the identifier of a tools plug-in and makes an object that is none.
class NoTool : public QObject
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.qvx.ToolsInterface/2.0")
};

#include "NoTool.moc"
