#include "SynchronisedDriveTool.h"

#include <QPointer>

namespace {

// What a host reads before it loads the plug-in. Written out here instead of by moc, which would
// put in the Qt version and build type of the machine that compiled it: the plug-in needs no more
// than Qt 5.12, and a debug build of it is as good for any host as a release build.

__attribute__((section(".qtmetadata"), used)) constexpr char pluginMetaData[] = {
    'Q', 'T', 'M', 'E', 'T', 'A', 'D', 'A', 'T', 'A', ' ', '!',
    // Metadata format, Qt major and minor version, architecture requirements (none).
    0, 5, 12, 0,
    // A CBOR map of indefinite length ...
    '\xbf',
    // ... key 2, the interface identifier: text of 26 bytes ...
    2, '\x78', 26, 'c', 'o', 'm', '.', 'q', 'v', 'x', '.', 'T', 'o', 'o', 'l', 's', 'I', 'n', 't',
    'e', 'r', 'f', 'a', 'c', 'e', '/', '2', '.', '0',
    // ... key 3, the class name: text of 21 bytes ...
    3, '\x75', 'S', 'y', 'n', 'c', 'h', 'r', 'o', 'n', 'i', 's', 'e', 'd', 'D', 'r', 'i', 'v', 'e',
    'T', 'o', 'o', 'l',
    // ... key 4, the user metadata: a map of one pair of texts ...
    4, '\xa1', '\x64', 'n', 'a', 'm', 'e', '\x65', 'T', 'o', 'o', 'l', 's',
    // ... and the end of the outer map.
    '\xff'};

} // namespace

extern "C" Q_DECL_EXPORT const char *qt_plugin_query_metadata()
{
    return pluginMetaData;
}

/// The prototype that working tools are cloned from; made anew when the host has deleted it.
extern "C" Q_DECL_EXPORT QObject *qt_plugin_instance()
{
    static QPointer<QObject> prototype;
    if (!prototype)
        prototype = new SynchronisedDriveTool;
    return prototype;
}
