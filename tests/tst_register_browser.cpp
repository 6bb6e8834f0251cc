#include "HeadlessPlatform.h"
#include "HostRegistry.h"
#include "ProductBuilder.h"
#include "RegisterNumber.h"
#include "ShippedChip.h"
#include "SimulatedModule.h"
#include "ToolBench.h"
#include "XmlValueRegister.h"

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QPluginLoader>
#include <QPushButton>
#include <QTableView>
#include <QTest>
#include <QTimerEvent>

#include <memory>

namespace {

enum Column { Address, Name, Access, Hexadecimal, Decimal, Unit, State, Description };
enum FieldColumn { Identifier, FieldName, Bits, Value, Range };

// Of the registers of the test's chip, ten can be read and seen.
constexpr int readableCount = 10;
constexpr int mostReadsPerTick = 8;

/// Notes whether the module was in circular mode at each read, and keeps some bits only.
struct ModeWatchingLink : RecordingLink
{
    HostModule *module = nullptr;
    QVector<bool> modes;
    int keptBits = -1;

    bool readRegister(unsigned int address, unsigned char motor, int *value) override
    {
        modes << module->isCircularMode();
        const bool isAnswered = RecordingLink::readRegister(address, motor, value);
        *value &= keptBits;
        return isAnswered;
    }
};

std::shared_ptr<XmlProductIC> makeProduct()
{
    ProductBuilder builder;
    const auto add = [&builder](RegisterInfo info, const QList<FieldInfo> &fields = {}) {
        XmlValueRegister *const reg = builder.addRegister(info);
        for (const FieldInfo &field : fields)
            builder.addField(reg, field);
    };
    const auto text = [](const char *latin1) { return QString::fromLatin1(latin1); };
    for (unsigned int i = 0; i < 6; ++i)
        add({QStringLiteral("PLAIN%1").arg(i), 0x40 + i});
    add({text("SPEED"), 0x13, true, true, 0, text("units/s"), text("How fast"), 0, 5000},
        {{text("SPEED"), text("Speed"), 0, 32, true}});
    add({text("PLACE"), 0x10, true, false, 0, text("units"), text("Where it is")},
        {{text("PLACE"), text("Place"), 0, 24, true}});
    add({text("OFFSET"), 0x11, true, true}, {{text("OFFSET"), text("Offset"), 0, 8, true}});
    add({text("CONFIG"), 0x05, true, true, 0, QString(), text("Switches")},
        {{text("CFG_LOW"), text("Low"), 0, 4}, {text("CFG_HIGH"), text("High"), 8, 8, true}});
    add({text("TRIGGER"), 0x02, false, true});
    add({text("SECRET"), 0x03, true, true, 0, QString(), QString(), 0, 0, false});
    return builder.take();
}

ToolsInterface *loadPrototype()
{
    static QPluginLoader loader(QStringLiteral(REGISTER_BROWSER_FILE));
    loader.setLoadHints(QLibrary::ResolveAllSymbolsHint);
    auto *const prototype = qobject_cast<ToolsInterface *>(loader.instance());
    if (!prototype)
        qCritical("%s", qPrintable(loader.errorString()));
    return prototype;
}

QVariantList listOf(const QList<unsigned int> &addresses)
{
    QVariantList list;
    for (const unsigned int address : addresses)
        list << address;
    return list;
}

bool deliverTimer(QObject *object)
{
    const auto timers = QAbstractEventDispatcher::instance()->registeredTimers(object);
    if (timers.isEmpty())
        return false;
    QTimerEvent event(timers.first().timerId);
    QCoreApplication::sendEvent(object, &event);
    return true;
}

/// Lets an editor hand back its text, and then what that led to.
void settle()
{
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
}

int timerInterval(QObject *object)
{
    const auto timers = QAbstractEventDispatcher::instance()->registeredTimers(object);
    return timers.isEmpty() ? -1 : timers.first().interval;
}

} // namespace

class RegisterBrowserTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void thePrototypeIsQuiet();
    void isFoundByItsName();
    void entriesAreDecimalOrHexadecimal_data();
    void entriesAreDecimalOrHexadecimal();

    void showsTheRegistersByAddress();
    void tellsWhatARegisterIs();
    void showsBothNotations_data();
    void showsBothNotations();

    void aTickReadsAFewRegistersInTurn();
    void readsStayOutOfTheRequestLog();
    void theRateSetsTheInterval_data();
    void theRateSetsTheInterval();
    void hidingPausesTheReads();
    void theCheckBoxPausesTheReads();
    void aWriteOnlyRegisterIsNeverRead();
    void aSilentModuleLeavesTheLastValueGreyed();

    void theSearchLooksAtNameDescriptionAndAddress_data();
    void theSearchLooksAtNameDescriptionAndAddress();
    void onlyWhatIsShownIsRead();

    void anEditWritesTheRegister_data();
    void anEditWritesTheRegister();
    void aRefusedEditWritesNothing_data();
    void aRefusedEditWritesNothing();
    void anUnchangedEditorWritesNothing();
    void typingIsNotDisturbedByReads();
    void aReadOnlyRegisterCannotBeEdited();
    void aWriteWithoutAnswerIsReported();

    void theFieldsOfTheSelectedRegisterAreShown();
    void aFieldEditLeavesTheOtherBits();
    void whatTheChipKeepsOfAFieldIsShown();
    void aFieldOutOfRangeIsRefused();

    void writesFromElsewhereShowAtOnce();
    void writesToAnotherChipDoNotShow();

    void anImportReplacesWhatIsShown();
    void garbageIsNotImported_data();
    void garbageIsNotImported();
    void listsOfOtherModulesAreLeftAlone();
    void theDriveExportsItsNineRegisters();

    void deletedRegistersStayInert();
    void theModuleMayGo();
    void worksWithoutAModule();
    void aListenerOfAWriteMayDeleteTheTool();

private:
    QTableView *table(const char *name = "tvRegisters") const
    {
        return tool->findChild<QTableView *>(QLatin1String(name));
    }
    QModelIndex cell(const QString &registerName, int column) const;
    QString text(const QString &registerName, int column) const
    {
        return cell(registerName, column).data().toString();
    }
    QStringList names() const;
    QString status() const { return tool->findChild<QLabel *>(QStringLiteral("lbStatus"))->text(); }
    QStringList takeWrites() { return link.takeCalls().filter(QStringLiteral("write ")); }
    bool isGrey(const QString &registerName) const;
    void show() const;
    void round() const;
    QLineEdit *openEditor(QTableView *view, const QModelIndex &index) const;
    void enter(QTableView *view, const QModelIndex &index, const QString &entered) const;
    void import(const QVariant &value, QObject *sender = nullptr) const;
    XmlValueRegister *reg(const char *name) const
    {
        return module->getIcProduct(0)->getRegisterByName(QLatin1String(name), false);
    }

    ModeWatchingLink link;
    std::unique_ptr<HostModule> module;
    QPointer<ToolsInterface> tool;
};

void RegisterBrowserTest::initTestCase()
{
    silenceHeadlessPlatform();
    QVERIFY(loadPrototype());
}

void RegisterBrowserTest::init()
{
    link = ModeWatchingLink();
    module = std::make_unique<HostModule>(QStringLiteral("module"), QStringLiteral("m/"), &link);
    link.module = module.get();
    const auto product = makeProduct();
    module->setProduct(0, product);
    module->setProduct(1, product);
    tool = loadPrototype()->clone(QStringLiteral("browser"), 0, module.get());
    HostRegistry::add(tool, QStringLiteral("m/browser/0"));
}

void RegisterBrowserTest::cleanup()
{
    delete tool;
    module.reset();
}

QModelIndex RegisterBrowserTest::cell(const QString &registerName, int column) const
{
    const int row = names().indexOf(registerName);
    return table()->model()->index(row, column);
}

QStringList RegisterBrowserTest::names() const
{
    QStringList all;
    const QAbstractItemModel *const model = table()->model();
    for (int row = 0; row < model->rowCount(); ++row)
        all << model->index(row, Name).data().toString();
    return all;
}

bool RegisterBrowserTest::isGrey(const QString &registerName) const
{
    const QVariant brush = cell(registerName, Decimal).data(Qt::ForegroundRole);
    return brush.value<QBrush>() ==
           QApplication::palette().brush(QPalette::Disabled, QPalette::Text);
}

void RegisterBrowserTest::show() const
{
    tool->show();
    QVERIFY(QTest::qWaitForWindowExposed(tool));
    tool->showPlugin();
}

/// Enough ticks for every register, with a link that answers or not.
void RegisterBrowserTest::round() const
{
    for (int i = 0; i < readableCount; ++i)
        QVERIFY(deliverTimer(tool));
}

QLineEdit *RegisterBrowserTest::openEditor(QTableView *view, const QModelIndex &index) const
{
    view->scrollTo(index);
    view->setCurrentIndex(index);
    const QPoint middle = view->visualRect(index).center();
    QTest::mouseClick(view->viewport(), Qt::LeftButton, Qt::NoModifier, middle);
    QTest::mouseDClick(view->viewport(), Qt::LeftButton, Qt::NoModifier, middle);
    return view->viewport()->findChild<QLineEdit *>();
}

void RegisterBrowserTest::enter(QTableView *view, const QModelIndex &index,
                                const QString &entered) const
{
    QLineEdit *const editor = openEditor(view, index);
    QVERIFY(editor);
    QTest::keyClick(editor, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(editor, entered);
    QTest::keyClick(editor, Qt::Key_Return);
    settle();
}

void RegisterBrowserTest::import(const QVariant &value, QObject *sender) const
{
    // A type of the same name counts, whatever object it is.
    const export_type_t type{QStringLiteral("RergisterList"), QVariant::List};
    tool->importValue(&type, value, sender);
}

void RegisterBrowserTest::thePrototypeIsQuiet()
{
    ToolsInterface *const prototype = loadPrototype();
    prototype->showPlugin();
    prototype->hidePlugin();
    prototype->siblingIsVisible(QStringLiteral("m/browser/0"), true);
    prototype->importValue(&ExportTypes::RegisterList, listOf({0x10}), nullptr);
    prototype->importValue(nullptr, QVariant(), nullptr);
    QTimerEvent event(1);
    QCoreApplication::sendEvent(prototype, &event);
    QVERIFY(!prototype->module());
    QVERIFY(!prototype->layout());
    QCOMPARE(timerInterval(prototype), -1);
}

void RegisterBrowserTest::isFoundByItsName()
{
    QVERIFY(tool->toolsName(false).startsWith(QStringLiteral("Register browser")));
    QCOMPARE(tool->pluginType(), 3);
    QCOMPARE(tool->motorNumber(), 0);
    QCOMPARE(tool->module(), module.get());
}

void RegisterBrowserTest::entriesAreDecimalOrHexadecimal_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<bool>("isSigned");
    QTest::addColumn<QString>("entered");
    QTest::addColumn<QString>("word"); // empty when refused
    const auto row = [](const char *name, int width, bool isSigned, const char *entered,
                        const char *word) {
        QTest::newRow(name) << width << isSigned << QString::fromLatin1(entered)
                            << QString::fromLatin1(word);
    };
    row("decimal", 8, false, "255", "255");
    row("spaces around", 8, false, "  7 ", "7");
    row("negative", 8, true, "-128", "-128");
    row("negative bits", 8, true, "0xFF", "-1");
    row("capital X", 8, true, "0X7f", "127");
    row("32 bits", 32, false, "4294967295", "-1");
    row("32 bits in hexadecimal", 32, false, "0xFFFFFFFF", "-1");
    row("above the bits", 8, false, "256", "");
    row("above the bits in hexadecimal", 8, true, "0x100", "");
    row("far above", 32, false, "0xFFFFFFFFFFFFFFFF", "");
    row("below", 8, true, "-129", "");
    row("negative for unsigned", 8, false, "-1", "");
    row("nothing", 8, false, "", "");
    row("no digits", 8, false, "0x", "");
    row("a sign behind 0x", 8, true, "0x-1", "");
    row("a word", 8, false, "ten", "");
    row("digits and a word", 8, false, "12x", "");
    row("fraction", 8, false, "1.5", "");
}

void RegisterBrowserTest::entriesAreDecimalOrHexadecimal()
{
    QFETCH(int, width);
    QFETCH(bool, isSigned);
    QFETCH(QString, entered);
    QFETCH(QString, word);
    const qint64 values = qint64(1) << width;
    const tools::Entry entry = tools::parseEntry(
        {width, isSigned, isSigned ? -values / 2 : 0, (isSigned ? values / 2 : values) - 1},
        entered);
    QCOMPARE(entry.word ? QString::number(*entry.word) : QString(), word);
    QCOMPARE(entry.refusal.isEmpty(), !word.isEmpty());
}

void RegisterBrowserTest::showsTheRegistersByAddress()
{
    const QStringList expected{
        QStringLiteral("TRIGGER"), QStringLiteral("CONFIG"), QStringLiteral("PLACE"),
        QStringLiteral("OFFSET"),  QStringLiteral("SPEED"),  QStringLiteral("PLAIN0"),
        QStringLiteral("PLAIN1"),  QStringLiteral("PLAIN2"), QStringLiteral("PLAIN3"),
        QStringLiteral("PLAIN4"),  QStringLiteral("PLAIN5")};
    QCOMPARE(names(), expected);
}

void RegisterBrowserTest::tellsWhatARegisterIs()
{
    QStringList row;
    for (const int column : {Address, Access, Unit, Description})
        row << text(QStringLiteral("SPEED"), column);
    QCOMPARE(row.join(QLatin1Char('|')), QStringLiteral("0x13|R/W|units/s|How fast"));
    QCOMPARE(text(QStringLiteral("PLACE"), Access), QStringLiteral("R"));
    QCOMPARE(text(QStringLiteral("TRIGGER"), Access), QStringLiteral("W"));
}

void RegisterBrowserTest::showsBothNotations_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<unsigned int>("address");
    QTest::addColumn<int>("word");
    QTest::addColumn<QString>("shown");
    QTest::newRow("signed") << "SPEED" << 0x13u << -2 << "0xFFFFFFFE -2";
    QTest::newRow("24 bits") << "PLACE" << 0x10u << -5 << "0xFFFFFB -5";
    QTest::newRow("24 bits without the sign's") << "PLACE" << 0x10u << 0xFFFFFB << "0xFFFFFB -5";
    QTest::newRow("unsigned word") << "PLAIN0" << 0x40u << -1 << "0xFFFFFFFF 4294967295";
    QTest::newRow("several fields") << "CONFIG" << 0x05u << 0xFF07 << "0x0000FF07 65287";
}

void RegisterBrowserTest::showsBothNotations()
{
    QFETCH(QString, name);
    QFETCH(unsigned int, address);
    QFETCH(int, word);
    link.values.insert(address, word);
    show();
    round();
    QTEST(text(name, Hexadecimal) + QLatin1Char(' ') + text(name, Decimal), "shown");
    QVERIFY(!isGrey(name));
}

void RegisterBrowserTest::aTickReadsAFewRegistersInTurn()
{
    show();
    QStringList calls = link.takeCalls();
    QVERIFY(!calls.isEmpty());
    int ticks = 1;
    while (calls.size() < readableCount) {
        QVERIFY(deliverTimer(tool));
        const QStringList more = link.takeCalls();
        QVERIFY(!more.isEmpty() && more.size() <= mostReadsPerTick);
        calls << more;
        ++ticks;
    }
    QCOMPARE(ticks, 2);
    QCOMPARE(calls.size(), readableCount);
    QCOMPARE(QStringList(calls).removeDuplicates(), 0);
    QCOMPARE(calls.filter(QStringLiteral("read ")).size(), readableCount);
    QVERIFY(deliverTimer(tool));
    QCOMPARE(link.takeCalls().first(), calls.first());
}

void RegisterBrowserTest::readsStayOutOfTheRequestLog()
{
    show();
    QVERIFY(!link.modes.isEmpty());
    QVERIFY(!link.modes.contains(false));
    QVERIFY(!module->isCircularMode());
}

void RegisterBrowserTest::theRateSetsTheInterval_data()
{
    QTest::addColumn<QString>("rate");
    QTest::addColumn<int>("interval");
    // Two ticks for the ten registers.
    QTest::newRow("lowest") << "0,5" << 1000;
    QTest::newRow("preset") << "2" << 250;
    QTest::newRow("highest") << "20" << 25;
}

void RegisterBrowserTest::theRateSetsTheInterval()
{
    QFETCH(QString, rate);
    show();
    auto *const box = tool->findChild<QDoubleSpinBox *>(QStringLiteral("spRate"));
    QTest::keyClick(box, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(box, rate);
    QTest::keyClick(box, Qt::Key_Return);
    QTEST(timerInterval(tool), "interval");
}

void RegisterBrowserTest::hidingPausesTheReads()
{
    show();
    QVERIFY(timerInterval(tool) > 0);
    link.takeCalls();
    tool->hidePlugin();
    QCOMPARE(timerInterval(tool), -1);
    // What changes what is to be read does not wake it up.
    tool->findChild<QLineEdit *>(QStringLiteral("leSearch"))->setText(QStringLiteral("SPEED"));
    import(listOf({0x10, 0x11}));
    QCOMPARE(timerInterval(tool), -1);
    QCOMPARE(link.takeCalls(), QStringList());
    tool->showPlugin();
    QVERIFY(timerInterval(tool) > 0);
    QCOMPARE(link.takeCalls().size(), 2);
}

void RegisterBrowserTest::theCheckBoxPausesTheReads()
{
    show();
    auto *const live = tool->findChild<QCheckBox *>(QStringLiteral("cbLive"));
    QVERIFY(live->isChecked());
    QTest::mouseClick(live, Qt::LeftButton, Qt::NoModifier, QPoint(8, live->height() / 2));
    QVERIFY(!live->isChecked());
    QCOMPARE(timerInterval(tool), -1);
    link.takeCalls();
    tool->hidePlugin();
    tool->showPlugin();
    QCOMPARE(timerInterval(tool), -1);
    QCOMPARE(link.takeCalls(), QStringList());
    QTest::mouseClick(live, Qt::LeftButton, Qt::NoModifier, QPoint(8, live->height() / 2));
    QVERIFY(timerInterval(tool) > 0);
}

void RegisterBrowserTest::aWriteOnlyRegisterIsNeverRead()
{
    show();
    round();
    QCOMPARE(link.takeCalls().filter(QStringLiteral("0x02")), QStringList());
    enter(table(), cell(QStringLiteral("TRIGGER"), Decimal), QStringLiteral("9"));
    QCOMPARE(takeWrites(), QStringList{QStringLiteral("write 0x02 m0 9")});
    QCOMPARE(text(QStringLiteral("TRIGGER"), Decimal), QStringLiteral("–"));
    QCOMPARE(text(QStringLiteral("TRIGGER"), Hexadecimal), QStringLiteral("–"));
}

void RegisterBrowserTest::aSilentModuleLeavesTheLastValueGreyed()
{
    link.values.insert(0x13, 1234);
    show();
    round();
    link.failReads = true;
    link.takeCalls();
    QVERIFY(deliverTimer(tool));
    // The first request without an answer is the tick's last.
    QCOMPARE(link.takeCalls().size(), 1);
    round();
    QCOMPARE(text(QStringLiteral("SPEED"), Decimal), QStringLiteral("1234"));
    QCOMPARE(text(QStringLiteral("SPEED"), State), QStringLiteral("no answer"));
    QVERIFY(isGrey(QStringLiteral("SPEED")));
    link.failReads = false;
    round();
    QCOMPARE(text(QStringLiteral("SPEED"), State), QString());
    QVERIFY(!isGrey(QStringLiteral("SPEED")));
}

void RegisterBrowserTest::theSearchLooksAtNameDescriptionAndAddress_data()
{
    QTest::addColumn<QString>("searched");
    QTest::addColumn<QString>("found");
    QTest::newRow("name in the other case") << "speed"
                                            << "SPEED";
    QTest::newRow("part of the description") << "switch"
                                             << "CONFIG";
    QTest::newRow("address") << "0x1"
                             << "PLACE OFFSET SPEED";
    QTest::newRow("spaces around") << " place "
                                   << "PLACE";
    QTest::newRow("unit does not count") << "units/s"
                                         << "";
}

void RegisterBrowserTest::theSearchLooksAtNameDescriptionAndAddress()
{
    QFETCH(QString, searched);
    auto *const search = tool->findChild<QLineEdit *>(QStringLiteral("leSearch"));
    QTest::keyClicks(search, searched);
    QTEST(names().join(QLatin1Char(' ')), "found");
    search->clear();
    QCOMPARE(names().size(), readableCount + 1);
}

void RegisterBrowserTest::onlyWhatIsShownIsRead()
{
    show();
    QTest::keyClicks(tool->findChild<QLineEdit *>(QStringLiteral("leSearch")),
                     QStringLiteral("0x1"));
    link.takeCalls();
    QVERIFY(deliverTimer(tool));
    QStringList calls = link.takeCalls();
    calls.sort();
    QCOMPARE(calls, QStringList({QStringLiteral("read 0x10 m0"), QStringLiteral("read 0x11 m0"),
                                 QStringLiteral("read 0x13 m0")}));
}

void RegisterBrowserTest::anEditWritesTheRegister_data()
{
    QTest::addColumn<int>("column");
    QTest::addColumn<QString>("entered");
    QTest::addColumn<QString>("written");
    QTest::newRow("decimal") << int(Decimal) << "-12"
                             << "write 0x11 m0 -12";
    QTest::newRow("hexadecimal in the decimal column") << int(Decimal) << "0x1f"
                                                       << "write 0x11 m0 31";
    QTest::newRow("hexadecimal") << int(Hexadecimal) << "0xFF"
                                 << "write 0x11 m0 -1";
    QTest::newRow("decimal in the hexadecimal column") << int(Hexadecimal) << "17"
                                                       << "write 0x11 m0 17";
}

void RegisterBrowserTest::anEditWritesTheRegister()
{
    QFETCH(int, column);
    QFETCH(QString, entered);
    QFETCH(QString, written);
    show();
    enter(table(), cell(QStringLiteral("OFFSET"), column), entered);
    QCOMPARE(takeWrites(), QStringList{written});
    QCOMPARE(text(QStringLiteral("OFFSET"), Decimal), written.section(QLatin1Char(' '), -1));
    QCOMPARE(status(), QStringLiteral("OFFSET is written."));
}

void RegisterBrowserTest::aRefusedEditWritesNothing_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("entered");
    QTest::addColumn<QString>("message");
    QTest::newRow("no number") << "OFFSET"
                               << "fast"
                               << "OFFSET: \"fast\" is not a number";
    QTest::newRow("beyond the field") << "OFFSET"
                                      << "128"
                                      << "allowed is -128 to 127";
    QTest::newRow("beyond the register's limits") << "SPEED"
                                                  << "5001"
                                                  << "allowed is 0 to 5000";
    QTest::newRow("negative") << "SPEED"
                              << "-1"
                              << "allowed is 0 to 5000";
    QTest::newRow("nothing") << "SPEED"
                             << ""
                             << "is not a number";
}

void RegisterBrowserTest::aRefusedEditWritesNothing()
{
    QFETCH(QString, name);
    QFETCH(QString, entered);
    QFETCH(QString, message);
    link.values.insert(0x11, 3);
    link.values.insert(0x13, 3);
    show();
    round();
    QLineEdit *const editor = openEditor(table(), cell(name, Decimal));
    QVERIFY(editor);
    QCOMPARE(editor->text(), QStringLiteral("3"));
    QTest::keyClick(editor, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(editor, Qt::Key_Delete);
    QTest::keyClicks(editor, entered);
    QTest::keyClick(editor, Qt::Key_Return);
    settle();
    QVERIFY2(status().contains(message), qPrintable(status()));
    QCOMPARE(takeWrites(), QStringList());
    QCOMPARE(text(name, Decimal), QStringLiteral("3"));
}

void RegisterBrowserTest::anUnchangedEditorWritesNothing()
{
    show();
    round();
    QLineEdit *const editor = openEditor(table(), cell(QStringLiteral("SPEED"), Decimal));
    QVERIFY(editor);
    QTest::keyClick(editor, Qt::Key_Return);
    settle();
    QCOMPARE(takeWrites(), QStringList());
    QCOMPARE(status(), QString());
}

void RegisterBrowserTest::typingIsNotDisturbedByReads()
{
    show();
    round();
    QLineEdit *const editor = openEditor(table(), cell(QStringLiteral("SPEED"), Decimal));
    QVERIFY(editor);
    QTest::keyClicks(editor, QStringLiteral("42"));
    link.values.insert(0x13, 777);
    round();
    QCOMPARE(text(QStringLiteral("SPEED"), Decimal), QStringLiteral("777"));
    QCOMPARE(editor->text(), QStringLiteral("42"));
    link.takeCalls();
    QTest::keyClick(editor, Qt::Key_Return);
    settle();
    QCOMPARE(takeWrites(), QStringList{QStringLiteral("write 0x13 m0 42")});
}

void RegisterBrowserTest::aReadOnlyRegisterCannotBeEdited()
{
    show();
    QVERIFY(!openEditor(table(), cell(QStringLiteral("PLACE"), Decimal)));
    QVERIFY(!openEditor(table(), cell(QStringLiteral("SPEED"), Name)));
    QVERIFY(!openEditor(table("tvFields"), table("tvFields")->model()->index(0, Bits)));
}

void RegisterBrowserTest::aWriteWithoutAnswerIsReported()
{
    show();
    round();
    link.failWrites = true;
    enter(table(), cell(QStringLiteral("SPEED"), Decimal), QStringLiteral("5"));
    QVERIFY2(status().contains(QStringLiteral("SPEED: no answer")), qPrintable(status()));
    QCOMPARE(text(QStringLiteral("SPEED"), Decimal), QStringLiteral("0"));
}

void RegisterBrowserTest::theFieldsOfTheSelectedRegisterAreShown()
{
    link.values.insert(0x05, 0xFE03);
    show();
    round();
    QTableView *const fields = table("tvFields");
    QCOMPARE(fields->model()->rowCount(), 0);
    QTest::mouseClick(table()->viewport(), Qt::LeftButton, Qt::NoModifier,
                      table()->visualRect(cell(QStringLiteral("CONFIG"), Name)).center());
    QStringList shown;
    for (int row = 0; row < fields->model()->rowCount(); ++row) {
        for (const int column : {Identifier, FieldName, Bits, Value, Range})
            shown << fields->model()->index(row, column).data().toString();
    }
    QCOMPARE(shown.join(QLatin1Char('|')),
             QStringLiteral("CFG_LOW|Low|3:0|3|0 to 15|CFG_HIGH|High|15:8|-2|-128 to 127"));
    link.values.insert(0x05, 0x0104);
    round();
    QCOMPARE(fields->model()->index(0, Value).data().toString(), QStringLiteral("4"));
    QCOMPARE(fields->model()->index(1, Value).data().toString(), QStringLiteral("1"));
}

void RegisterBrowserTest::aFieldEditLeavesTheOtherBits()
{
    QVERIFY(module->writeChannelRegister(reg("CONFIG"), 0, 0xFE03));
    show();
    round();
    tool->hidePlugin();
    link.takeCalls();
    table()->setCurrentIndex(cell(QStringLiteral("CONFIG"), Name));
    enter(table("tvFields"), table("tvFields")->model()->index(1, Value), QStringLiteral("-1"));
    QCOMPARE(link.takeCalls(),
             QStringList({QStringLiteral("write 0x05 m0 65283"), QStringLiteral("read 0x05 m0")}));
    QCOMPARE(text(QStringLiteral("CONFIG"), Hexadecimal), QStringLiteral("0x0000FF03"));
    QVERIFY2(status().contains(QStringLiteral("CFG_HIGH")), qPrintable(status()));
}

void RegisterBrowserTest::whatTheChipKeepsOfAFieldIsShown()
{
    show();
    round();
    tool->hidePlugin();
    link.keptBits = 0x0FF3;
    table()->setCurrentIndex(cell(QStringLiteral("CONFIG"), Name));
    enter(table("tvFields"), table("tvFields")->model()->index(0, Value), QStringLiteral("7"));
    QCOMPARE(status(), QStringLiteral("CFG_LOW is written and reads 3."));
    QCOMPARE(text(QStringLiteral("CONFIG"), Decimal), QStringLiteral("3"));
}

void RegisterBrowserTest::aFieldOutOfRangeIsRefused()
{
    show();
    table()->setCurrentIndex(cell(QStringLiteral("CONFIG"), Name));
    enter(table("tvFields"), table("tvFields")->model()->index(0, Value), QStringLiteral("16"));
    QVERIFY2(status().contains(QStringLiteral("CFG_LOW: 16 is out of range; allowed is 0 to 15")),
             qPrintable(status()));
    QCOMPARE(takeWrites(), QStringList());
}

void RegisterBrowserTest::writesFromElsewhereShowAtOnce()
{
    QVERIFY(module->writeChannelRegister(reg("SPEED"), 0, 4321));
    QCOMPARE(text(QStringLiteral("SPEED"), Decimal), QStringLiteral("4321"));
    QVERIFY(module->writeChannelRegister(reg("SPEED"), 1, 1));
    QCOMPARE(text(QStringLiteral("SPEED"), Decimal), QStringLiteral("1"));
    QCOMPARE(link.takeCalls().filter(QStringLiteral("read ")), QStringList());
}

void RegisterBrowserTest::writesToAnotherChipDoNotShow()
{
    module->setProduct(2, makeProduct());
    QVERIFY(module->writeChannelRegister(
        module->getIcProduct(2)->getRegisterByName(QStringLiteral("SPEED"), true), 2, 4321));
    QCOMPARE(text(QStringLiteral("SPEED"), Decimal), QString());
}

void RegisterBrowserTest::anImportReplacesWhatIsShown()
{
    show();
    QTest::keyClicks(tool->findChild<QLineEdit *>(QStringLiteral("leSearch")),
                     QStringLiteral("PLAIN"));
    import(listOf({0x41, 0x13, 0x41, 0x10}));
    QCOMPARE(names().join(QLatin1Char(' ')), QStringLiteral("PLACE SPEED PLAIN1"));
    import(listOf({0x40}));
    QCOMPARE(names().join(QLatin1Char(' ')), QStringLiteral("PLAIN0"));
    QTest::mouseClick(tool->findChild<QPushButton *>(QStringLiteral("pbShowAll")), Qt::LeftButton);
    QCOMPARE(names().size(), readableCount + 1);
}

void RegisterBrowserTest::garbageIsNotImported_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("shown");
    const QString before = QStringLiteral("PLACE SPEED");
    const QVariantList mixed{
        QVariant(),          QStringLiteral("0x13"),       -1, 1.5, 0x40u, 0x9999u,
        QVariantList{0x10u}, QVariant(qulonglong(1) << 33)};
    QTest::newRow("nothing") << QVariant() << before;
    QTest::newRow("a number") << QVariant(0x40u) << before;
    QTest::newRow("texts") << QVariant(QStringList{QStringLiteral("64")}) << before;
    QTest::newRow("an empty list") << QVariant(QVariantList()) << before;
    QTest::newRow("unknown addresses") << QVariant(listOf({0x9999, 0xFFFFFFFF})) << before;
    QTest::newRow("a register that users do not see") << QVariant(listOf({0x03})) << before;
    QTest::newRow("one good entry") << QVariant(mixed) << "PLAIN0";
}

void RegisterBrowserTest::garbageIsNotImported()
{
    QFETCH(QVariant, value);
    import(listOf({0x10, 0x13}));
    import(value);
    QTEST(names().join(QLatin1Char(' ')), "shown");
    const export_type_t other{QStringLiteral("RegisterList"), QVariant::List};
    tool->importValue(&other, listOf({0x41}), nullptr);
    tool->importValue(nullptr, listOf({0x41}), nullptr);
    QTEST(names().join(QLatin1Char(' ')), "shown");
}

void RegisterBrowserTest::listsOfOtherModulesAreLeftAlone()
{
    HostModule other(QStringLiteral("other"), QStringLiteral("other/"), &link);
    other.setProduct(0, makeProduct());
    const std::unique_ptr<ToolsInterface> stranger(
        loadPrototype()->clone(QStringLiteral("stranger"), 0, &other));
    import(listOf({0x10}), stranger.get());
    QCOMPARE(names().size(), readableCount + 1);
    import(listOf({0x10}), this);
    QCOMPARE(names().size(), 1);
}

void RegisterBrowserTest::theDriveExportsItsNineRegisters()
{
    const auto chip = readShippedChip();
    QVERIFY(chip);
    bench::SteppedClock clock;
    bench::SimulatedModule simulated(*chip, clock, QStringLiteral("sim/"));
    const std::unique_ptr<ToolsInterface> drive(
        toolPrototype()->clone(QStringLiteral("drive"), 0, &simulated.hostModule()));
    delete tool;
    tool = loadPrototype()->clone(QStringLiteral("browser"), 0, &simulated.hostModule());
    HostRegistry::add(drive.get(), QStringLiteral("sim/drive/0"));
    HostRegistry::add(tool, QStringLiteral("sim/browser/0"));
    QCOMPARE(names().size(), chip->registers.size());
    drive->resize(900, 600);
    drive->show();
    drive->showPlugin();
    auto *const button = drive->findChild<QWidget *>(QStringLiteral("btnShowRegister"));
    QVERIFY(button && button->isEnabled());
    QTest::mouseClick(button, Qt::LeftButton);
    QTRY_COMPARE(names(), QStringList({QStringLiteral("RAMPMODE"), QStringLiteral("M0_XACTUAL"),
                                       QStringLiteral("M0_VACTUAL"), QStringLiteral("M0_XTARGET"),
                                       QStringLiteral("M0_VMAX"), QStringLiteral("M1_XACTUAL"),
                                       QStringLiteral("M1_VACTUAL"), QStringLiteral("M1_XTARGET"),
                                       QStringLiteral("M1_VMAX")}));
    delete tool;
}

void RegisterBrowserTest::deletedRegistersStayInert()
{
    link.values.insert(0x13, 99);
    show();
    round();
    table()->setCurrentIndex(cell(QStringLiteral("SPEED"), Decimal));
    delete reg("SPEED");
    QCOMPARE(text(QStringLiteral("SPEED"), Decimal), QStringLiteral("99"));
    QCOMPARE(text(QStringLiteral("SPEED"), State), QStringLiteral("deleted"));
    QVERIFY(isGrey(QStringLiteral("SPEED")));
    link.takeCalls();
    round();
    QCOMPARE(link.takeCalls().filter(QStringLiteral("0x13")), QStringList());
    QVERIFY(!openEditor(table(), cell(QStringLiteral("SPEED"), Decimal)));
    QVERIFY(!openEditor(table("tvFields"), table("tvFields")->model()->index(0, Value)));
    tool->grab();
    import(listOf({0x13}));
    QCOMPARE(names(), QStringList{QStringLiteral("SPEED")});
}

void RegisterBrowserTest::theModuleMayGo()
{
    show();
    round();
    table()->setCurrentIndex(cell(QStringLiteral("SPEED"), Decimal));
    module.reset();
    QCOMPARE(timerInterval(tool), -1);
    QVERIFY(isGrey(QStringLiteral("SPEED")));
    QCOMPARE(status(), QStringLiteral("The module is gone."));
    tool->hidePlugin();
    tool->showPlugin();
    QCOMPARE(timerInterval(tool), -1);
    tool->grab();
}

void RegisterBrowserTest::worksWithoutAModule()
{
    delete tool;
    tool = loadPrototype()->clone(QStringLiteral("browser"), 0, nullptr);
    show();
    import(listOf({0x10}));
    QCOMPARE(names(), QStringList());
    QCOMPARE(timerInterval(tool), -1);
    QVERIFY(!status().isEmpty());
    tool->hidePlugin();
}

void RegisterBrowserTest::aListenerOfAWriteMayDeleteTheTool()
{
    show();
    connect(module.get(), &QVXLModuleInterface::registerOutputBufferHasWritten, this,
            [this] { delete tool; });
    enter(table(), cell(QStringLiteral("SPEED"), Decimal), QStringLiteral("5"));
    QVERIFY(!tool);
    QCOMPARE(takeWrites(), QStringList{QStringLiteral("write 0x13 m0 5")});
}

QTEST_MAIN(RegisterBrowserTest)
#include "tst_register_browser.moc"
