#include "AppSettings.h"
#include "BasicTools.h"
#include "DebugCategories.h"
#include "DynamicProperty.h"
#include "ExportTypes.h"
#include "HostLocale.h"

#include <QFile>
#include <QIcon>
#include <QTemporaryDir>
#include <QTest>

namespace {

// Made before main(), like the statics of a plug-in.
const QLocale localeSeenByAStatic = curLocale;

} // namespace

class HostConstantsTest : public QObject
{
    Q_OBJECT

private slots:
    void hexadecimalTextsArePadded_data();
    void hexadecimalTextsArePadded();
    void theLocaleIsFrenchInFrance();
    void settingsAreSharedThroughOneFile();
    void lowLevelDebugLinesAreOff();
    void sharedNamesAreSpelledAsPluginsExpect();
    void toolIconsAreFound_data();
    void toolIconsAreFound();
    void playerIconsAreSharpAtNinePixels();
};

void HostConstantsTest::hexadecimalTextsArePadded_data()
{
    QTest::addColumn<unsigned int>("value");
    QTest::addColumn<int>("digits");
    QTest::addColumn<QString>("text");
    QTest::newRow("padded") << 0xAu << 2 << QStringLiteral("0x0A");
    QTest::newRow("exact") << 0x2Du << 2 << QStringLiteral("0x2D");
    QTest::newRow("longer") << 0x1ABu << 2 << QStringLiteral("0x1AB");
    QTest::newRow("largest") << 0xFFFFFFFFu << 2 << QStringLiteral("0xFFFFFFFF");
    QTest::newRow("no digits asked for") << 0u << 0 << QStringLiteral("0x0");
}

void HostConstantsTest::hexadecimalTextsArePadded()
{
    QFETCH(unsigned int, value);
    QFETCH(int, digits);
    QTEST(BasicTools::iToHex(value, digits, QStringLiteral("0x")), "text");
}

void HostConstantsTest::theLocaleIsFrenchInFrance()
{
    QCOMPARE(curLocale.language(), QLocale::French);
    QCOMPARE(curLocale.country(), QLocale::France);
    QCOMPARE(localeSeenByAStatic, curLocale);
}

void HostConstantsTest::settingsAreSharedThroughOneFile()
{
    QTemporaryDir folder;
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, folder.path());
    AppSettings().setValue(QStringLiteral("folder"), QStringLiteral("here"));
    AppSettings settings;
    QCOMPARE(settings.value(QStringLiteral("folder")).toString(), QStringLiteral("here"));
    QCOMPARE(settings.fileName(), folder.filePath(QStringLiteral("Workbench/Workbench.ini")));
    QVERIFY(QFile::exists(settings.fileName()));
}

void HostConstantsTest::lowLevelDebugLinesAreOff()
{
    QVERIFY(!debLowLevel().isDebugEnabled());
    QVERIFY(debLowLevel().isWarningEnabled());
    QCOMPARE(debLowLevel().categoryName(), "workbench.lowlevel");
}

void HostConstantsTest::sharedNamesAreSpelledAsPluginsExpect()
{
    QCOMPARE(DynamicProperty::WindowFlags, "dpWindowFlags");
    QCOMPARE(DynamicProperty::DoNotAnimate, "dpNoAnimate");
    QCOMPARE(ExportTypes::RegisterList.name, QStringLiteral("RergisterList"));
    QCOMPARE(ExportTypes::RegisterList.type, QVariant::List);
}

void HostConstantsTest::toolIconsAreFound_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("data") << QStringLiteral(":/Software-Icons/Data");
    QTest::newRow("amplifier") << QStringLiteral(":/Software-Icons/Amp");
    QTest::newRow("code editor") << QStringLiteral(":/Software-Icons/Code-Editor");
}

void HostConstantsTest::toolIconsAreFound()
{
    QFETCH(QString, path);
    const QImage image = QIcon(path).pixmap(32, 32).toImage();
    QCOMPARE(image.size(), QSize(32, 32));
    QCOMPARE(image.pixelColor(0, 0).alpha(), 0);
    bool isDrawn = false;
    for (int x = 0; x < image.width(); ++x)
        isDrawn |= image.pixelColor(x, 16).alpha() == 255;
    QVERIFY(isDrawn);
}

void HostConstantsTest::playerIconsAreSharpAtNinePixels()
{
    const QImage start = QIcon(QStringLiteral(":/Player/rightBlack")).pixmap(9, 9).toImage();
    QCOMPARE(start.size(), QSize(9, 9));
    QCOMPARE(start.pixelColor(2, 4), QColor(Qt::black));
    QCOMPARE(start.pixelColor(8, 0).alpha(), 0);
    QCOMPARE(start.pixelColor(8, 8).alpha(), 0);
    const QImage stop = QIcon(QStringLiteral(":/Player/StopBlack")).pixmap(9, 9).toImage();
    QCOMPARE(stop.size(), QSize(9, 9));
    for (int x = 0; x < 9; ++x) {
        const bool isInside = x > 0 && x < 8;
        QCOMPARE(stop.pixelColor(x, 4).alpha(), isInside ? 255 : 0);
    }
}

QTEST_MAIN(HostConstantsTest)
#include "tst_host_constants.moc"
