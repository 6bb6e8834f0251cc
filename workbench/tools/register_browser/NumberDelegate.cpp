#include "NumberDelegate.h"

#include <QLineEdit>

namespace {

constexpr const char *isFilled = "isFilled";

} // namespace

void NumberDelegate::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    // Views call this again whenever the value on display changes.
    if (editor->property(isFilled).toBool())
        return;
    editor->setProperty(isFilled, true);
    QStyledItemDelegate::setEditorData(editor, index);
}

void NumberDelegate::setModelData(QWidget *editor, QAbstractItemModel *model,
                                  const QModelIndex &index) const
{
    const auto *const line = qobject_cast<QLineEdit *>(editor);
    if (!line || line->isModified())
        QStyledItemDelegate::setModelData(editor, model, index);
}
