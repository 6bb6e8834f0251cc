#include "ToolRig.h"
#include "ui_SynchronisedDriveTool.h"

#include <QTest>
#include <QTranslator>

namespace {

constexpr int limitBound = 8388352;
const QStringList limitNames{QStringLiteral("spM0min"), QStringLiteral("spM0max"),
                             QStringLiteral("spM1min"), QStringLiteral("spM1max")};

/// The form on a widget that is not the tool: without slots, a chart or register rows.
struct BareForm
{
    QWidget panel;
    Ui_SynchronisedDriveTool ui;

    BareForm() { ui.setupUi(&panel); }
    QSpinBox *limit(const QString &name) const { return panel.findChild<QSpinBox *>(name); }
};

/// Gives every text of the form a mark and writes down, in order, what it was asked for.
class MarkingTranslator : public QTranslator
{
public:
    MarkingTranslator() { qApp->installTranslator(this); }

    bool isEmpty() const override { return false; }
    QString translate(const char *context, const char *text, const char *, int) const override
    {
        if (qstrcmp(context, "SynchronisedDriveTool") != 0)
            return QString();
        asked << QString::fromUtf8(text);
        return QLatin1Char('*') + QString::fromUtf8(text);
    }

    mutable QStringList asked;
};

const QStringList &translatedTexts()
{
    static const QStringList texts{QStringLiteral("M1 min:"),
                                   QStringLiteral("M1 max:"),
                                   QStringLiteral("M0 min:"),
                                   QStringLiteral("M0 max:"),
                                   QStringLiteral(" Move to position"),
                                   QStringLiteral(" Stop"),
                                   QStringLiteral("Clear"),
                                   QStringLiteral(" Traces"),
                                   QStringLiteral("Zoom out [CRTL+WheelDown]"),
                                   QStringLiteral("Zoom in [CRTL+WheelUp]")};
    return texts;
}

/// The form's texts in the same order.
QStringList shownTexts(const Ui_SynchronisedDriveTool &ui)
{
    return {ui.label_3->text(),        ui.label_4->text(),    ui.label_5->text(),
            ui.label_6->text(),        ui.pbStart->text(),    ui.pbStop->text(),
            ui.btnClearTraces->text(), ui.spTraces->suffix(), ui.btnZoomOut->text(),
            ui.btnZoomIn->text()};
}

QString spacerText(const QSpacerItem *spacer)
{
    const QSize size = spacer->sizeHint();
    const QSizePolicy policy = spacer->sizePolicy();
    return QStringLiteral("spacer %1x%2 %3 %4")
        .arg(size.width())
        .arg(size.height())
        .arg(policy.horizontalPolicy())
        .arg(policy.verticalPolicy());
}

/// What a layout holds, item by item.
QStringList itemsOf(const QLayout *layout)
{
    QStringList items;
    for (int i = 0; i < layout->count(); ++i) {
        QLayoutItem *item = layout->itemAt(i);
        if (item->widget())
            items << item->widget()->objectName();
        else
            items << (item->layout() ? item->layout()->objectName()
                                     : spacerText(item->spacerItem()));
    }
    return items;
}

QStringList words(const char *text)
{
    return QString::fromLatin1(text).split(QLatin1Char(','));
}

QSizePolicy policy(QSizePolicy::Policy horizontal, QSizePolicy::Policy vertical)
{
    return QSizePolicy(horizontal, vertical);
}

/// Without the control type, which each class of widgets sets for itself.
bool samePolicy(const QWidget *widget, const QSizePolicy &expected)
{
    QSizePolicy actual = widget->sizePolicy();
    actual.setControlType(expected.controlType());
    return actual == expected;
}

} // namespace

class ToolFormTest : public QObject
{
    Q_OBJECT

private slots:
    void panelItselfIsSetUp();
    void objectNameOfTheWidgetIsKept();
    void heightForWidthOfTheWidgetIsKept();
    void widgetsAreMadeInOrderAndOwnedByThePanel();
    void layoutsHoldTheirItemsInOrder_data();
    void layoutsHoldTheirItemsInOrder();
    void chartSideTakesTheSpareWidth();
    void limitRowHasABottomMarginOfItsOwn();
    void labelsAreAlignedRight();
    void limitSpinBoxesAreAlike_data();
    void limitSpinBoxesAreAlike();
    void traceSpinBoxIsSetUp();
    void commandButtonsAreSetUp();
    void linkButtonsAreSetUp();
    void separatorsAreSunkenLines();
    void traceAndZoomButtonsAreSetUp();
    void textsGoThroughTheTranslation();
    void retranslationRefreshesOnlyTranslatedTexts();
    void toolHoldsTheFormWithChartAndRegisters();
    void toolIsTranslatedAsTheForm();
};

void ToolFormTest::panelItselfIsSetUp()
{
    BareForm form;
    QCOMPARE(form.panel.objectName(), QStringLiteral("SynchronisedDriveTool"));
    QCOMPARE(form.panel.size(), QSize(813, 364));
    QVERIFY(samePolicy(&form.panel, policy(QSizePolicy::Expanding, QSizePolicy::Expanding)));
    QCOMPARE(form.panel.styleSheet(), QStringLiteral("QToolButton{padding: 4px}"));
    QCOMPARE(form.panel.locale(), QLocale(QLocale::French, QLocale::France));
    QVERIFY(form.panel.windowTitle().isEmpty());
}

void ToolFormTest::objectNameOfTheWidgetIsKept()
{
    QWidget panel;
    panel.setObjectName(QStringLiteral("named before"));
    Ui_SynchronisedDriveTool().setupUi(&panel);
    QCOMPARE(panel.objectName(), QStringLiteral("named before"));
}

void ToolFormTest::heightForWidthOfTheWidgetIsKept()
{
    for (const bool has : {true, false}) {
        QWidget panel;
        QSizePolicy before(QSizePolicy::Fixed, QSizePolicy::Fixed);
        before.setHeightForWidth(has);
        panel.setSizePolicy(before);
        Ui_SynchronisedDriveTool().setupUi(&panel);
        QCOMPARE(panel.sizePolicy().hasHeightForWidth(), has);
        QCOMPARE(panel.sizePolicy().horizontalPolicy(), QSizePolicy::Expanding);
    }
}

void ToolFormTest::widgetsAreMadeInOrderAndOwnedByThePanel()
{
    BareForm form;
    QStringList names;
    for (const QObject *child : form.panel.children())
        names << child->objectName();
    QCOMPARE(names, words("horizontalLayout,label_3,spM1min,label_4,spM1max,label_5,spM0min,"
                          "label_6,spM0max,pbStart,pbStop,line,btnShowPosition,btnShowRegister,"
                          "line_2,btnClearTraces,spTraces,btnZoomOut,btnZoomIn"));
}

void ToolFormTest::layoutsHoldTheirItemsInOrder_data()
{
    QTest::addColumn<QString>("layout");
    QTest::addColumn<QStringList>("items");

    const auto row = [](const char *layout, const char *items) {
        QTest::newRow(layout) << QString::fromLatin1(layout) << words(items);
    };
    row("horizontalLayout", "verticalLayout,settingsLayout");
    row("verticalLayout", "graphLayout,horizontalLayout_2");
    row("horizontalLayout_2", "label_3,spM1min,label_4,spM1max,spacer 40x20 7 1,"
                              "label_5,spM0min,label_6,spM0max");
    row("settingsLayout", "pbStart,pbStop,line,btnShowPosition,btnShowRegister,spacer 20x40 1 7,"
                          "line_2,horizontalLayout_3,btnZoomOut,btnZoomIn");
    row("horizontalLayout_3", "btnClearTraces,spTraces");
    QTest::newRow("graphLayout") << QStringLiteral("graphLayout") << QStringList();
}

void ToolFormTest::layoutsHoldTheirItemsInOrder()
{
    QFETCH(QString, layout);
    BareForm form;
    const auto *found = form.panel.findChild<QBoxLayout *>(layout);
    QVERIFY(found);
    QTEST(itemsOf(found), "items");
    const bool isRow = layout.startsWith(QLatin1String("horizontal"));
    QCOMPARE(found->direction(), isRow ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
}

void ToolFormTest::chartSideTakesTheSpareWidth()
{
    BareForm form;
    QCOMPARE(form.panel.layout(), static_cast<QLayout *>(form.ui.horizontalLayout));
    QCOMPARE(form.ui.horizontalLayout->stretch(0), 1);
    QCOMPARE(form.ui.horizontalLayout->stretch(1), 0);
}

void ToolFormTest::limitRowHasABottomMarginOfItsOwn()
{
    BareForm form;
    QMargins expected = form.ui.horizontalLayout_3->contentsMargins();
    expected.setBottom(2);
    QCOMPARE(form.ui.horizontalLayout_2->contentsMargins(), expected);
}

void ToolFormTest::labelsAreAlignedRight()
{
    BareForm form;
    const QList<QLabel *> labels{form.ui.label_3, form.ui.label_4, form.ui.label_5,
                                 form.ui.label_6};
    for (const QLabel *label : labels)
        QCOMPARE(label->alignment(), Qt::AlignRight | Qt::AlignVCenter);
    QVERIFY(samePolicy(form.ui.label_3, policy(QSizePolicy::Preferred, QSizePolicy::Preferred)));
}

void ToolFormTest::limitSpinBoxesAreAlike_data()
{
    QTest::addColumn<QString>("name");

    for (const QString &name : limitNames)
        QTest::newRow(qPrintable(name)) << name;
}

void ToolFormTest::limitSpinBoxesAreAlike()
{
    QFETCH(QString, name);
    BareForm form;
    const QSpinBox *limit = form.limit(name);
    QVERIFY(limit);
    QVERIFY(limit->isAccelerated());
    QCOMPARE(limit->property("showGroupSeparator"), QVariant(true));
    QCOMPARE(limit->minimum(), -limitBound);
    QCOMPARE(limit->maximum(), limitBound);
    QCOMPARE(limit->singleStep(), 256);
    QCOMPARE(limit->stepType(), QAbstractSpinBox::DefaultStepType);
    QCOMPARE(limit->value(), 0);
    QCOMPARE(limit->locale(), QLocale(QLocale::French, QLocale::France));
}

void ToolFormTest::traceSpinBoxIsSetUp()
{
    BareForm form;
    const QSpinBox *traces = form.ui.spTraces;
    QVERIFY(samePolicy(traces, policy(QSizePolicy::Minimum, QSizePolicy::Minimum)));
    QVERIFY(traces->isAccelerated());
    QCOMPARE(traces->property("showGroupSeparator"), QVariant(true));
    QCOMPARE(traces->minimum(), 10);
    QCOMPARE(traces->maximum(), 100000);
    QCOMPARE(traces->singleStep(), 1000);
    QCOMPARE(traces->value(), 5000);
    QCOMPARE(traces->suffix(), QStringLiteral(" Traces"));
}

void ToolFormTest::commandButtonsAreSetUp()
{
    BareForm form;
    const auto expected = policy(QSizePolicy::MinimumExpanding, QSizePolicy::Fixed);
    const QList<QPair<QToolButton *, QString>> buttons{
        {form.ui.pbStart, QStringLiteral(":/Player/rightBlack")},
        {form.ui.pbStop, QStringLiteral(":/Player/StopBlack")}};
    for (const auto &[button, icon] : buttons) {
        QVERIFY(samePolicy(button, expected));
        QCOMPARE(button->styleSheet(), QStringLiteral("padding-left: 10px;"));
        QCOMPARE(button->iconSize(), QSize(9, 9));
        QCOMPARE(button->toolButtonStyle(), Qt::ToolButtonTextBesideIcon);
        const QImage image(icon);
        QVERIFY(!image.isNull());
        QCOMPARE(button->icon().availableSizes(), QList<QSize>{image.size()});
        const QImage shown = button->icon().pixmap(image.size()).toImage();
        QCOMPARE(shown.convertToFormat(QImage::Format_ARGB32),
                 image.convertToFormat(QImage::Format_ARGB32));
    }
    QCOMPARE(form.ui.pbStart->popupMode(), QToolButton::MenuButtonPopup);
    QCOMPARE(form.ui.pbStop->popupMode(), QToolButton::DelayedPopup);
}

void ToolFormTest::linkButtonsAreSetUp()
{
    BareForm form;
    const QCommandLinkButton *position = form.ui.btnShowPosition;
    QCOMPARE(position->text(), QStringLiteral("Position mode tools"));
    QVERIFY(position->styleSheet().isEmpty());
    QVERIFY(!position->isCheckable());
    QVERIFY(!position->isChecked());
    QVERIFY(position->description().isEmpty());
    const QCommandLinkButton *browser = form.ui.btnShowRegister;
    QCOMPARE(browser->text(), QStringLiteral("Export to register browser"));
    QVERIFY(browser->isEnabled());
    QVERIFY(!browser->isCheckable());
    QVERIFY(!browser->autoDefault());
    QVERIFY(!browser->isDefault());
}

void ToolFormTest::separatorsAreSunkenLines()
{
    BareForm form;
    for (const QFrame *line : {form.ui.line, form.ui.line_2}) {
        QCOMPARE(line->frameShape(), QFrame::HLine);
        QCOMPARE(line->frameShadow(), QFrame::Sunken);
    }
}

void ToolFormTest::traceAndZoomButtonsAreSetUp()
{
    BareForm form;
    const QPushButton *clear = form.ui.btnClearTraces;
    QVERIFY(samePolicy(clear, policy(QSizePolicy::Maximum, QSizePolicy::Fixed)));
    QVERIFY(clear->isCheckable());
    QVERIFY(!clear->isChecked());
    QVERIFY(form.ui.btnZoomOut->autoRepeat());
    QVERIFY(form.ui.btnZoomIn->autoRepeat());
    QCOMPARE(form.ui.btnZoomIn->toolTip(),
             QStringLiteral("You can also use CRTL+Left MouseButton"));
    QVERIFY(form.ui.btnZoomOut->toolTip().isEmpty());
}

void ToolFormTest::textsGoThroughTheTranslation()
{
    QCOMPARE(shownTexts(BareForm().ui), translatedTexts());
    const MarkingTranslator translator;
    BareForm form;
    QCOMPARE(translator.asked, translatedTexts());
    QStringList marked = translatedTexts();
    marked.replaceInStrings(QRegularExpression(QStringLiteral("^")), QStringLiteral("*"));
    QCOMPARE(shownTexts(form.ui), marked);
    QCOMPARE(form.ui.btnShowPosition->text(), QStringLiteral("Position mode tools"));
    QCOMPARE(form.ui.btnShowRegister->text(), QStringLiteral("Export to register browser"));
    QCOMPARE(form.ui.btnZoomIn->toolTip(),
             QStringLiteral("You can also use CRTL+Left MouseButton"));
}

void ToolFormTest::retranslationRefreshesOnlyTranslatedTexts()
{
    BareForm form;
    const QString kept = QStringLiteral("kept");
    form.panel.setWindowTitle(kept);
    form.ui.btnShowPosition->setText(kept);
    form.ui.btnShowRegister->setText(kept);
    form.ui.btnZoomIn->setToolTip(kept);
    form.ui.label_3->setText(kept);
    form.ui.spTraces->setSuffix(kept);
    form.ui.retranslateUi(&form.panel);
    QCOMPARE(shownTexts(form.ui), translatedTexts());
    QCOMPARE(form.panel.windowTitle(), kept);
    QCOMPARE(form.ui.btnShowPosition->text(), kept);
    QCOMPARE(form.ui.btnShowRegister->text(), kept);
    QCOMPARE(form.ui.btnZoomIn->toolTip(), kept);
}

void ToolFormTest::toolHoldsTheFormWithChartAndRegisters()
{
    ToolRig rig;
    QCOMPARE(rig.tool()->objectName(), QStringLiteral("SynchronisedDriveTool"));
    QCOMPARE(rig.tool()->size(), QSize(813, 364));
    const auto *graph = rig.tool()->findChild<QVBoxLayout *>(QStringLiteral("graphLayout"));
    QCOMPARE(graph->count(), 1);
    QCOMPARE(graph->itemAt(0)->widget(), static_cast<QWidget *>(rig.view()));
    const auto *settings = rig.tool()->findChild<QVBoxLayout *>(QStringLiteral("settingsLayout"));
    QCOMPARE(itemsOf(settings).mid(1),
             words("pbStart,pbStop,line,btnShowPosition,btnShowRegister,spacer 20x40 1 7,"
                   "line_2,horizontalLayout_3,btnZoomOut,btnZoomIn"));
    for (const QString &name : limitNames)
        QVERIFY(rig.tool()->findChild<QSpinBox *>(name)->parentWidget() == rig.tool());
}

void ToolFormTest::toolIsTranslatedAsTheForm()
{
    const MarkingTranslator translator;
    ToolRig rig;
    QCOMPARE(translator.asked.mid(0, translatedTexts().size()), translatedTexts());
    QCOMPARE(rig.widget<QToolButton>("pbStart")->text(), QStringLiteral("* Move to position"));
    QCOMPARE(rig.widget<QAbstractButton>("btnShowPosition")->text(),
             QStringLiteral("Position mode tools"));
    QVERIFY(rig.tool()->windowTitle().isEmpty());
}

QTEST_MAIN(ToolFormTest)
#include "tst_tool_form.moc"
