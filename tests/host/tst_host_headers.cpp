// That each header of the host compiles alone is checked when this program is built, by one
// generated source for each. What the headers promise to the meta-object system is checked here.

#include "PluginInterface.h"
#include "QVXLModuleInterface.h"
#include "ToolsInterface.h"
#include "XmlRegisterWidget.h"
#include "XmlRegisterWidgetContainer.h"

#include <QMetaMethod>
#include <QTest>

Q_DECLARE_METATYPE(const QMetaObject *)

class HostHeadersTest : public QObject
{
    Q_OBJECT

private slots:
    void signalsHaveTheSignaturesThatPluginsConnectTo_data();
    void signalsHaveTheSignaturesThatPluginsConnectTo();
    void siblingVisibilityIsASlot();
    void toolsAreCastByTheirInterfaceIdentifier();
    void valuesThatPluginsRelyOnAreFixed();
};

void HostHeadersTest::signalsHaveTheSignaturesThatPluginsConnectTo_data()
{
    QTest::addColumn<const QMetaObject *>("metaObject");
    QTest::addColumn<QByteArray>("signature");
    QTest::newRow("device tree")
        << &PluginInterface::staticMetaObject
        << QByteArray("signalDeviceTreeOperation(eDeviceTreeOperation,QString,QVariant)");
    QTest::newRow("register written")
        << &QVXLModuleInterface::staticMetaObject
        << QByteArray("registerOutputBufferHasWritten(ushort,int,int,uchar)");
    QTest::newRow("value changed")
        << &XmlRegisterWidget::staticMetaObject << QByteArray("valueChanged(int)");
}

void HostHeadersTest::signalsHaveTheSignaturesThatPluginsConnectTo()
{
    QFETCH(const QMetaObject *, metaObject);
    QFETCH(QByteArray, signature);
    QVERIFY(metaObject->indexOfSignal(signature.constData()) >= metaObject->methodOffset());
}

void HostHeadersTest::siblingVisibilityIsASlot()
{
    QVERIFY(ToolsInterface::staticMetaObject.indexOfSlot("siblingIsVisible(QString,bool)") >= 0);
    QCOMPARE(ToolsInterface::staticMetaObject.superClass(), &PluginInterface::staticMetaObject);
}

void HostHeadersTest::toolsAreCastByTheirInterfaceIdentifier()
{
    QCOMPARE(qobject_interface_iid<ToolsInterface *>(), "com.qvx.ToolsInterface/2.0");
}

void HostHeadersTest::valuesThatPluginsRelyOnAreFixed()
{
    QCOMPARE(int(ToolsType::SynchronisedDriveTool), 101);
    QCOMPARE(int(eDeviceTreeOpenPlugin), 1);
}

QTEST_GUILESS_MAIN(HostHeadersTest)
#include "tst_host_headers.moc"
