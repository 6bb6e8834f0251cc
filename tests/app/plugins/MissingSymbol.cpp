#include <QObject>

/// Defined nowhere.
void operationOfSomeOtherHost();

/// Says that it is a tools plug-in, and needs a function that this host does not have.
class MissingSymbol : public QObject
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.qvx.ToolsInterface/2.0")

public slots:
    void operate() { operationOfSomeOtherHost(); }
};

#include "MissingSymbol.moc"
