#pragma once

#include <QWidget>

class QAbstractItemModel;
class QCheckBox;
class QDoubleSpinBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTableView;

/// The widgets of the register browser, without behaviour of their own. All belong to the panel.
class RegisterBrowserPanel : public QWidget
{
    Q_OBJECT

public:
    /// The models are not owned.
    RegisterBrowserPanel(QAbstractItemModel *registerModel, QAbstractItemModel *fieldModel,
                         QWidget *parent);

    /// One line below the tables; an empty text clears it.
    void showStatus(const QString &text);

    /// To be called when the field table shows other fields.
    void fitFieldColumns();

    QSize sizeHint() const override;

    QLineEdit *search = nullptr;
    QPushButton *showAll = nullptr;
    QCheckBox *live = nullptr;
    QDoubleSpinBox *rate = nullptr; ///< Hz
    QTableView *registers = nullptr;
    QLabel *fieldsTitle = nullptr;
    QTableView *fields = nullptr;
    QLabel *status = nullptr;

private:
    QWidget *makeBar();
    QWidget *makeFieldBox(QAbstractItemModel *model);
    QTableView *makeTable(QAbstractItemModel *model, const QString &objectName);
    void setRegisterColumns();
};
