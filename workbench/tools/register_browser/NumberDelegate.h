#pragma once

#include <QStyledItemDelegate>

/// Edits numbers as text. The value that an edit began with stays in the editor while the model's
/// goes on changing, and nothing is handed back unless the user has changed the text.
class NumberDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void setEditorData(QWidget *editor, const QModelIndex &index) const override;
    void setModelData(QWidget *editor, QAbstractItemModel *model,
                      const QModelIndex &index) const override;
};
