#include "RegisterBrowserPanel.h"

#include "FieldTableModel.h"
#include "NumberDelegate.h"
#include "RegisterTableModel.h"

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSplitter>
#include <QTableView>

namespace {

constexpr double minimumRateHz = 0.5;
constexpr double maximumRateHz = 20;
constexpr double presetRateHz = 2;
constexpr double rateStepHz = 0.5;

/// Makes a column wide enough for `widest` and for what it holds now. Later values do not move it.
void fitColumn(QTableView *table, int column, const QString &widest = QString())
{
    constexpr int margins = 18;
    constexpr int gap = 8;
    const QModelIndex first = table->model()->index(0, column);
    const QVariant font = first.data(Qt::FontRole);
    const QFontMetrics metrics(font.isValid() ? font.value<QFont>() : table->font());
    table->resizeColumnToContents(column);
    table->setColumnWidth(column, gap + qMax(table->columnWidth(column),
                                             metrics.horizontalAdvance(widest) + margins));
}

} // namespace

RegisterBrowserPanel::RegisterBrowserPanel(QAbstractItemModel *registerModel,
                                           QAbstractItemModel *fieldModel, QWidget *parent)
    : QWidget(parent)
    , registers(makeTable(registerModel, QStringLiteral("tvRegisters")))
    , status(new QLabel)
{
    auto *const splitter = new QSplitter(Qt::Vertical);
    splitter->addWidget(registers);
    splitter->addWidget(makeFieldBox(fieldModel));
    splitter->setStretchFactor(0, 3);
    splitter->setStretchFactor(1, 1);
    splitter->setChildrenCollapsible(false);
    status->setObjectName(QStringLiteral("lbStatus"));
    status->setTextInteractionFlags(Qt::TextSelectableByMouse);
    // A long message must not make the whole tool wider.
    status->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    auto *const rows = new QVBoxLayout(this);
    rows->addWidget(makeBar());
    rows->addWidget(splitter, 1);
    rows->addWidget(status);
    setRegisterColumns();
}

QSize RegisterBrowserPanel::sizeHint() const
{
    return {1100, 640};
}

void RegisterBrowserPanel::showStatus(const QString &text)
{
    status->setText(text);
    status->setToolTip(text);
}

QWidget *RegisterBrowserPanel::makeBar()
{
    auto *const bar = new QWidget;
    search = new QLineEdit;
    search->setObjectName(QStringLiteral("leSearch"));
    search->setPlaceholderText(QStringLiteral("Search name, description or address"));
    search->setClearButtonEnabled(true);
    showAll = new QPushButton(QStringLiteral("Show all"));
    showAll->setObjectName(QStringLiteral("pbShowAll"));
    showAll->setToolTip(QStringLiteral("Shows all registers of the chip"));
    live = new QCheckBox(QStringLiteral("Live"));
    live->setObjectName(QStringLiteral("cbLive"));
    live->setChecked(true);
    live->setToolTip(QStringLiteral("Reads the registers shown again and again"));
    rate = new QDoubleSpinBox;
    rate->setObjectName(QStringLiteral("spRate"));
    rate->setRange(minimumRateHz, maximumRateHz);
    rate->setSingleStep(rateStepHz);
    rate->setDecimals(1);
    rate->setValue(presetRateHz);
    rate->setSuffix(QStringLiteral(" Hz"));
    rate->setKeyboardTracking(false);
    rate->setToolTip(QStringLiteral("How often each register is read, as far as the link allows"));
    auto *const columns = new QHBoxLayout(bar);
    columns->setContentsMargins(0, 0, 0, 0);
    columns->addWidget(search, 1);
    for (QWidget *const widget : std::initializer_list<QWidget *>{showAll, live, rate})
        columns->addWidget(widget);
    return bar;
}

QWidget *RegisterBrowserPanel::makeFieldBox(QAbstractItemModel *model)
{
    auto *const box = new QWidget;
    fieldsTitle = new QLabel;
    fieldsTitle->setObjectName(QStringLiteral("lbFields"));
    fields = makeTable(model, QStringLiteral("tvFields"));
    auto *const rows = new QVBoxLayout(box);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->addWidget(fieldsTitle);
    rows->addWidget(fields, 1);
    return box;
}

QTableView *RegisterBrowserPanel::makeTable(QAbstractItemModel *model, const QString &objectName)
{
    auto *const table = new QTableView;
    table->setObjectName(objectName);
    table->setModel(model);
    table->setItemDelegate(new NumberDelegate(table));
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setSelectionMode(QAbstractItemView::SingleSelection);
    table->setAlternatingRowColors(true);
    table->setShowGrid(false);
    table->verticalHeader()->hide();
    table->verticalHeader()->setDefaultSectionSize(table->fontMetrics().height() + 6);
    table->horizontalHeader()->setHighlightSections(false);
    table->horizontalHeader()->setStretchLastSection(true);
    table->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    return table;
}

void RegisterBrowserPanel::setRegisterColumns()
{
    fitColumn(registers, RegisterTableModel::AddressColumn);
    fitColumn(registers, RegisterTableModel::NameColumn);
    fitColumn(registers, RegisterTableModel::AccessColumn);
    fitColumn(registers, RegisterTableModel::HexadecimalColumn, QStringLiteral("0x88888888"));
    fitColumn(registers, RegisterTableModel::DecimalColumn, QStringLiteral("-8888888888"));
    fitColumn(registers, RegisterTableModel::UnitColumn);
    fitColumn(registers, RegisterTableModel::StateColumn, QStringLiteral("no answer"));
}

void RegisterBrowserPanel::fitFieldColumns()
{
    fitColumn(fields, FieldTableModel::IdentifierColumn);
    fitColumn(fields, FieldTableModel::NameColumn);
    fitColumn(fields, FieldTableModel::BitsColumn, QStringLiteral("88:88"));
    fitColumn(fields, FieldTableModel::ValueColumn, QStringLiteral("-8888888888"));
}
