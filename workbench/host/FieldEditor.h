#pragma once

#include "FieldCoding.h"

#include <QCheckBox>
#include <QPointer>
#include <QSpinBox>

#include <functional>
#include <optional>

/// The input of a register widget: a widget in which the user edits a field's value. What the user
/// enters is reported once the event that brought it has been handled, so that the listener may
/// delete the editor.
class FieldEditor
{
public:
    virtual ~FieldEditor() = default;

    /// An editor that suits the field; the caller owns its widget.
    static FieldEditor *create(const FieldInfo &info, const FieldCoding::Range &range);

    virtual QWidget *widget() = 0;

    /// Shows a value without reporting it. Text that the user is typing stays: the value shows when
    /// the typing ends without a value of its own.
    virtual void showValue(int value) = 0;

    /// With true the user can no longer change the value; what was half typed is dropped.
    virtual void setInputReadOnly(bool readOnly) = 0;

    std::function<void(int)> onEdited;

protected:
    /// The user has entered `value`.
    void report(int value);

    /// Runs the base class's event handler and then reports what the user has entered by it.
    template <typename Handler>
    bool handleAndReport(QObject *self, Handler handler)
    {
        const QPointer<QObject> guard(self);
        ++depth;
        const bool isHandled = handler();
        if (guard && --depth == 0)
            deliver();
        return isHandled;
    }

private:
    void deliver();

    std::optional<int> entered;
    int depth = 0;
};

/// The editor for numbers.
class NumberEditor : public QSpinBox, public FieldEditor
{
public:
    explicit NumberEditor(const FieldCoding::Range &range);

    QWidget *widget() override { return this; }
    void showValue(int value) override;
    void setInputReadOnly(bool readOnly) override;

protected:
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void takeUserValue(int value);
    void finishTyping();

    std::optional<int> postponed;
    bool isTyping = false;
    bool isConfirming = false;
    bool isShowing = false;
};

/// The editor for single bits.
class BitEditor : public QCheckBox, public FieldEditor
{
public:
    /// `setValue` is the field's value with the bit set.
    explicit BitEditor(int setValue);

    QWidget *widget() override { return this; }
    void showValue(int value) override;
    void setInputReadOnly(bool readOnly) override;

protected:
    bool event(QEvent *event) override;
    void nextCheckState() override;

private:
    int valueWhenSet;
    bool isReadOnly = false;
    bool isShowing = false;
};
