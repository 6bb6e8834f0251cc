#include "HeadlessPlatform.h"
#include "SiblingBench.h"

#include "DebugCategories.h"
#include "PluginInterface_p.h"

#include <QTest>

namespace {

/// Counts as a tools plug-in, but is none by its interface.
class NotATool : public PluginInterface
{
    Q_OBJECT

public:
    explicit NotATool(const QString &key)
        : PluginInterface(std::make_unique<PluginInterfacePrivate>(browserName, PluginKind::Tool),
                          nullptr)
    {
        HostRegistry::add(this, key);
    }
};

/// Another kind of plug-in that answers to the tools' interface.
class OtherKind : public PluginInterface
{
public:
    explicit OtherKind(const QString &key)
        : PluginInterface(std::make_unique<PluginInterfacePrivate>(browserName, PluginKind::Module),
                          nullptr)
        , sibling(QStringLiteral("elsewhere"), browserName)
    {
        HostRegistry::add(this, key);
    }

    void *qt_metacast(const char *name) override
    {
        if (qstrcmp(name, qobject_interface_iid<ToolsInterface *>()) == 0)
            return static_cast<ToolsInterface *>(&sibling);
        return PluginInterface::qt_metacast(name);
    }

private:
    Sibling sibling;
};

/// Collects the debug lines of the host's low-level category, which it switches on.
class LowLevelLog
{
public:
    explicit LowLevelLog(bool isEnabled = true)
    {
        lines().clear();
        const QString category = QString::fromLatin1(debLowLevel().categoryName());
        QLoggingCategory::setFilterRules(
            category + (isEnabled ? QLatin1String(".debug=true") : QLatin1String(".debug=false")));
        next = qInstallMessageHandler(collect);
    }

    ~LowLevelLog()
    {
        qInstallMessageHandler(next);
        QLoggingCategory::setFilterRules(QString());
    }

    static QStringList &lines()
    {
        static QStringList all;
        return all;
    }

private:
    static void collect(QtMsgType type, const QMessageLogContext &context, const QString &message)
    {
        if (qstrcmp(context.category, debLowLevel().categoryName()) == 0)
            lines() << (type == QtDebugMsg ? message : QStringLiteral("not debug: ") + message);
        else if (next)
            next(type, context, message);
    }

    static QtMessageHandler next;
};

QtMessageHandler LowLevelLog::next = nullptr;

} // namespace

class ToolSiblingsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { silenceHeadlessPlatform(); }
    void buttonsAreDisabledWithoutSiblings();
    void siblingsAreFoundByTitle_data();
    void siblingsAreFoundByTitle();
    void motorDecidesAboutTheKey_data();
    void motorDecidesAboutTheKey();
    void siblingsOfOtherModulesAreLeftAlone();
    void oddPluginsAreSkipped();
    void searchRunsOnEveryShow();
    void oneOfSeveralSiblingsWins();
    void toolNamesComeFromTheProperties();
    void toolWithoutModuleFindsNothing();
    void searchWritesALineForEachSibling();
    void visibilityWritesALineAndChangesNothing();
    void nothingIsWrittenWhileTheCategoryIsOff();
};

void ToolSiblingsTest::buttonsAreDisabledWithoutSiblings()
{
    SiblingBench bench;
    QCOMPARE(bench.enabled(), QStringLiteral("browser position"));
    bench.call("initExternTools");
    QCOMPARE(bench.enabled(), QStringLiteral("- -"));
    QVERIFY(!bench.browser->property("Key0").isValid());
    QVERIFY(!bench.position->property("Key0").isValid());
    QVERIFY(!bench.position->property("Key1").isValid());
}

void ToolSiblingsTest::siblingsAreFoundByTitle_data()
{
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("enabled");

    const auto row = [](const char *title, const char *enabled) {
        QTest::newRow(title) << QString::fromLatin1(title) << QString::fromLatin1(enabled);
    };
    row("Register browser", "browser -");
    row("Register browser 2", "browser -");
    row("Position mode", "- position");
    row("Position mode axis 0", "- position");
    row("register browser", "- -");
    row("position Mode", "- -");
    row("Register", "- -");
    row("A Register browser", "- -");
    row("Velocity mode", "- -");
    row("", "- -");
}

void ToolSiblingsTest::siblingsAreFoundByTitle()
{
    QFETCH(QString, title);
    SiblingBench bench;
    const Sibling sibling(bench.key("tool"), title);
    bench.tool()->showPlugin();
    QTEST(bench.enabled(), "enabled");
    const QVariant found(bench.key("tool"));
    QCOMPARE(bench.browser->property("Key0"), bench.browser->isEnabled() ? found : QVariant());
    QCOMPARE(bench.position->property("Key0"), bench.position->isEnabled() ? found : QVariant());
    QVERIFY(!bench.position->property("Key1").isValid());
    QVERIFY(!bench.browser->property("Key1").isValid());
}

void ToolSiblingsTest::motorDecidesAboutTheKey_data()
{
    QTest::addColumn<int>("motor");
    QTest::addColumn<QByteArray>("property");

    QTest::newRow("0") << 0 << QByteArray("Key0");
    QTest::newRow("1") << 1 << QByteArray("Key1");
    QTest::newRow("5") << 5 << QByteArray("Key1");
    QTest::newRow("255") << 255 << QByteArray("Key1");
}

void ToolSiblingsTest::motorDecidesAboutTheKey()
{
    QFETCH(int, motor);
    QFETCH(QByteArray, property);
    SiblingBench bench;
    const Sibling position(bench.key("position"), positionName, static_cast<unsigned char>(motor));
    // The browser's motor does not count.
    const Sibling browser(bench.key("browser"), browserName, static_cast<unsigned char>(motor));
    bench.call("initExternTools");
    QCOMPARE(bench.enabled(), QStringLiteral("browser position"));
    for (const char *name : {"Key0", "Key1"}) {
        QCOMPARE(bench.position->property(name),
                 property == name ? QVariant(bench.key("position")) : QVariant());
    }
    QCOMPARE(bench.browser->property("Key0"), QVariant(bench.key("browser")));
    QVERIFY(!bench.browser->property("Key1").isValid());
}

void ToolSiblingsTest::siblingsOfOtherModulesAreLeftAlone()
{
    SiblingBench bench;
    const QString own = bench.module()->key();
    const Sibling other(QStringLiteral("other/") + own, browserName);
    const Sibling upper(own.toUpper() + QLatin1String("x"), positionName);
    const Sibling shorter(own.left(own.size() - 2), browserName);
    bench.call("initExternTools");
    QCOMPARE(bench.enabled(), QStringLiteral("- -"));
    QVERIFY(!bench.browser->property("Key0").isValid());
}

void ToolSiblingsTest::oddPluginsAreSkipped()
{
    SiblingBench bench;
    const NotATool notATool(bench.key("a"));
    const OtherKind otherKind(bench.key("e"));
    // A base object does not answer to the interface's identifier.
    ToolsInterface bare(QStringLiteral("bare"), QStringLiteral("Bare"), ToolsType::PositionMode, 0,
                        nullptr, QString(), nullptr);
    bare.setToolsName(positionName);
    HostRegistry::add(&bare, bench.key("b"));
    HostModule module(browserName, bench.key("c"), nullptr);
    const QString nobody = bench.key("d");
    PluginHandlerPrivate::entries().insert(nobody, nullptr);
    bench.call("initExternTools");
    PluginHandlerPrivate::entries().remove(nobody);
    QCOMPARE(bench.enabled(), QStringLiteral("- -"));
    QVERIFY(!bench.browser->property("Key0").isValid());
    QVERIFY(!bench.position->property("Key0").isValid());
}

void ToolSiblingsTest::searchRunsOnEveryShow()
{
    SiblingBench bench;
    bench.tool()->showPlugin();
    QCOMPARE(bench.enabled(), QStringLiteral("- -"));
    {
        const Sibling browser(bench.key("browser"), browserName);
        const Sibling position(bench.key("position"), positionName, 1);
        bench.tool()->showPlugin();
        QCOMPARE(bench.enabled(), QStringLiteral("browser position"));
    }
    QCOMPARE(bench.enabled(), QStringLiteral("browser position"));
    bench.tool()->showPlugin();
    QCOMPARE(bench.enabled(), QStringLiteral("- -"));
    // The keys stay.
    QCOMPARE(bench.browser->property("Key0"), QVariant(bench.key("browser")));
    QCOMPARE(bench.position->property("Key1"), QVariant(bench.key("position")));
}

void ToolSiblingsTest::oneOfSeveralSiblingsWins()
{
    SiblingBench bench;
    const Sibling one(bench.key("one"), browserName);
    const Sibling two(bench.key("two"), browserName);
    const Sibling three(bench.key("three"), browserName);
    bench.call("initExternTools");
    QString last;
    const auto plugins = PluginHandlerPrivate::entries();
    for (auto entry = plugins.cbegin(); entry != plugins.cend(); ++entry) {
        if (qobject_cast<Sibling *>(entry.value()))
            last = entry.key();
    }
    QCOMPARE(bench.browser->property("Key0"), QVariant(last));
}

void ToolSiblingsTest::toolNamesComeFromTheProperties()
{
    SiblingBench bench;
    bench.browser->setProperty("Tool", QStringLiteral("Scope"));
    // What would suit both is the register browser.
    bench.position->setProperty("Tool", QStringLiteral("Sco"));
    const Sibling scope(bench.key("scope"), QStringLiteral("Scope 1"));
    const Sibling browser(bench.key("browser"), browserName);
    bench.call("initExternTools");
    QCOMPARE(bench.enabled(), QStringLiteral("browser -"));
    QCOMPARE(bench.browser->property("Key0"), QVariant(bench.key("scope")));
}

void ToolSiblingsTest::toolWithoutModuleFindsNothing()
{
    BenchGaps gaps;
    gaps.hasModule = false;
    SiblingBench bench(gaps);
    const Sibling browser(QStringLiteral("any/browser"), browserName);
    bench.tool()->showPlugin();
    QCOMPARE(bench.enabled(), QStringLiteral("- -"));
}

void ToolSiblingsTest::searchWritesALineForEachSibling()
{
    SiblingBench bench;
    QWidget frame;
    frame.setObjectName(QStringLiteral("frame"));
    const Sibling other(bench.key("other"), QStringLiteral("Scope \"1\""), 7, &frame);
    QString frameText;
    QDebug(&frameText).nospace() << static_cast<QWidget *>(&frame);
    {
        const LowLevelLog log;
        bench.call("initExternTools");
        QCOMPARE(log.lines(),
                 QStringList{QStringLiteral("void SynchronisedDriveTool::initExternTools() 7 "
                                            "\"Scope \\\"1\\\"\" %1 \"%2\"")
                                 .arg(frameText, bench.key("other"))});
    }
    const Sibling browser(bench.key("browser"), browserName);
    const Sibling foreign(QStringLiteral("foreign"), browserName);
    const NotATool notATool(bench.key("not"));
    const LowLevelLog log;
    bench.tool()->showPlugin();
    QCOMPARE(log.lines().size(), 2);
    const QString line = QStringLiteral("void SynchronisedDriveTool::initExternTools() 0 "
                                        "\"Register browser\" QWidget(0x0) \"%1\"");
    QVERIFY2(log.lines().contains(line.arg(bench.key("browser"))),
             qPrintable(log.lines().join(QLatin1Char('\n'))));
}

void ToolSiblingsTest::visibilityWritesALineAndChangesNothing()
{
    SiblingBench bench;
    const QString enabled = bench.enabled();
    const QString signature = QStringLiteral(
        "virtual void SynchronisedDriveTool::siblingIsVisible(const QString&, bool)");
    const LowLevelLog log;
    bench.tool()->siblingIsVisible(QStringLiteral("a key"), true);
    QCOMPARE(log.lines(),
             QStringList{QStringLiteral("true %1 \"a key\" QVariant(Invalid)").arg(signature)});
    log.lines().clear();
    bench.browser->setProperty("Key0", QStringLiteral("b key"));
    QVERIFY(QMetaObject::invokeMethod(bench.tool(), "siblingIsVisible", Q_ARG(QString, QString()),
                                      Q_ARG(bool, false)));
    QCOMPARE(
        log.lines(),
        QStringList{QStringLiteral("false %1 \"\" QVariant(QString, \"b key\")").arg(signature)});
    QCOMPARE(bench.enabled(), enabled);
    QCOMPARE(bench.browser->property("Key0"), QVariant(QStringLiteral("b key")));
    QVERIFY(bench.requests.isEmpty());
    QVERIFY(bench.link.takeCalls().isEmpty());
}

void ToolSiblingsTest::nothingIsWrittenWhileTheCategoryIsOff()
{
    SiblingBench bench;
    const Sibling browser(bench.key("browser"), browserName);
    const LowLevelLog log(false);
    QVERIFY(!debLowLevel().isDebugEnabled());
    bench.tool()->showPlugin();
    bench.tool()->siblingIsVisible(bench.key("browser"), true);
    bench.browser->click();
    fireSingleShots();
    QVERIFY2(log.lines().isEmpty(), qPrintable(log.lines().join(QLatin1Char('\n'))));
}

QTEST_MAIN(ToolSiblingsTest)
#include "tst_tool_siblings.moc"
