#include "HeadlessPlatform.h"
#include "ToolRig.h"

#include "DebugCategories.h"
#include "ToolDetails.h"

#include <QCborMap>
#include <QJsonObject>
#include <QLibrary>
#include <QLoggingCategory>
#include <QMetaMethod>
#include <QPluginLoader>
#include <QTest>
#include <QTimerEvent>
#include <QWheelEvent>

namespace {

const auto toolInterfaceId = QStringLiteral("com.qvx.ToolsInterface/2.0");

QLibrary &toolLibrary()
{
    static QLibrary library(QStringLiteral(TOOL_MODULE_FILE));
    return library;
}

QObject *factoryObject()
{
    const auto factory =
        reinterpret_cast<QObject *(*)()>(toolLibrary().resolve("qt_plugin_instance"));
    return factory ? factory() : nullptr;
}

QWheelEvent wheelTurn(int delta)
{
    const QPointF at(100, 100);
    return QWheelEvent(at, at, QPoint(), QPoint(0, delta), Qt::NoButton, Qt::NoModifier,
                       Qt::NoScrollPhase, false);
}

} // namespace

class ToolEntryTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { silenceHeadlessPlatform(); }
    void metadataNamesInterfaceClassAndKind();
    void metadataBlockAsksForNoMoreThanQt512();
    void factoryMakesANewPrototypeOnlyWhenItIsGone();
    void prototypeHasNeitherPanelNorModule();
    void prototypeIsQuiet();
    void prototypeLeavesTheDefaultLocaleAlone();
    void slotsAreListedInOrder_data();
    void slotsAreListedInOrder();
    void metaObjectDeclaresNothingButSlots();
    void castsByNameAndInterface();
    void metaCallKnowsNoSpecialTypes();
    void eventHandlersAreCallableAsSlots();
    void versionTextIsExact();
};

void ToolEntryTest::metadataNamesInterfaceClassAndKind()
{
    QPluginLoader loader(QStringLiteral(TOOL_MODULE_FILE));
    const QJsonObject metadata = loader.metaData();
    QCOMPARE(metadata.value(QStringLiteral("IID")).toString(), toolInterfaceId);
    QCOMPARE(toolInterfaceId, QLatin1String(qobject_interface_iid<ToolsInterface *>()));
    QCOMPARE(metadata.value(QStringLiteral("className")).toString(),
             QStringLiteral("SynchronisedDriveTool"));
    const QJsonObject user{{QStringLiteral("name"), QStringLiteral("Tools")}};
    QCOMPARE(metadata.value(QStringLiteral("MetaData")).toObject(), user);
}

void ToolEntryTest::metadataBlockAsksForNoMoreThanQt512()
{
    using Query = const char *(*)();
    const auto query = reinterpret_cast<Query>(toolLibrary().resolve("qt_plugin_query_metadata"));
    QVERIFY(query);
    // Four bytes of a header behind the marker, then a map of 67 bytes.
    const QByteArray block(query(), 12 + 4 + 67);
    QCOMPARE(block.left(12), QByteArray("QTMETADATA !"));
    QCOMPARE(block.mid(12, 4), QByteArray("\0\x05\x0c\0", 4));
    const QCborMap map = QCborValue::fromCbor(block.mid(16)).toMap();
    QCOMPARE(map.keys(), (QVector<QCborValue>{2, 3, 4}));
    QCOMPARE(map.value(2).toString(), toolInterfaceId);
    QCOMPARE(map.value(3).toString(), QStringLiteral("SynchronisedDriveTool"));
    QCOMPARE(map.value(4).toMap(), (QCborMap{{QStringLiteral("name"), QStringLiteral("Tools")}}));
}

void ToolEntryTest::factoryMakesANewPrototypeOnlyWhenItIsGone()
{
    const QPointer<QObject> first = factoryObject();
    QVERIFY(first);
    QCOMPARE(factoryObject(), first.data());
    QCOMPARE(static_cast<QObject *>(toolPrototype()), first.data());
    delete first.data();
    const QPointer<QObject> second = factoryObject();
    QVERIFY(second);
    QVERIFY(!first);
    QCOMPARE(factoryObject(), second.data());
    QVERIFY(qobject_cast<ToolsInterface *>(second.data()));
}

void ToolEntryTest::prototypeHasNeitherPanelNorModule()
{
    ToolsInterface *prototype = toolPrototype();
    QCOMPARE(prototype->name(), QStringLiteral("undefined"));
    QCOMPARE(prototype->motorNumber(), 0);
    QVERIFY(!prototype->module());
    QVERIFY(!prototype->parentWidget());
    QVERIFY(prototype->children().isEmpty());
    QVERIFY(!prototype->layout());
    QVERIFY(prototype->dynamicPropertyNames().isEmpty());
    QVERIFY(prototype->objectName().isEmpty());
    QVERIFY(QAbstractEventDispatcher::instance()->registeredTimers(prototype).isEmpty());
    const ToolDetails details = ToolDetails::of(prototype);
    QCOMPARE(details.className, QStringLiteral("SynchronisedDriveTool"));
    QCOMPARE(static_cast<int>(details.type), 101);
    QCOMPARE(details.iconPath, QStringLiteral(":/Software-Icons/Data"));
}

void ToolEntryTest::prototypeIsQuiet()
{
    ToolsInterface *prototype = toolPrototype();
    prototype->showPlugin();
    callEverySlot(prototype);
    const QString category = QString::fromLatin1(debLowLevel().categoryName());
    QLoggingCategory::setFilterRules(category + QLatin1String(".debug=true"));
    prototype->siblingIsVisible(QString(), false);
    QLoggingCategory::setFilterRules(QString());
    QWheelEvent wheel = wheelTurn(-120);
    QCoreApplication::sendEvent(prototype, &wheel);
    QTest::keyPress(prototype, Qt::Key_Control, Qt::ControlModifier);
    QCoreApplication::sendEvent(prototype, &wheel);
    QTest::keyRelease(prototype, Qt::Key_Control);
    for (const int id : {0, -1, 1, 1 << 20}) {
        QTimerEvent timer(id);
        QCoreApplication::sendEvent(prototype, &timer);
    }
    prototype->show();
    prototype->hide();
    prototype->hidePlugin();
    QVERIFY(QAbstractEventDispatcher::instance()->registeredTimers(prototype).isEmpty());
    QVERIFY(prototype->children().isEmpty());
    QCOMPARE(prototype->version(), toolPrototype()->version());
}

void ToolEntryTest::prototypeLeavesTheDefaultLocaleAlone()
{
    QLocale::setDefault(QLocale::c());
    delete factoryObject();
    QVERIFY(factoryObject());
    QCOMPARE(QLocale(), QLocale::c());
}

void ToolEntryTest::slotsAreListedInOrder_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QByteArray>("signature");
    QTest::addColumn<QList<QByteArray>>("names");

    const auto row = [](int index, const QByteArray &signature, const QList<QByteArray> &names) {
        QTest::newRow(signature.constData()) << index << signature << names;
    };
    row(0, "initExternTools()", {});
    row(1, "timerEvent(QTimerEvent*)", {"ev"});
    row(2, "wheelEvent(QWheelEvent*)", {"ev"});
    row(3, "siblingIsVisible(QString,bool)", {"key", "isVisible"});
    row(4, "setTargetPosition(QPointF,QPoint)", {"point", "outer"});
    row(5, "setTargetPosition(QPointF)", {"point"});
    row(6, "zoom()", {});
    row(7, "on_spM0min_valueChanged(int)", {"arg1"});
    row(8, "on_spM0max_valueChanged(int)", {"arg1"});
    row(9, "on_spM1min_valueChanged(int)", {"arg1"});
    row(10, "on_spM1max_valueChanged(int)", {"arg1"});
    row(11, "on_pbStart_clicked()", {});
    row(12, "on_pbStop_clicked()", {});
    row(13, "on_btnClearTraces_clicked()", {});
    row(14, "on_btnShowRegister_clicked()", {});
    row(15, "on_btnShowPosition_clicked()", {});
}

void ToolEntryTest::slotsAreListedInOrder()
{
    QFETCH(int, index);
    QFETCH(QByteArray, signature);
    const QMetaObject *meta = toolPrototype()->metaObject();
    const QMetaMethod method = meta->method(meta->methodOffset() + index);
    QCOMPARE(method.methodSignature(), signature);
    QTEST(method.parameterNames(), "names");
    QCOMPARE(method.methodType(), QMetaMethod::Slot);
    QCOMPARE(method.access(), QMetaMethod::Private);
    QCOMPARE(method.returnType(), static_cast<int>(QMetaType::Void));
    const bool isCloned = (method.attributes() & QMetaMethod::Cloned) != 0;
    QCOMPARE(isCloned, index == 5);
}

void ToolEntryTest::metaObjectDeclaresNothingButSlots()
{
    const QMetaObject *meta = toolPrototype()->metaObject();
    QCOMPARE(meta->className(), "SynchronisedDriveTool");
    QCOMPARE(meta->superClass()->className(), "ToolsInterface");
    QCOMPARE(meta->methodCount() - meta->methodOffset(), 16);
    QCOMPARE(meta->propertyCount(), meta->propertyOffset());
    QCOMPARE(meta->enumeratorCount(), meta->enumeratorOffset());
    QCOMPARE(meta->classInfoCount(), meta->classInfoOffset());
    QCOMPARE(meta->constructorCount(), 0);
    ToolRig rig;
    QCOMPARE(rig.tool()->metaObject(), meta);
}

void ToolEntryTest::castsByNameAndInterface()
{
    ToolRig rig;
    for (ToolsInterface *tool : {toolPrototype(), rig.tool()}) {
        void *const self = static_cast<QObject *>(tool);
        QCOMPARE(tool->qt_metacast(nullptr), nullptr);
        QCOMPARE(tool->qt_metacast("SynchronisedDriveTool"), self);
        QCOMPARE(tool->qt_metacast("com.qvx.ToolsInterface/2.0"), static_cast<void *>(tool));
        QCOMPARE(tool->qt_metacast("ToolsInterface"), static_cast<void *>(tool));
        QCOMPARE(tool->qt_metacast("QWidget"), static_cast<void *>(static_cast<QWidget *>(tool)));
        QCOMPARE(tool->qt_metacast("com.qvx.ToolsInterface/1.0"), nullptr);
        QCOMPARE(tool->qt_metacast("ChartView"), nullptr);
        QCOMPARE(tool->qt_metacast(""), nullptr);
    }
}

void ToolEntryTest::metaCallKnowsNoSpecialTypes()
{
    ToolsInterface *prototype = toolPrototype();
    const int offset = prototype->metaObject()->methodOffset();
    for (int i = 0; i < 16; ++i) {
        int type = 7;
        int argument = 0;
        void *arguments[] = {&type, &argument};
        QVERIFY(prototype->qt_metacall(QMetaObject::RegisterMethodArgumentMetaType, offset + i,
                                       arguments) < 0);
        QCOMPARE(type, -1);
    }
    void *none[] = {nullptr};
    QCOMPARE(prototype->qt_metacall(QMetaObject::InvokeMetaMethod, offset + 16, none), 0);
}

void ToolEntryTest::eventHandlersAreCallableAsSlots()
{
    ToolRig rig;
    rig.link.takeCalls();
    QTimerEvent *none = nullptr;
    QVERIFY(QMetaObject::invokeMethod(rig.tool(), "timerEvent", Q_ARG(QTimerEvent *, none)));
    QCOMPARE(rig.takeCalls(), QStringList{QStringLiteral("user 0xFD")});

    QVERIFY(QMetaObject::invokeMethod(rig.tool(), "setTargetPosition",
                                      Q_ARG(QPointF, QPointF(30, 40))));
    QCOMPARE(rig.target()->at(0), QPointF(30, 40));
    QCOMPARE(rig.limits(), QStringLiteral("-256 256 -256 256"));
    QVERIFY(QMetaObject::invokeMethod(rig.tool(), "siblingIsVisible", Q_ARG(QString, QString()),
                                      Q_ARG(bool, true)));
    callEverySlot(rig.tool());
}

void ToolEntryTest::versionTextIsExact()
{
    ToolRig rig;
    const auto text = QStringLiteral("4.6.0 - tools_synchronised_drive_tool;"
                                     "Plugin-Interface.4.6.0.tools_synchronised_drive_tool;"
                                     "Plugin ;"
                                     "Plugin.Interface.");
    QCOMPARE(text.size(), 116);
    QCOMPARE(rig.tool()->version(), text);
    QCOMPARE(toolPrototype()->version(), text);
}

QTEST_MAIN(ToolEntryTest)
#include "tst_tool_entry.moc"
