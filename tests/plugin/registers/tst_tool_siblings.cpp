#include "HeadlessPlatform.h"
#include "SiblingRig.h"

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
    SiblingRig rig;
    QCOMPARE(rig.enabled(), QStringLiteral("browser position"));
    rig.call("initExternTools");
    QCOMPARE(rig.enabled(), QStringLiteral("- -"));
    QVERIFY(!rig.browser->property("Key0").isValid());
    QVERIFY(!rig.position->property("Key0").isValid());
    QVERIFY(!rig.position->property("Key1").isValid());
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
    SiblingRig rig;
    const Sibling sibling(rig.key("tool"), title);
    rig.tool()->showPlugin();
    QTEST(rig.enabled(), "enabled");
    const QVariant found(rig.key("tool"));
    QCOMPARE(rig.browser->property("Key0"), rig.browser->isEnabled() ? found : QVariant());
    QCOMPARE(rig.position->property("Key0"), rig.position->isEnabled() ? found : QVariant());
    QVERIFY(!rig.position->property("Key1").isValid());
    QVERIFY(!rig.browser->property("Key1").isValid());
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
    SiblingRig rig;
    const Sibling position(rig.key("position"), positionName, static_cast<unsigned char>(motor));
    // The browser's motor does not count.
    const Sibling browser(rig.key("browser"), browserName, static_cast<unsigned char>(motor));
    rig.call("initExternTools");
    QCOMPARE(rig.enabled(), QStringLiteral("browser position"));
    for (const char *name : {"Key0", "Key1"}) {
        QCOMPARE(rig.position->property(name),
                 property == name ? QVariant(rig.key("position")) : QVariant());
    }
    QCOMPARE(rig.browser->property("Key0"), QVariant(rig.key("browser")));
    QVERIFY(!rig.browser->property("Key1").isValid());
}

void ToolSiblingsTest::siblingsOfOtherModulesAreLeftAlone()
{
    SiblingRig rig;
    const QString own = rig.module()->key();
    const Sibling other(QStringLiteral("other/") + own, browserName);
    const Sibling upper(own.toUpper() + QLatin1String("x"), positionName);
    const Sibling shorter(own.left(own.size() - 2), browserName);
    rig.call("initExternTools");
    QCOMPARE(rig.enabled(), QStringLiteral("- -"));
    QVERIFY(!rig.browser->property("Key0").isValid());
}

void ToolSiblingsTest::oddPluginsAreSkipped()
{
    SiblingRig rig;
    const NotATool notATool(rig.key("a"));
    const OtherKind otherKind(rig.key("e"));
    // A base object does not answer to the interface's identifier.
    ToolsInterface bare(QStringLiteral("bare"), QStringLiteral("Bare"), ToolsType::PositionMode, 0,
                        nullptr, QString(), nullptr);
    bare.setToolsName(positionName);
    HostRegistry::add(&bare, rig.key("b"));
    HostModule module(browserName, rig.key("c"), nullptr);
    const QString nobody = rig.key("d");
    PluginHandlerPrivate::entries().insert(nobody, nullptr);
    rig.call("initExternTools");
    PluginHandlerPrivate::entries().remove(nobody);
    QCOMPARE(rig.enabled(), QStringLiteral("- -"));
    QVERIFY(!rig.browser->property("Key0").isValid());
    QVERIFY(!rig.position->property("Key0").isValid());
}

void ToolSiblingsTest::searchRunsOnEveryShow()
{
    SiblingRig rig;
    rig.tool()->showPlugin();
    QCOMPARE(rig.enabled(), QStringLiteral("- -"));
    {
        const Sibling browser(rig.key("browser"), browserName);
        const Sibling position(rig.key("position"), positionName, 1);
        rig.tool()->showPlugin();
        QCOMPARE(rig.enabled(), QStringLiteral("browser position"));
    }
    QCOMPARE(rig.enabled(), QStringLiteral("browser position"));
    rig.tool()->showPlugin();
    QCOMPARE(rig.enabled(), QStringLiteral("- -"));
    // The keys stay.
    QCOMPARE(rig.browser->property("Key0"), QVariant(rig.key("browser")));
    QCOMPARE(rig.position->property("Key1"), QVariant(rig.key("position")));
}

void ToolSiblingsTest::oneOfSeveralSiblingsWins()
{
    SiblingRig rig;
    const Sibling one(rig.key("one"), browserName);
    const Sibling two(rig.key("two"), browserName);
    const Sibling three(rig.key("three"), browserName);
    rig.call("initExternTools");
    QString last;
    const auto plugins = PluginHandlerPrivate::entries();
    for (auto entry = plugins.cbegin(); entry != plugins.cend(); ++entry) {
        if (qobject_cast<Sibling *>(entry.value()))
            last = entry.key();
    }
    QCOMPARE(rig.browser->property("Key0"), QVariant(last));
}

void ToolSiblingsTest::toolNamesComeFromTheProperties()
{
    SiblingRig rig;
    rig.browser->setProperty("Tool", QStringLiteral("Scope"));
    // What would suit both is the register browser.
    rig.position->setProperty("Tool", QStringLiteral("Sco"));
    const Sibling scope(rig.key("scope"), QStringLiteral("Scope 1"));
    const Sibling browser(rig.key("browser"), browserName);
    rig.call("initExternTools");
    QCOMPARE(rig.enabled(), QStringLiteral("browser -"));
    QCOMPARE(rig.browser->property("Key0"), QVariant(rig.key("scope")));
}

void ToolSiblingsTest::toolWithoutModuleFindsNothing()
{
    RigGaps gaps;
    gaps.hasModule = false;
    SiblingRig rig(gaps);
    const Sibling browser(QStringLiteral("any/browser"), browserName);
    rig.tool()->showPlugin();
    QCOMPARE(rig.enabled(), QStringLiteral("- -"));
}

void ToolSiblingsTest::searchWritesALineForEachSibling()
{
    SiblingRig rig;
    QWidget frame;
    frame.setObjectName(QStringLiteral("frame"));
    const Sibling other(rig.key("other"), QStringLiteral("Scope \"1\""), 7, &frame);
    QString frameText;
    QDebug(&frameText).nospace() << static_cast<QWidget *>(&frame);
    {
        const LowLevelLog log;
        rig.call("initExternTools");
        QCOMPARE(log.lines(),
                 QStringList{QStringLiteral("void SynchronisedDriveTool::initExternTools() 7 "
                                            "\"Scope \\\"1\\\"\" %1 \"%2\"")
                                 .arg(frameText, rig.key("other"))});
    }
    const Sibling browser(rig.key("browser"), browserName);
    const Sibling foreign(QStringLiteral("foreign"), browserName);
    const NotATool notATool(rig.key("not"));
    const LowLevelLog log;
    rig.tool()->showPlugin();
    QCOMPARE(log.lines().size(), 2);
    const QString line = QStringLiteral("void SynchronisedDriveTool::initExternTools() 0 "
                                        "\"Register browser\" QWidget(0x0) \"%1\"");
    QVERIFY2(log.lines().contains(line.arg(rig.key("browser"))),
             qPrintable(log.lines().join(QLatin1Char('\n'))));
}

void ToolSiblingsTest::visibilityWritesALineAndChangesNothing()
{
    SiblingRig rig;
    const QString enabled = rig.enabled();
    const QString signature = QStringLiteral(
        "virtual void SynchronisedDriveTool::siblingIsVisible(const QString&, bool)");
    const LowLevelLog log;
    rig.tool()->siblingIsVisible(QStringLiteral("a key"), true);
    QCOMPARE(log.lines(),
             QStringList{QStringLiteral("true %1 \"a key\" QVariant(Invalid)").arg(signature)});
    log.lines().clear();
    rig.browser->setProperty("Key0", QStringLiteral("b key"));
    QVERIFY(QMetaObject::invokeMethod(rig.tool(), "siblingIsVisible", Q_ARG(QString, QString()),
                                      Q_ARG(bool, false)));
    QCOMPARE(
        log.lines(),
        QStringList{QStringLiteral("false %1 \"\" QVariant(QString, \"b key\")").arg(signature)});
    QCOMPARE(rig.enabled(), enabled);
    QCOMPARE(rig.browser->property("Key0"), QVariant(QStringLiteral("b key")));
    QVERIFY(rig.requests.isEmpty());
    QVERIFY(rig.link.takeCalls().isEmpty());
}

void ToolSiblingsTest::nothingIsWrittenWhileTheCategoryIsOff()
{
    SiblingRig rig;
    const Sibling browser(rig.key("browser"), browserName);
    const LowLevelLog log(false);
    QVERIFY(!debLowLevel().isDebugEnabled());
    rig.tool()->showPlugin();
    rig.tool()->siblingIsVisible(rig.key("browser"), true);
    rig.browser->click();
    fireSingleShots();
    QVERIFY2(log.lines().isEmpty(), qPrintable(log.lines().join(QLatin1Char('\n'))));
}

QTEST_MAIN(ToolSiblingsTest)
#include "tst_tool_siblings.moc"
