#include <QObject>

/// A plug-in of another application: its identifier is not that of the host's tools. Leaves a note
/// in the environment when its code gets into a process.
class WrongIdentifier : public QObject
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.example.OtherInterface/1.0")
};

namespace {

const bool isLoaded = qputenv("WRONG_IDENTIFIER_LOADED", "1");

} // namespace

#include "WrongIdentifier.moc"
