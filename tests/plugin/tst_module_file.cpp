#include "QtSymbolVersions.h"

#include <QCborMap>
#include <QCborValue>
#include <QDir>
#include <QFile>
#include <QJsonObject>
#include <QLibrary>
#include <QPluginLoader>
#include <QProcess>
#include <QSet>
#include <QTest>

#include <algorithm>

namespace {

const QVersionNumber newestQt(5, 12);

struct Symbol
{
    char type;
    QByteArray name;
    /// The version node that the symbol is bound to; empty for most symbols outside Qt and the C
    /// library.
    QByteArray node;

    bool isDefined() const { return !QByteArray("Uwv").contains(type); }
    bool isWeak() const { return type == 'w' || type == 'v'; }
    bool isFromQt() const { return node.startsWith("Qt_"); }
    QByteArray text() const { return node.isEmpty() ? name : name + '@' + node; }
};

/// Output of one of the compiler's tools; empty when it fails.
QByteArray outputOf(const char *tool, const QStringList &arguments)
{
    QProcess process;
    process.start(QString::fromLatin1(tool), arguments, QIODevice::ReadOnly);
    const bool isDone = process.waitForFinished() && process.exitStatus() == QProcess::NormalExit &&
                        process.exitCode() == 0;
    return isDone ? process.readAllStandardOutput() : QByteArray();
}

QByteArray bytesOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The dynamic symbols of a module.
QVector<Symbol> symbolsOf(const QString &module)
{
    QVector<Symbol> symbols;
    const QByteArray listing = outputOf(NM, {QStringLiteral("-D"), module});
    for (const QByteArray &line : listing.split('\n')) {
        // "000f521 T name" or "        U name@node".
        const QList<QByteArray> words = line.simplified().split(' ');
        const int type = line.startsWith(' ') ? 0 : 1;
        if (words.size() < type + 2)
            continue;
        const QByteArray text = words.at(type + 1);
        const int end = text.contains('@') ? text.indexOf('@') : text.size();
        symbols.append({words.at(type).at(0), text.left(end), text.mid(text.lastIndexOf('@') + 1)});
        if (end == text.size())
            symbols.last().node.clear();
    }
    return symbols;
}

/// The values of all dynamic entries with a tag, for example "NEEDED".
QStringList dynamicEntries(const QString &module, const QString &tag)
{
    const QString listing = QString::fromLatin1(outputOf(READELF, {QStringLiteral("-dW"), module}));
    const QRegularExpression entry(QStringLiteral("\\(%1\\).*\\[(.*)\\]").arg(tag));
    QStringList values;
    QRegularExpressionMatchIterator match = entry.globalMatch(listing);
    while (match.hasNext())
        values.append(match.next().captured(1));
    return values;
}

QByteArray sectionTable(const QString &module)
{
    return outputOf(READELF, {QStringLiteral("-SW"), module});
}

/// The contents of a section; null when the module has no such section.
QByteArray section(const QString &module, const QString &name)
{
    const QRegularExpression row(QStringLiteral(" %1 +PROGBITS +[0-9a-f]+ ([0-9a-f]+) ([0-9a-f]+) ")
                                     .arg(QRegularExpression::escape(name)));
    const QRegularExpressionMatch match = row.match(QString::fromLatin1(sectionTable(module)));
    if (!match.hasMatch())
        return {};
    return bytesOf(module).mid(match.captured(1).toInt(nullptr, 16),
                               match.captured(2).toInt(nullptr, 16));
}

/// The file up to its debug information, which may repeat constants.
QByteArray bytesBeforeDebugInfo(const QString &module)
{
    static const QRegularExpression row(
        QStringLiteral(" \\.debug_\\w+ +\\w+ +[0-9a-f]+ ([0-9a-f]+) "));
    const QRegularExpressionMatch match = row.match(QString::fromLatin1(sectionTable(module)));
    const QByteArray bytes = bytesOf(module);
    return match.hasMatch() ? bytes.left(match.captured(1).toInt(nullptr, 16)) : bytes;
}

bool isProvidedBy(const QStringList &libraries, const Symbol &symbol)
{
    return std::any_of(libraries.begin(), libraries.end(), [&symbol](const QString &library) {
        return QLibrary(library).resolve(symbol.name.constData()) != nullptr;
    });
}

/// Whether the host's headers declare what the symbol belongs to: a class, or a name of its own.
bool isDeclaredByHost(const QString &headers, const Symbol &symbol)
{
    static const QRegularExpression owner(QStringLiteral("^(?:(?:typeinfo|vtable) for )?(\\w+)"));
    const QString name = owner.match(demangled(symbol.name)).captured(1);
    return headers.contains(QRegularExpression(QStringLiteral("\\b%1\\b").arg(name)));
}

} // namespace

/// The file that a host gets: what it tells before it is loaded, what it needs and what it offers.
/// Looked at twice: as built beside the workbench, and as a debug build of its own.
class ModuleFileTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void metadataSectionHoldsTheBlockAlone_data() { modules(); }
    void metadataSectionHoldsTheBlockAlone();
    void metadataIsACborMapOfThreeKeys_data() { modules(); }
    void metadataIsACborMapOfThreeKeys();
    void pluginLoaderReadsTheMetadata_data() { modules(); }
    void pluginLoaderReadsTheMetadata();
    void needsQtAndTheRuntimeAndNothingElse_data() { modules(); }
    void needsQtAndTheRuntimeAndNothingElse();
    void carriesNoSearchPath_data() { modules(); }
    void carriesNoSearchPath();
    void isNotTaggedWithTheQtItWasBuiltWith_data() { modules(); }
    void isNotTaggedWithTheQtItWasBuiltWith();
    void exportsTheTwoEntryPointsAlone_data() { modules(); }
    void exportsTheTwoEntryPointsAlone();
    void symbolListsAreUnderstood_data();
    void symbolListsAreUnderstood();
    void everyQtSymbolCameWithQt512OrBefore_data() { modules(); }
    void everyQtSymbolCameWithQt512OrBefore();
    void hostSymbolsAreLeftToTheLoadingProcess_data() { modules(); }
    void hostSymbolsAreLeftToTheLoadingProcess();

private:
    static void modules();

    QString module;
};

void ModuleFileTest::modules()
{
    QTest::addColumn<QString>("file");
    QTest::newRow("as built") << QStringLiteral(MODULE_FILE);
    QTest::newRow("debug build of its own") << QStringLiteral(DEBUG_MODULE_FILE);
}

void ModuleFileTest::init()
{
    const QByteArray test = QTest::currentTestFunction();
    if (test == "symbolListsAreUnderstood")
        return;
    QFETCH(QString, file);
    module = file;
    QVERIFY2(QFile::exists(module), qPrintable(module));
    QVERIFY2(!symbolsOf(module).isEmpty() && !sectionTable(module).isEmpty(),
             "nm or readelf (package binutils) did not run");
}

void ModuleFileTest::metadataSectionHoldsTheBlockAlone()
{
    const QByteArray block = QByteArray("QTMETADATA !") + QByteArray::fromHex("00050c00") +
                             QByteArray::fromHex("bf"
                                                 "02781a") +
                             "com.qvx.ToolsInterface/2.0" + QByteArray::fromHex("0375") +
                             "SynchronisedDriveTool" + QByteArray::fromHex("04a164") + "name" +
                             QByteArray::fromHex("65") + "Tools" + QByteArray::fromHex("ff");

    QCOMPARE(section(module, QStringLiteral(".qtmetadata")).toHex(), block.toHex());
    QCOMPARE(bytesBeforeDebugInfo(module).count("QTMETADATA "), 1);
}

void ModuleFileTest::metadataIsACborMapOfThreeKeys()
{
    constexpr int headerSize = 16;
    QCborParserError error;
    const QCborValue value = QCborValue::fromCbor(
        section(module, QStringLiteral(".qtmetadata")).mid(headerSize), &error);

    QCOMPARE(error.error.c, QCborError::NoError);
    const QCborMap expected = {
        {2, QStringLiteral("com.qvx.ToolsInterface/2.0")},
        {3, QStringLiteral("SynchronisedDriveTool")},
        {4, QCborMap{{QStringLiteral("name"), QStringLiteral("Tools")}}},
    };
    QCOMPARE(value, QCborValue(expected));
}

void ModuleFileTest::pluginLoaderReadsTheMetadata()
{
    const QJsonObject metadata = QPluginLoader(module).metaData();

    QCOMPARE(metadata.value(QStringLiteral("IID")).toString(),
             QStringLiteral("com.qvx.ToolsInterface/2.0"));
    QCOMPARE(metadata.value(QStringLiteral("className")).toString(),
             QStringLiteral("SynchronisedDriveTool"));
    const QJsonObject user = {{QStringLiteral("name"), QStringLiteral("Tools")}};
    QCOMPARE(metadata.value(QStringLiteral("MetaData")).toObject(), user);
    QCOMPARE(metadata.value(QStringLiteral("version")).toInt(), 0x050c00);
    QCOMPARE(metadata.value(QStringLiteral("debug")).toBool(true), false);
}

void ModuleFileTest::needsQtAndTheRuntimeAndNothingElse()
{
    QStringList qt;
    QStringList others;
    for (const QString &library : dynamicEntries(module, QStringLiteral("NEEDED")))
        (library.startsWith(QStringLiteral("libQt")) ? qt : others).append(library);
    qt.sort();
    QCOMPARE(qt,
             QStringList({QStringLiteral("libQt5Charts.so.5"), QStringLiteral("libQt5Core.so.5"),
                          QStringLiteral("libQt5Gui.so.5"), QStringLiteral("libQt5Widgets.so.5")}));

    QString runtime = QStringLiteral("libstdc\\+\\+|libgcc_s|libm|libc|ld-linux[-\\w]*");
#ifdef SANITIZED
    runtime += QStringLiteral("|libasan|libubsan");
#endif
    const QRegularExpression allowed(QStringLiteral("^(%1)\\.so\\.\\d+$").arg(runtime));
    for (const QString &library : qAsConst(others))
        QVERIFY2(allowed.match(library).hasMatch(), qPrintable(library));
}

void ModuleFileTest::carriesNoSearchPath()
{
    QCOMPARE(dynamicEntries(module, QStringLiteral("RPATH")), QStringList());
    QCOMPARE(dynamicEntries(module, QStringLiteral("RUNPATH")), QStringList());
}

void ModuleFileTest::isNotTaggedWithTheQtItWasBuiltWith()
{
    QVERIFY(!sectionTable(module).contains(".qtversion"));
    for (const Symbol &symbol : symbolsOf(module))
        QVERIFY2(!symbol.name.startsWith("qt_version_tag"), symbol.text());
}

void ModuleFileTest::exportsTheTwoEntryPointsAlone()
{
    QStringList exported;
    for (const Symbol &symbol : symbolsOf(module)) {
        if (symbol.isDefined())
            exported.append(QString::fromLatin1(symbol.name));
    }
    exported.sort();
    QCOMPARE(exported, QStringList({QStringLiteral("qt_plugin_instance"),
                                    QStringLiteral("qt_plugin_query_metadata")}));
}

void ModuleFileTest::symbolListsAreUnderstood_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QByteArray>("symbol");
    QTest::addColumn<QVersionNumber>("version");

    const QByteArray chop = "_ZN7QString4chopEi";
    const QVersionNumber known(5, 15);
    const QVersionNumber unknown;
    QTest::newRow("plain") << chop + "@Qt_5 5.15.1" << chop + "@Qt_5" << known;
    QTest::newRow("other node") << chop + "@Qt_5 5.15.1" << chop + "@Qt_5.15" << unknown;
    QTest::newRow("other symbol") << chop + "@Qt_5 5.15.1" << QByteArray("_ZN1A1bEv@Qt_5")
                                  << unknown;
    QTest::newRow("Debian suffix") << chop + "@Qt_5 5.15.2+dfsg-3 1" << chop + "@Qt_5" << known;
    QTest::newRow("pre-release") << chop + "@Qt_5 5.15.0~beta" << chop + "@Qt_5" << known;
    QTest::newRow("epoch") << chop + "@Qt_5 1:5.15.0" << chop + "@Qt_5" << known;
    QTest::newRow("major number alone")
        << chop + "@Qt_5 5" << chop + "@Qt_5" << QVersionNumber(5, 0);
    QTest::newRow("Base is any node") << chop + "@Base 5.15.1" << chop + "@Qt_5" << known;
    QTest::newRow("tags") << "(optional=templinst|arch=amd64)" + chop + "@Qt_5 5.15.1"
                          << chop + "@Qt_5" << known;
    QTest::newRow("C++ name") << QByteArray("(c++)\"QString::chop(int)@Base\" 5.15.1")
                              << chop + "@Qt_5" << known;
    QTest::newRow("C++ name of another overload")
        << QByteArray("(c++)\"QString::chop(char)@Base\" 5.15.1") << chop + "@Qt_5" << unknown;
    QTest::newRow("expression") << QByteArray("(regex)\"^_ZN7QString.*@Qt_5$\" 5.15.1")
                                << chop + "@Qt_5" << known;
    QTest::newRow("expression for C++ names")
        << QByteArray("(c++|regex)\"^QString::\" 5.15.1") << chop + "@Qt_5" << known;
    QTest::newRow("whole node") << QByteArray("(symver)Qt_5.15 5.15.1") << chop + "@Qt_5.15"
                                << known;
    QTest::newRow("node of a longer name")
        << QByteArray("(symver)Qt_5 5.15.1") << chop + "@Qt_5.15" << unknown;
    QTest::newRow("wildcard") << QByteArray("*@Qt_5.15 5.15.1") << chop + "@Qt_5.15" << known;
    QTest::newRow("symbol that is gone")
        << "#MISSING: 5.15# " + chop + "@Qt_5 5.15.1" << chop + "@Qt_5" << unknown;
}

void ModuleFileTest::symbolListsAreUnderstood()
{
    QFETCH(QByteArray, line);
    QFETCH(QByteArray, symbol);
    QFETCH(QVersionNumber, version);

    QtSymbolVersions versions;
    versions.add("libQt5Core.so.5 libqt5core5a #MINVER#\n " + line + "\n");

    QCOMPARE(versions.firstVersion(symbol), version);
}

void ModuleFileTest::everyQtSymbolCameWithQt512OrBefore()
{
    const QDir lists(QStringLiteral("/var/lib/dpkg/info"));
    QtSymbolVersions versions;
    for (const char *package : {"libqt5core5a", "libqt5gui5", "libqt5widgets5", "libqt5charts5"}) {
        const QString name = QString::fromLatin1(package);
        const QStringList files = lists.entryList({name + QStringLiteral("*.symbols")});
        QVERIFY2(!files.isEmpty(), qPrintable(QStringLiteral("No symbol list. It comes with the "
                                                             "Debian package %1.")
                                                  .arg(name)));
        for (const QString &file : files)
            versions.add(bytesOf(lists.filePath(file)));
    }

    int count = 0;
    QByteArrayList refused;
    for (const Symbol &symbol : symbolsOf(module)) {
        if (!symbol.isFromQt())
            continue;
        ++count;
        const QString node = QString::fromLatin1(symbol.node.mid(3));
        const QVersionNumber first = versions.firstVersion(symbol.text());
        if (node.contains(QStringLiteral("PRIVATE")) || first.isNull() || first > newestQt ||
            QVersionNumber::fromString(node) > newestQt)
            refused.append(symbol.text() + " since " + first.toString().toLatin1());
    }
    QVERIFY2(refused.isEmpty(), refused.join('\n'));
    QVERIFY(count > 100);
}

void ModuleFileTest::hostSymbolsAreLeftToTheLoadingProcess()
{
    QString headers;
    const QDir host(QStringLiteral(HOST_HEADERS));
    for (const QString &header : host.entryList({QStringLiteral("*.h")}))
        headers += QString::fromUtf8(bytesOf(host.filePath(header)));
    const QStringList libraries = dynamicEntries(module, QStringLiteral("NEEDED"));

    QSet<QString> left;
    for (const Symbol &symbol : symbolsOf(module)) {
        // Weak ones are the runtime's hooks, which may be missing.
        if (symbol.isDefined() || symbol.isWeak() || isProvidedBy(libraries, symbol))
            continue;
        QVERIFY2(isDeclaredByHost(headers, symbol), symbol.text());
        left.insert(demangled(symbol.name));
    }
    QVERIFY(left.contains(QStringLiteral("ToolsInterface::~ToolsInterface()")));
    QVERIFY(left.contains(QStringLiteral("XmlValueRegister::address()")));
    QVERIFY(left.contains(QStringLiteral("curLocale")));
}

QTEST_GUILESS_MAIN(ModuleFileTest)
#include "tst_module_file.moc"
