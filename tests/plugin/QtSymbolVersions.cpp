#include "QtSymbolVersions.h"

#include <QStringList>

#include <cstdlib>
#include <cxxabi.h>
#include <memory>

namespace {

const auto anyNode = QStringLiteral("@Base");

QVersionNumber minorVersion(const QString &debianVersion)
{
    const QString upstream = debianVersion.section(QLatin1Char(':'), -1);
    const QVersionNumber version = QVersionNumber::fromString(upstream);
    return QVersionNumber(version.majorVersion(), version.minorVersion());
}

/// Matches the whole of a list's symbol as an ELF file has it. "@Base" there stands for no node of
/// its own; old lists write "*" for any run of characters and have no tag for it.
QRegularExpression symbolExpression(const QString &symbol, bool hasWildcards)
{
    const bool isBase = symbol.endsWith(anyNode);
    QString expression =
        QRegularExpression::escape(isBase ? symbol.chopped(anyNode.size()) : symbol);
    if (hasWildcards)
        expression.replace(QStringLiteral("\\*"), QStringLiteral(".*"));
    if (isBase)
        expression += QStringLiteral("(@.*)?");
    return QRegularExpression(QRegularExpression::anchoredPattern(expression));
}

} // namespace

QString demangled(const QByteArray &name)
{
    const std::unique_ptr<char, decltype(&std::free)> readable(
        abi::__cxa_demangle(name.constData(), nullptr, nullptr, nullptr), &std::free);
    return QString::fromLatin1(readable ? readable.get() : name.constData());
}

void QtSymbolVersions::add(const QByteArray &list)
{
    const QStringList lines = QString::fromUtf8(list).split(QLatin1Char('\n'));
    for (const QString &line : lines) {
        // Symbols are indented; everything else is the library's header or a comment.
        if (line.startsWith(QLatin1Char(' ')))
            addLine(line.trimmed());
    }
}

void QtSymbolVersions::addLine(const QString &line)
{
    static const QRegularExpression form(
        QStringLiteral("^(?:\\(([^)]*)\\))?(?:\"([^\"]+)\"|(\\S+))\\s+(\\S+)"));
    const QRegularExpressionMatch match = form.match(line);
    if (!match.hasMatch() || line.startsWith(QLatin1Char('#')))
        return;
    const QStringList tags = match.captured(1).split(QLatin1Char('|'));
    const QString symbol = match.captured(2) + match.captured(3);
    const QVersionNumber version = minorVersion(match.captured(4));
    const bool isDemangled = tags.contains(QStringLiteral("c++"));

    if (tags.contains(QStringLiteral("symver"))) {
        patterns.append(
            {QRegularExpression(QStringLiteral("@") + QRegularExpression::escape(symbol) +
                                QStringLiteral("$")),
             false, version});
    } else if (tags.contains(QStringLiteral("regex"))) {
        patterns.append({QRegularExpression(symbol), isDemangled, version});
    } else if (isDemangled || symbol.contains(QLatin1Char('*')) || symbol.endsWith(anyNode)) {
        // In a C++ name a star is a pointer.
        patterns.append({symbolExpression(symbol, !isDemangled), isDemangled, version});
    } else {
        addExact(symbol.toLatin1(), version);
    }
}

void QtSymbolVersions::addExact(const QByteArray &symbol, const QVersionNumber &version)
{
    const auto known = exact.constFind(symbol);
    if (known == exact.constEnd() || version < *known)
        exact.insert(symbol, version);
}

QVersionNumber QtSymbolVersions::firstVersion(const QByteArray &symbol) const
{
    const auto known = exact.constFind(symbol);
    if (known != exact.constEnd())
        return *known;

    const QString mangledForm = QString::fromLatin1(symbol);
    const int nameSize = symbol.contains('@') ? symbol.indexOf('@') : symbol.size();
    const QString demangledForm = demangled(symbol.left(nameSize)) + mangledForm.mid(nameSize);
    QVersionNumber oldest;
    for (const Pattern &pattern : patterns) {
        const QString &form = pattern.isDemangled ? demangledForm : mangledForm;
        if (pattern.expression.match(form).hasMatch() &&
            (oldest.isNull() || pattern.version < oldest))
            oldest = pattern.version;
    }
    return oldest;
}
