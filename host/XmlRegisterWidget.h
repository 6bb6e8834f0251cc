#pragma once

#include <QObject>

#include <memory>

class XmlRegisterWidgetPrivate;
class XmlValueRegisterField;

/// An editor for one register field: a label, an input and the actual value, laid out by the
/// container that it is added to. It finds its module through its parent, a tool. What the user
/// enters is written to the module by the widget itself.
class XmlRegisterWidget : public QObject
{
    Q_OBJECT

public:
    /// `field` is watched, not owned; with a null field the widget shows nothing and writes
    /// nothing.
    XmlRegisterWidget(XmlValueRegisterField *field, QObject *parent);
    ~XmlRegisterWidget() override;

    /// With true the user can no longer edit the input.
    void setInputWidgetReadOnly(bool readOnly);

    /// The field the widget is bound to, or null when that is gone.
    XmlValueRegisterField *registerField();

    /// Shows `value` as the field's actual value; nothing is written. With the flag the input
    /// follows too, unless the user is editing it.
    void updateActualValue(int value, bool updateInput);

    /// Sets the field's value and writes it to the module, unless the register is read-only; a
    /// negative value is passed as its 64-bit two's complement.
    void setAndUpdateValue(unsigned long long value);

signals:
    /// The input's value has changed, by the user or through `setAndUpdateValue`.
    void valueChanged(int value);

private:
    friend class XmlRegisterWidgetPrivate;
    std::unique_ptr<XmlRegisterWidgetPrivate> d;
};
