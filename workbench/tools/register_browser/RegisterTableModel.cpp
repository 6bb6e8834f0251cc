#include "RegisterTableModel.h"

#include "BasicTools.h"
#include "XmlValueRegister.h"

#include <QApplication>
#include <QFontDatabase>
#include <QPalette>

namespace {

constexpr int addressDigits = 2;

bool isValueColumn(int column)
{
    return column == RegisterTableModel::HexadecimalColumn ||
           column == RegisterTableModel::DecimalColumn;
}

QString accessText(const RegisterInfo &info)
{
    if (!info.writable)
        return QStringLiteral("R");
    return info.readable ? QStringLiteral("R/W") : QStringLiteral("W");
}

} // namespace

RegisterTableModel::RegisterTableModel(const QList<XmlValueRegister *> &registers, QObject *parent)
    : QAbstractTableModel(parent)
{
    for (XmlValueRegister *const reg : registers) {
        const RegisterInfo info = ChipInfo::of(reg);
        if (!info.visible)
            continue;
        const int row = rowCount();
        entries.push_back({reg, info, tools::formatOf(reg), std::nullopt, false});
        connect(reg, &QObject::destroyed, this, [this, row] { announce(row); });
    }
}

int RegisterTableModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(entries.size());
}

int RegisterTableModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : columnsInAll;
}

QVariant RegisterTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    static const QStringList titles{
        QStringLiteral("Address"), QStringLiteral("Name"),        QStringLiteral("Access"),
        QStringLiteral("Hex"),     QStringLiteral("Decimal"),     QStringLiteral("Unit"),
        QStringLiteral("State"),   QStringLiteral("Description"),
    };
    if (orientation == Qt::Horizontal && role == Qt::TextAlignmentRole && section == DecimalColumn)
        return int(Qt::AlignRight | Qt::AlignVCenter);
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QAbstractTableModel::headerData(section, orientation, role);
    return titles.value(section);
}

QVariant RegisterTableModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return QVariant();
    const Entry &entry = entryAt(index.row());
    const int column = index.column();
    if (role == Qt::DisplayRole)
        return text(entry, column);
    if (role == Qt::EditRole)
        return entry.value ? text(entry, column) : QString();
    if (role == Qt::ToolTipRole)
        return toolTip(entry);
    if (role == Qt::TextAlignmentRole && column == DecimalColumn)
        return int(Qt::AlignRight | Qt::AlignVCenter);
    if (role == Qt::FontRole && (column == AddressColumn || column == HexadecimalColumn))
        return QFontDatabase::systemFont(QFontDatabase::FixedFont);
    if (role == Qt::ForegroundRole && isValueColumn(column) && !isAnswering(index.row()))
        return QApplication::palette().brush(QPalette::Disabled, QPalette::Text);
    return QVariant();
}

Qt::ItemFlags RegisterTableModel::flags(const QModelIndex &index) const
{
    Qt::ItemFlags result = QAbstractTableModel::flags(index);
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return result;
    const Entry &entry = entryAt(index.row());
    if (isValueColumn(index.column()) && entry.info.writable && entry.reg)
        result |= Qt::ItemIsEditable;
    return result;
}

bool RegisterTableModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (role != Qt::EditRole || !(flags(index) & Qt::ItemIsEditable))
        return false;
    const Entry &entry = entryAt(index.row());
    const tools::Entry entered = tools::parseEntry(entry.format, value.toString());
    if (!entered.word) {
        emit entryRefused(entry.info.name + QStringLiteral(": ") + entered.refusal);
        return false;
    }
    emit writeRequested(entry.info.address, *entered.word);
    return true;
}

int RegisterTableModel::rowOf(unsigned int address) const
{
    for (int row = 0; row < rowCount(); ++row) {
        if (addressAt(row) == address)
            return row;
    }
    return -1;
}

bool RegisterTableModel::isAnswering(int row) const
{
    const Entry &entry = entryAt(row);
    return entry.reg && !entry.isUnanswered && entry.value;
}

bool RegisterTableModel::canBeRead(int row) const
{
    const Entry &entry = entryAt(row);
    return entry.reg && entry.info.readable;
}

void RegisterTableModel::setValue(int row, int value)
{
    Entry &entry = entryAt(row);
    // What a write-only register holds is never known for certain.
    if (!canBeRead(row) || (isAnswering(row) && entry.value == value))
        return;
    entry.value = value;
    entry.isUnanswered = false;
    announce(row);
}

void RegisterTableModel::setUnanswered(int row)
{
    if (entryAt(row).isUnanswered || !canBeRead(row))
        return;
    entryAt(row).isUnanswered = true;
    announce(row);
}

QString RegisterTableModel::text(const Entry &entry, int column) const
{
    switch (column) {
    case AddressColumn:
        return BasicTools::iToHex(entry.info.address, addressDigits, QStringLiteral("0x"));
    case NameColumn:
        return entry.info.name;
    case AccessColumn:
        return accessText(entry.info);
    case HexadecimalColumn:
        return valueText(entry, true);
    case DecimalColumn:
        return valueText(entry, false);
    case UnitColumn:
        return entry.info.unit;
    case StateColumn:
        return stateText(entry);
    default:
        return entry.info.description;
    }
}

QString RegisterTableModel::valueText(const Entry &entry, bool isHexadecimal) const
{
    if (!entry.info.readable)
        return QStringLiteral("–");
    if (!entry.value)
        return QString();
    return isHexadecimal ? tools::hexadecimalText(entry.format, *entry.value)
                         : tools::decimalText(entry.format, *entry.value);
}

QString RegisterTableModel::stateText(const Entry &entry) const
{
    if (!entry.reg)
        return QStringLiteral("deleted");
    return entry.isUnanswered ? QStringLiteral("no answer") : QString();
}

QString RegisterTableModel::toolTip(const Entry &entry) const
{
    if (!entry.info.writable)
        return entry.info.description;
    return QStringLiteral("%1\nAllowed: %2")
        .arg(entry.info.description, tools::rangeText(entry.format));
}

void RegisterTableModel::announce(int row)
{
    emit dataChanged(index(row, 0), index(row, columnsInAll - 1));
    emit rowChanged(row);
}
