#pragma once

#include <QByteArray>
#include <QHash>
#include <QRegularExpression>
#include <QVector>
#include <QVersionNumber>

/// The Qt version that brought each symbol of the Qt libraries, as Debian's symbol lists have it
/// (deb-symbols(5), and the tags and patterns of deb-src-symbols(5)).
///
/// A list names a library and then a symbol a line, with the version node it is bound to and the
/// first version of the package that had it:
///
///     libQt5Core.so.5 libqt5core5a #MINVER#
///      _ZN7QString6appendE5QChar@Qt_5 5.0.2
///      (optional|c++)"QString::chop(int)@Base" 5.10.0~beta
class QtSymbolVersions
{
public:
    /// Adds the symbols of one list. A symbol that is there already keeps the older version.
    void add(const QByteArray &list);

    /// Major and minor number of the first version that had a symbol, given with its mangled name
    /// and node ("_ZN...@Qt_5"). Null when no list has it.
    QVersionNumber firstVersion(const QByteArray &symbol) const;

private:
    struct Pattern
    {
        QRegularExpression expression;
        bool isDemangled;
        QVersionNumber version;
    };

    void addLine(const QString &line);
    void addExact(const QByteArray &symbol, const QVersionNumber &version);

    QHash<QByteArray, QVersionNumber> exact;
    QVector<Pattern> patterns;
};

/// The readable form of a mangled name; other names as they are.
QString demangled(const QByteArray &name);
