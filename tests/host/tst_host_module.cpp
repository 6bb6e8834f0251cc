#include "CommandHandlerInterface.h"
#include "HostModule.h"
#include "ProductBuilder.h"
#include "RecordingLink.h"
#include "ToolsInterface.h"
#include "XmlValueRegister.h"
#include "XmlValueRegisterField.h"

#include <QPointer>
#include <QSignalSpy>
#include <QTest>

namespace {

constexpr int untouched = 4711;

class PlainTool : public ToolsInterface
{
public:
    PlainTool(unsigned char motor, QVXLModuleInterface *module)
        : ToolsInterface(QStringLiteral("plain"), QStringLiteral("PlainTool"),
                         ToolsType::RegisterBrowser, motor, module, QString(), nullptr)
    {
    }
};

QStringList lines(const QString &line)
{
    return {line};
}

} // namespace

class HostModuleTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void readsAndWritesReachTheLink();
    void aFailedReadLeavesTheValueAlone();
    void nullObjectsSendNothing();
    void aReadOnlyRegisterIsNeverWritten();
    void aWriteOnlyRegisterIsNeverRead();
    void withoutALinkNothingWorks();
    void aFieldWriteKeepsTheOtherBitsWithoutReading();
    void aNegativeFieldIsMaskedAndReadBackWithItsSign();
    void aFailedReadBackFailsButTheWriteIsTold();
    void theSignalTellsTheValueBefore();
    void aFailedWriteIsNotTold();
    void oneChipMayServeSeveralMotors();
    void chipsOfTheirOwnKeepTheirOwnValues();
    void aListenerMayWriteAgain();
    void aListenerMayDeleteTheRegister();
    void aListenerMayDeleteTheModule();
    void circularModeCanBeSeen();
    void aUserFunctionGoesThroughTheLink();
    void aFailedUserFunctionLeavesTheBytes();
    void aToolSurvivesItsModule();

private:
    RecordingLink link;
    std::unique_ptr<HostModule> module;
    XmlValueRegister *plain = nullptr;
    XmlValueRegister *readOnly = nullptr;
    XmlValueRegister *writeOnly = nullptr;
    XmlValueRegister *mixed = nullptr;
    XmlValueRegisterField *lowField = nullptr;
    XmlValueRegisterField *signedField = nullptr;
    XmlValueRegisterField *writeOnlyField = nullptr;
    XmlValueRegisterField *readOnlyField = nullptr;
};

void HostModuleTest::init()
{
    link = RecordingLink();
    ProductBuilder builder;
    plain = builder.addRegister({QStringLiteral("PLAIN"), 0x21, true, true, 0});
    readOnly = builder.addRegister({QStringLiteral("RO"), 0x22, true, false, 0});
    writeOnly = builder.addRegister({QStringLiteral("WO"), 0x23, false, true, 0});
    mixed = builder.addRegister({QStringLiteral("MIXED"), 0x24, true, true, 0x7F000000});
    lowField = builder.addField(mixed, {QStringLiteral("LOW"), QStringLiteral("Low"), 0, 8});
    signedField =
        builder.addField(mixed, {QStringLiteral("SIGNED"), QStringLiteral("Signed"), 8, 16, true});
    writeOnlyField =
        builder.addField(writeOnly, {QStringLiteral("WOF"), QStringLiteral("W"), 0, 8});
    readOnlyField = builder.addField(readOnly, {QStringLiteral("ROF"), QStringLiteral("R"), 0, 8});
    module = std::make_unique<HostModule>(QStringLiteral("module"), QStringLiteral("m/"), &link);
    const std::shared_ptr<XmlProductIC> chip = builder.take();
    module->setProduct(0, chip);
    module->setProduct(1, chip);
}

void HostModuleTest::cleanup()
{
    module.reset();
}

void HostModuleTest::readsAndWritesReachTheLink()
{
    link.values.insert(0x21, -12);
    int value = untouched;
    QVERIFY(module->readChannelRegister(plain, 1, &value));
    QCOMPARE(value, -12);
    QVERIFY(module->writeChannelRegister(plain, 0, 768));
    QCOMPARE(link.calls,
             (QStringList{QStringLiteral("read 0x21 m1"), QStringLiteral("write 0x21 m0 768")}));
}

void HostModuleTest::aFailedReadLeavesTheValueAlone()
{
    link.failReads = true;
    int value = untouched;
    QVERIFY(!module->readChannelRegister(plain, 0, &value));
    QCOMPARE(value, untouched);
}

void HostModuleTest::nullObjectsSendNothing()
{
    int value = untouched;
    QVERIFY(!module->readChannelRegister(nullptr, 0, &value));
    QVERIFY(!module->writeChannelRegister(nullptr, 0, 1));
    QVERIFY(!module->writeAndReadChannelField(nullptr, 0, 1, &value));
    QCOMPARE(value, untouched);
    QCOMPARE(module->outputValue(nullptr, 0), 0);
    QVERIFY(link.calls.isEmpty());
}

void HostModuleTest::aReadOnlyRegisterIsNeverWritten()
{
    QSignalSpy written(module.get(), &QVXLModuleInterface::registerOutputBufferHasWritten);
    int value = untouched;
    QVERIFY(!module->writeChannelRegister(readOnly, 0, 1));
    QVERIFY(!module->writeAndReadChannelField(readOnlyField, 0, 1, &value));
    QVERIFY(link.calls.isEmpty());
    QVERIFY(written.isEmpty());
    QCOMPARE(value, untouched);
}

void HostModuleTest::aWriteOnlyRegisterIsNeverRead()
{
    int value = untouched;
    QVERIFY(!module->readChannelRegister(writeOnly, 0, &value));
    QCOMPARE(value, untouched);
    QVERIFY(module->writeAndReadChannelField(writeOnlyField, 0, 9, &value));
    QCOMPARE(value, 9);
    QCOMPARE(link.calls, lines(QStringLiteral("write 0x23 m0 9")));
}

void HostModuleTest::withoutALinkNothingWorks()
{
    PlainTool tool(0, module.get());
    QVERIFY(tool.commandHandler());
    module->setLink(nullptr);
    QSignalSpy written(module.get(), &QVXLModuleInterface::registerOutputBufferHasWritten);
    int value = untouched;
    QVERIFY(!module->readChannelRegister(plain, 0, &value));
    QVERIFY(!module->writeChannelRegister(plain, 0, 1));
    QVERIFY(!module->writeAndReadChannelField(lowField, 0, 1, &value));
    unsigned char a = 1;
    unsigned char b = 2;
    QCOMPARE(tool.userFunction(&a, &b, 0xFD, 0), 0);
    QVERIFY(!tool.commandHandler());
    QCOMPARE(value, untouched);
    QVERIFY(written.isEmpty());
    QVERIFY(link.calls.isEmpty());
}

void HostModuleTest::aFieldWriteKeepsTheOtherBitsWithoutReading()
{
    QVERIFY(module->writeAndReadChannelField(lowField, 0, 0x12, nullptr));
    QVERIFY(module->writeChannelRegister(mixed, 0, 0x00ABCD00));
    QVERIFY(module->writeAndReadChannelField(lowField, 0, 0x134, nullptr));
    QCOMPARE(link.calls, (QStringList{QStringLiteral("write 0x24 m0 %1").arg(0x7F000012),
                                      QStringLiteral("write 0x24 m0 %1").arg(0x00ABCD00),
                                      QStringLiteral("write 0x24 m0 %1").arg(0x00ABCD34)}));
}

void HostModuleTest::aNegativeFieldIsMaskedAndReadBackWithItsSign()
{
    int value = untouched;
    QVERIFY(module->writeAndReadChannelField(signedField, 0, -2, &value));
    QCOMPARE(value, -2);
    QCOMPARE(link.calls, (QStringList{QStringLiteral("write 0x24 m0 %1").arg(0x7FFFFE00),
                                      QStringLiteral("read 0x24 m0")}));
}

void HostModuleTest::aFailedReadBackFailsButTheWriteIsTold()
{
    QSignalSpy written(module.get(), &QVXLModuleInterface::registerOutputBufferHasWritten);
    link.failReads = true;
    int value = untouched;
    QVERIFY(!module->writeAndReadChannelField(signedField, 0, 1, &value));
    QCOMPARE(value, untouched);
    QCOMPARE(written.size(), 1);
}

void HostModuleTest::theSignalTellsTheValueBefore()
{
    QSignalSpy written(module.get(), &QVXLModuleInterface::registerOutputBufferHasWritten);
    module->writeChannelRegister(mixed, 1, 5);
    module->writeChannelRegister(mixed, 1, 6);
    QCOMPARE(written.size(), 2);
    QCOMPARE(written.at(0), (QVariantList{QVariant::fromValue<unsigned short>(0x24), 5, 0x7F000000,
                                          QVariant::fromValue<unsigned char>(1)}));
    QCOMPARE(written.at(1).at(1).toInt(), 6);
    QCOMPARE(written.at(1).at(2).toInt(), 5);
}

void HostModuleTest::aFailedWriteIsNotTold()
{
    QSignalSpy written(module.get(), &QVXLModuleInterface::registerOutputBufferHasWritten);
    link.failWrites = true;
    QVERIFY(!module->writeChannelRegister(plain, 0, 5));
    QVERIFY(written.isEmpty());
    QCOMPARE(module->outputValue(plain, 0), 0);
}

void HostModuleTest::oneChipMayServeSeveralMotors()
{
    QVERIFY(module->getIcProduct(0));
    QCOMPARE(module->getIcProduct(0), module->getIcProduct(1));
    QVERIFY(!module->getIcProduct(2));
    module->writeChannelRegister(mixed, 1, 0x1100);
    QCOMPARE(module->outputValue(mixed, 0), 0x1100);
    module->writeAndReadChannelField(lowField, 0, 0x22, nullptr);
    QCOMPARE(link.calls.last(), QStringLiteral("write 0x24 m0 %1").arg(0x1122));
}

void HostModuleTest::chipsOfTheirOwnKeepTheirOwnValues()
{
    module->setProduct(2, ProductBuilder().take());
    module->writeChannelRegister(plain, 0, 5);
    QCOMPARE(module->outputValue(plain, 2), 0);
    QCOMPARE(module->outputValue(plain, 0), 5);
}

void HostModuleTest::aListenerMayWriteAgain()
{
    const auto again = connect(module.get(), &QVXLModuleInterface::registerOutputBufferHasWritten,
                               this, [this](unsigned short, int value) {
                                   if (value < 3)
                                       module->writeChannelRegister(plain, 0, value + 1);
                               });
    QVERIFY(module->writeChannelRegister(plain, 0, 1));
    disconnect(again);
    QCOMPARE(link.calls.size(), 3);
    QCOMPARE(module->outputValue(plain, 0), 3);
}

void HostModuleTest::aListenerMayDeleteTheRegister()
{
    connect(module.get(), &QVXLModuleInterface::registerOutputBufferHasWritten, mixed,
            [this] { delete mixed; });
    int value = untouched;
    QVERIFY(module->writeAndReadChannelField(signedField, 0, -7, &value));
    QCOMPARE(value, -7);
    QVERIFY(!module->getIcProduct(0)->getRegisterByName(QStringLiteral("MIXED"), true));
}

void HostModuleTest::aListenerMayDeleteTheModule()
{
    connect(module.get(), &QVXLModuleInterface::registerOutputBufferHasWritten, this,
            [this] { module.reset(); });
    int value = untouched;
    QVERIFY(!module->writeAndReadChannelField(signedField, 0, -7, &value));
    QCOMPARE(value, untouched);
    QVERIFY(!module);
}

void HostModuleTest::circularModeCanBeSeen()
{
    PlainTool tool(0, module.get());
    QVERIFY(!module->isCircularMode());
    tool.commandHandler()->setCircularMode(true);
    QVERIFY(module->isCircularMode());
    tool.commandHandler()->setCircularMode(false);
    QVERIFY(!module->isCircularMode());
}

void HostModuleTest::aUserFunctionGoesThroughTheLink()
{
    PlainTool tool(1, module.get());
    link.position0 = 0x123456;
    link.position1 = -1;
    unsigned char a = 0;
    unsigned char b = 0x48;
    QCOMPARE(tool.userFunction(&a, &b, 0xFD, 0), 0x56FFFFFF);
    QCOMPARE(int(a), 0x12);
    QCOMPARE(int(b), 0x34);
    QCOMPARE(link.calls, lines(QStringLiteral("user 0xFD")));
    QCOMPARE(tool.userFunction(nullptr, nullptr, 0xFD, 0), 0x56FFFFFF);
}

void HostModuleTest::aFailedUserFunctionLeavesTheBytes()
{
    // Breaks the rule for links that a failed request leaves its results alone.
    struct SloppyLink : RecordingLink
    {
        bool userFunction(unsigned char *a, unsigned char *b, unsigned char, unsigned char,
                          unsigned char, unsigned int *reply) override
        {
            *a = *b = 0xEE;
            *reply = 99;
            return false;
        }
    } sloppy;
    module->setLink(&sloppy);
    PlainTool tool(0, module.get());
    unsigned char a = 1;
    unsigned char b = 2;
    QCOMPARE(tool.userFunction(&a, &b, 0xFD, 0), 0);
    QCOMPARE(int(a), 1);
    QCOMPARE(int(b), 2);
}

void HostModuleTest::aToolSurvivesItsModule()
{
    PlainTool tool(0, module.get());
    QCOMPARE(tool.module(), module.get());
    module.reset();
    QVERIFY(!tool.module());
    QVERIFY(!tool.commandHandler());
    unsigned char a = 1;
    unsigned char b = 2;
    QCOMPARE(tool.userFunction(&a, &b, 0xFD, 0), 0);
}

QTEST_MAIN(HostModuleTest)
#include "tst_host_module.moc"
