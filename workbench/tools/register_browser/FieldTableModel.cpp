#include "FieldTableModel.h"

#include "XmlValueRegister.h"
#include "XmlValueRegisterField.h"

#include <QApplication>
#include <QPalette>

int FieldTableModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : entries.size();
}

int FieldTableModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : columnsInAll;
}

QVariant FieldTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    static const QStringList titles{QStringLiteral("Field"), QStringLiteral("Name"),
                                    QStringLiteral("Bits"), QStringLiteral("Value"),
                                    QStringLiteral("Range")};
    if (orientation == Qt::Horizontal && role == Qt::TextAlignmentRole && section == ValueColumn)
        return int(Qt::AlignRight | Qt::AlignVCenter);
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QAbstractTableModel::headerData(section, orientation, role);
    return titles.value(section);
}

QVariant FieldTableModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return QVariant();
    const Entry &entry = entries.at(index.row());
    if (role == Qt::DisplayRole)
        return text(entry, index.column());
    if (role == Qt::EditRole)
        return registerValue ? text(entry, index.column()) : QString();
    if (role == Qt::TextAlignmentRole && index.column() == ValueColumn)
        return int(Qt::AlignRight | Qt::AlignVCenter);
    if (role == Qt::ForegroundRole && index.column() == ValueColumn && !(isCurrent && entry.field))
        return QApplication::palette().brush(QPalette::Disabled, QPalette::Text);
    return QVariant();
}

Qt::ItemFlags FieldTableModel::flags(const QModelIndex &index) const
{
    Qt::ItemFlags result = QAbstractTableModel::flags(index);
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return result;
    if (index.column() == ValueColumn && reg.writable && entries.at(index.row()).field)
        result |= Qt::ItemIsEditable;
    return result;
}

bool FieldTableModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (role != Qt::EditRole || !(flags(index) & Qt::ItemIsEditable))
        return false;
    const Entry &entry = entries.at(index.row());
    const tools::Entry entered = tools::parseEntry(entry.format, value.toString());
    if (!entered.word) {
        emit entryRefused(entry.info.identifier + QStringLiteral(": ") + entered.refusal);
        return false;
    }
    emit writeRequested(entry.field, *entered.word);
    return true;
}

void FieldTableModel::showRegister(XmlValueRegister *shown)
{
    beginResetModel();
    reg = ChipInfo::of(shown);
    registerValue.reset();
    isCurrent = false;
    entries.clear();
    const QList<XmlValueRegisterField *> fields = ChipInfo::fields(shown);
    for (XmlValueRegisterField *const field : fields) {
        const FieldInfo info = ChipInfo::of(field);
        if (info.visible)
            entries.append({field, info, tools::formatOf(shown, info)});
    }
    endResetModel();
}

void FieldTableModel::setValue(std::optional<int> value, bool isAnswering)
{
    registerValue = value;
    isCurrent = isAnswering;
    if (!entries.isEmpty())
        emit dataChanged(index(0, ValueColumn), index(entries.size() - 1, ValueColumn));
}

QString FieldTableModel::text(const Entry &entry, int column) const
{
    switch (column) {
    case IdentifierColumn:
        return entry.info.identifier;
    case NameColumn:
        return entry.info.name;
    case BitsColumn:
        return QStringLiteral("%1:%2")
            .arg(entry.info.lowBit + entry.info.width - 1)
            .arg(entry.info.lowBit);
    case ValueColumn:
        return valueText(entry);
    default:
        return tools::rangeText(entry.format);
    }
}

QString FieldTableModel::valueText(const Entry &entry) const
{
    if (!reg.readable)
        return QStringLiteral("–");
    if (!registerValue)
        return QString();
    const quint32 shifted = static_cast<quint32>(*registerValue) >> entry.info.lowBit;
    return tools::decimalText(entry.format, static_cast<int>(shifted));
}
