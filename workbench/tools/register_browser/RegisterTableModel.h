#pragma once

#include "ChipInfo.h"
#include "RegisterNumber.h"
#include "XmlValueRegister.h"

#include <QAbstractTableModel>
#include <QPointer>

#include <optional>
#include <vector>

/// The registers of a chip by ascending address, with the values last heard of. Sends no requests
/// itself. The registers may go at any time; their rows stay with what was known.
class RegisterTableModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column {
        AddressColumn,
        NameColumn,
        AccessColumn,
        HexadecimalColumn,
        DecimalColumn,
        UnitColumn,
        StateColumn,
        DescriptionColumn,
        columnsInAll
    };

    /// Takes the registers that users may see; the others have no row.
    RegisterTableModel(const QList<XmlValueRegister *> &registers, QObject *parent);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

    /// Asks for a write; the value shown changes when the write is heard of.
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;

    /// -1 when there is none.
    int rowOf(unsigned int address) const;
    unsigned int addressAt(int row) const { return entryAt(row).info.address; }

    /// Null when the register is gone.
    XmlValueRegister *registerAt(int row) const { return entryAt(row).reg; }

    /// Nothing for a register that has never answered and for a write-only one.
    std::optional<int> valueAt(int row) const { return entryAt(row).value; }

    bool isAnswering(int row) const;

    /// Whether it makes sense to read the register: it exists and is not write-only.
    bool canBeRead(int row) const;

    void setValue(int row, int value);
    void setUnanswered(int row);

signals:
    void writeRequested(unsigned int address, int value);

    /// What the user entered was not taken; one sentence that says why.
    void entryRefused(const QString &reason);

    /// The row's value or state is another one.
    void rowChanged(int row);

private:
    struct Entry
    {
        QPointer<XmlValueRegister> reg;
        RegisterInfo info;
        tools::NumberFormat format;
        std::optional<int> value;
        bool isUnanswered = false;
    };

    const Entry &entryAt(int row) const { return entries[static_cast<std::size_t>(row)]; }
    Entry &entryAt(int row) { return entries[static_cast<std::size_t>(row)]; }
    QString text(const Entry &entry, int column) const;
    QString valueText(const Entry &entry, bool isHexadecimal) const;
    QString stateText(const Entry &entry) const;
    QString toolTip(const Entry &entry) const;
    void announce(int row);

    std::vector<Entry> entries;
};
