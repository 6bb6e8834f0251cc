#include "FieldCoding.h"
#include "ProductBuilder.h"
#include "XmlRegisterSet.h"
#include "XmlValueRegister.h"
#include "XmlValueRegisterField.h"

#include <QPointer>
#include <QTest>

#include <limits>

namespace {

RegisterInfo namedRegister(const QString &name, unsigned int address)
{
    RegisterInfo info;
    info.name = name;
    info.address = address;
    return info;
}

FieldInfo bits(int lowBit, int width, bool isSigned)
{
    return {QStringLiteral("F"), QStringLiteral("Field"), lowBit, width, isSigned};
}

constexpr int intMin = std::numeric_limits<int>::min();
constexpr int intMax = std::numeric_limits<int>::max();

} // namespace

class HostRegistersTest : public QObject
{
    Q_OBJECT

private slots:
    void registersAreFoundByExactNameAndAddress();
    void fieldsAreFoundByExactIdentifier();
    void hiddenOnesAreFoundOnlyOnRequest();
    void aHiddenFieldHidesItsNamesakeUnlessAllRegistersAreSearched();
    void doubleNamesAndAddressesAreRefused();
    void fieldsMustLieWithinTheirRegister_data();
    void fieldsMustLieWithinTheirRegister();
    void deletedRegistersAndTheirFieldsAreNoLongerFound();
    void registersAreListedByAscendingAddress();
    void theProductOwnsWhatIsLeft();
    void theBuilderStartsAnewAfterTake();
    void fieldValuesAreCodedIntoTheirBits_data();
    void fieldValuesAreCodedIntoTheirBits();
    void rangesFollowWidthAndSign_data();
    void rangesFollowWidthAndSign();
};

void HostRegistersTest::registersAreFoundByExactNameAndAddress()
{
    ProductBuilder builder;
    auto *const vmax = builder.addRegister(namedRegister(QStringLiteral("M0_VMAX"), 0x27));
    const auto product = builder.take();
    QCOMPARE(product->getRegisterByName(QStringLiteral("M0_VMAX"), true), vmax);
    QCOMPARE(product->registerSet()->getRegister(0x27), vmax);
    QCOMPARE(vmax->name(), QStringLiteral("M0_VMAX"));
    QCOMPARE(vmax->address(), 0x27u);
    QVERIFY(!product->getRegisterByName(QStringLiteral("m0_vmax"), true));
    QVERIFY(!product->getRegisterByName(QStringLiteral("M0_VMA"), true));
    QVERIFY(!product->getRegisterByName(QString(), true));
    QVERIFY(!product->registerSet()->getRegister(0x28));
}

void HostRegistersTest::fieldsAreFoundByExactIdentifier()
{
    ProductBuilder builder;
    auto *const reg = builder.addRegister(namedRegister(QStringLiteral("RAMPMODE"), 0x20));
    auto *const field = builder.addField(
        reg, {QStringLiteral("RAMPMODE0"), QStringLiteral("Mode of axis 0"), 0, 8, false});
    const auto product = builder.take();
    QCOMPARE(product->getRegisterFieldByIdentifier(QStringLiteral("RAMPMODE0"), false, true),
             field);
    QCOMPARE(field->getRegister(), reg);
    QCOMPARE(field->getName(), QStringLiteral("Mode of axis 0"));
    QVERIFY(!product->getRegisterFieldByIdentifier(QStringLiteral("RAMPMODE"), false, true));
    QVERIFY(!product->getRegisterFieldByIdentifier(QStringLiteral("rampmode0"), true, true));
}

void HostRegistersTest::hiddenOnesAreFoundOnlyOnRequest()
{
    ProductBuilder builder;
    RegisterInfo info = namedRegister(QStringLiteral("TEST"), 1);
    info.visible = false;
    auto *const reg = builder.addRegister(info);
    FieldInfo hidden = bits(0, 4, false);
    hidden.visible = false;
    auto *const field = builder.addField(reg, hidden);
    const auto product = builder.take();
    QVERIFY(!product->getRegisterByName(info.name, true));
    QCOMPARE(product->getRegisterByName(info.name, false), reg);
    QVERIFY(!product->getRegisterFieldByIdentifier(hidden.identifier, false, true));
    QCOMPARE(product->getRegisterFieldByIdentifier(hidden.identifier, true, true), field);
}

void HostRegistersTest::aHiddenFieldHidesItsNamesakeUnlessAllRegistersAreSearched()
{
    ProductBuilder builder;
    FieldInfo hidden = bits(0, 4, false);
    hidden.visible = false;
    builder.addField(builder.addRegister(namedRegister(QStringLiteral("A"), 1)), hidden);
    auto *const visible = builder.addField(
        builder.addRegister(namedRegister(QStringLiteral("B"), 2)), bits(0, 4, false));
    const auto product = builder.take();
    QVERIFY(!product->getRegisterFieldByIdentifier(hidden.identifier, false, false));
    QCOMPARE(product->getRegisterFieldByIdentifier(hidden.identifier, false, true), visible);
}

void HostRegistersTest::doubleNamesAndAddressesAreRefused()
{
    ProductBuilder builder;
    QVERIFY(builder.addRegister(namedRegister(QStringLiteral("A"), 1)));
    QVERIFY(!builder.addRegister(namedRegister(QStringLiteral("A"), 2)));
    QVERIFY(!builder.addRegister(namedRegister(QStringLiteral("B"), 1)));
    QVERIFY(!builder.addRegister(namedRegister(QString(), 3)));
    QCOMPARE(ChipInfo::registers(builder.take().get()).size(), 1);
}

void HostRegistersTest::fieldsMustLieWithinTheirRegister_data()
{
    QTest::addColumn<int>("lowBit");
    QTest::addColumn<int>("width");
    QTest::addColumn<bool>("isAccepted");
    QTest::newRow("whole register") << 0 << 32 << true;
    QTest::newRow("top bit") << 31 << 1 << true;
    QTest::newRow("one bit too far") << 31 << 2 << false;
    QTest::newRow("no bits") << 0 << 0 << false;
    QTest::newRow("before the register") << -1 << 4 << false;
    QTest::newRow("too wide") << 0 << 33 << false;
}

void HostRegistersTest::fieldsMustLieWithinTheirRegister()
{
    QFETCH(int, lowBit);
    QFETCH(int, width);
    ProductBuilder builder;
    auto *const reg = builder.addRegister(namedRegister(QStringLiteral("A"), 1));
    QTEST(builder.addField(reg, bits(lowBit, width, false)) != nullptr, "isAccepted");
}

void HostRegistersTest::deletedRegistersAndTheirFieldsAreNoLongerFound()
{
    ProductBuilder builder;
    auto *const gone = builder.addRegister(namedRegister(QStringLiteral("GONE"), 1));
    const QPointer<XmlValueRegisterField> field = builder.addField(gone, bits(0, 8, false));
    auto *const rest = builder.addRegister(namedRegister(QStringLiteral("REST"), 2));
    auto *const deletedField =
        builder.addField(rest, {QStringLiteral("DELETED"), QStringLiteral("Deleted"), 0, 8, false});
    const auto product = builder.take();
    delete gone;
    delete deletedField;
    QVERIFY(!field);
    QVERIFY(!product->getRegisterByName(QStringLiteral("GONE"), true));
    QVERIFY(!product->registerSet()->getRegister(1));
    QVERIFY(!product->getRegisterFieldByIdentifier(QStringLiteral("F"), true, true));
    QVERIFY(!product->getRegisterFieldByIdentifier(QStringLiteral("DELETED"), true, true));
    QCOMPARE(ChipInfo::registers(product.get()), {rest});
    QVERIFY(ChipInfo::fields(rest).isEmpty());
}

void HostRegistersTest::registersAreListedByAscendingAddress()
{
    ProductBuilder builder;
    RegisterInfo high = namedRegister(QStringLiteral("A"), 0x40);
    high.unit = QStringLiteral("pps");
    high.writable = false;
    auto *const second = builder.addRegister(high);
    auto *const first = builder.addRegister(namedRegister(QStringLiteral("B"), 0x20));
    const auto product = builder.take();
    QCOMPARE(ChipInfo::registers(product.get()), (QList<XmlValueRegister *>{first, second}));
    QCOMPARE(ChipInfo::of(second).unit, QStringLiteral("pps"));
    QVERIFY(!ChipInfo::of(second).writable);
    QVERIFY(ChipInfo::registers(nullptr).isEmpty());
}

void HostRegistersTest::theProductOwnsWhatIsLeft()
{
    ProductBuilder builder;
    const QPointer<XmlValueRegister> reg =
        builder.addRegister(namedRegister(QStringLiteral("A"), 1));
    auto product = builder.take();
    QVERIFY(reg);
    product.reset();
    QVERIFY(!reg);
}

void HostRegistersTest::theBuilderStartsAnewAfterTake()
{
    ProductBuilder builder;
    builder.addRegister(namedRegister(QStringLiteral("A"), 1));
    const auto first = builder.take();
    QVERIFY(builder.addRegister(namedRegister(QStringLiteral("A"), 1)));
    QCOMPARE(ChipInfo::registers(builder.take().get()).size(), 1);
    QCOMPARE(ChipInfo::registers(first.get()).size(), 1);
}

void HostRegistersTest::fieldValuesAreCodedIntoTheirBits_data()
{
    QTest::addColumn<int>("lowBit");
    QTest::addColumn<int>("width");
    QTest::addColumn<bool>("isSigned");
    QTest::addColumn<int>("before");
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("after");
    QTest::addColumn<int>("extracted");
    QTest::newRow("whole signed") << 0 << 32 << true << 77 << -5 << -5 << -5;
    QTest::newRow("whole signed minimum") << 0 << 32 << true << 0 << intMin << intMin << intMin;
    QTest::newRow("24 bits, negative") << 0 << 24 << true << 0x7F000000 << -1 << 0x7FFFFFFF << -1;
    QTest::newRow("middle bits") << 8 << 8 << false << 0x00FF00FF << 0x12 << 0x00FF12FF << 0x12;
    QTest::newRow("too large is cut") << 8 << 2 << false << 0 << 7 << 0x300 << 3;
    QTest::newRow("top bit") << 31 << 1 << false << 1 << 1 << intMin + 1 << 1;
    QTest::newRow("signed top bits") << 28 << 4 << true << 0 << -8 << intMin << -8;
    QTest::newRow("unsigned beyond int") << 0 << 32 << false << 0 << -1 << -1 << intMax;
}

void HostRegistersTest::fieldValuesAreCodedIntoTheirBits()
{
    QFETCH(int, lowBit);
    QFETCH(int, width);
    QFETCH(bool, isSigned);
    QFETCH(int, before);
    QFETCH(int, value);
    const FieldInfo info = bits(lowBit, width, isSigned);
    const int after = FieldCoding::insert(info, before, value);
    QTEST(after, "after");
    QTEST(FieldCoding::extract(info, after), "extracted");
}

void HostRegistersTest::rangesFollowWidthAndSign_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<bool>("isSigned");
    QTest::addColumn<int>("min");
    QTest::addColumn<int>("max");
    QTest::newRow("bit") << 1 << false << 0 << 1;
    QTest::newRow("signed bit") << 1 << true << -1 << 0;
    QTest::newRow("signed 24") << 24 << true << -8388608 << 8388607;
    QTest::newRow("unsigned 31") << 31 << false << 0 << intMax;
    QTest::newRow("unsigned 32") << 32 << false << 0 << intMax;
    QTest::newRow("signed 32") << 32 << true << intMin << intMax;
}

void HostRegistersTest::rangesFollowWidthAndSign()
{
    QFETCH(int, width);
    QFETCH(bool, isSigned);
    const FieldCoding::Range range = FieldCoding::range(bits(0, width, isSigned));
    QTEST(range.min, "min");
    QTEST(range.max, "max");
}

QTEST_GUILESS_MAIN(HostRegistersTest)
#include "tst_host_registers.moc"
