#pragma once

#include "ChipInfo.h"
#include "RegisterNumber.h"
#include "XmlValueRegisterField.h"

#include <QAbstractTableModel>
#include <QPointer>
#include <QVector>

#include <optional>

class XmlValueRegister;

/// The fields of one register and what its value means for each. Sends no requests itself.
class FieldTableModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column {
        IdentifierColumn,
        NameColumn,
        BitsColumn,
        ValueColumn,
        RangeColumn,
        columnsInAll
    };

    using QAbstractTableModel::QAbstractTableModel;

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

    /// Asks for a write; the value shown changes when the write is heard of.
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;

    /// Shows the fields of `reg`, which may be null, with no value.
    void showRegister(XmlValueRegister *reg);

    /// The register's value, nothing when it is not known. With false the value is an old one.
    void setValue(std::optional<int> value, bool isAnswering);

signals:
    void writeRequested(XmlValueRegisterField *field, int value);

    /// What the user entered was not taken; one sentence that says why.
    void entryRefused(const QString &reason);

private:
    struct Entry
    {
        QPointer<XmlValueRegisterField> field;
        FieldInfo info;
        tools::NumberFormat format;
    };

    QString text(const Entry &entry, int column) const;
    QString valueText(const Entry &entry) const;

    QVector<Entry> entries;
    RegisterInfo reg;
    std::optional<int> registerValue;
    bool isCurrent = false;
};
