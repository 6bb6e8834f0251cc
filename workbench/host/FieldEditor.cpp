#include "FieldEditor.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QScopedValueRollback>

FieldEditor *FieldEditor::create(const FieldInfo &info, const FieldCoding::Range &range)
{
    if (info.width == 1)
        return new BitEditor(info.isSigned ? -1 : 1);
    return new NumberEditor(range);
}

void FieldEditor::report(int value)
{
    entered = value;
    if (depth == 0)
        deliver();
}

void FieldEditor::deliver()
{
    if (!entered)
        return;
    const int value = *entered;
    entered.reset();
    // A copy, since the listener may delete this editor.
    const auto listener = onEdited;
    if (listener)
        listener(value);
}

NumberEditor::NumberEditor(const FieldCoding::Range &range)
{
    setRange(range.min, range.max);
    setGroupSeparatorShown(true);
    setAccelerated(true);
    setKeyboardTracking(false);
    connect(lineEdit(), &QLineEdit::textEdited, this, [this] { isTyping = true; });
    connect(this, qOverload<int>(&QSpinBox::valueChanged), this, &NumberEditor::takeUserValue);
    connect(this, &QSpinBox::editingFinished, this, &NumberEditor::finishTyping);
}

void NumberEditor::showValue(int newValue)
{
    if (isTyping) {
        postponed = newValue;
        return;
    }
    const QScopedValueRollback<bool> showing(isShowing, true);
    if (newValue != value())
        setValue(newValue);
}

void NumberEditor::setInputReadOnly(bool readOnly)
{
    setReadOnly(readOnly);
    setButtonSymbols(readOnly ? NoButtons : UpDownArrows);
    if (!readOnly || !isTyping)
        return;
    isTyping = false;
    const QScopedValueRollback<bool> showing(isShowing, true);
    setValue(postponed.value_or(value()));
    postponed.reset();
}

bool NumberEditor::event(QEvent *event)
{
    return handleAndReport(this, [this, event] { return QSpinBox::event(event); });
}

void NumberEditor::keyPressEvent(QKeyEvent *event)
{
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const QScopedValueRollback<bool> confirming(isConfirming, isReturn);
    QSpinBox::keyPressEvent(event);
}

void NumberEditor::takeUserValue(int newValue)
{
    if (isShowing)
        return;
    isTyping = false;
    postponed.reset();
    report(newValue);
}

void NumberEditor::finishTyping()
{
    if (!isTyping)
        return;
    isTyping = false;
    const std::optional<int> waiting = postponed;
    postponed.reset();
    // Return confirms the number on display even where the box held the same one before.
    if (isConfirming)
        report(value());
    else if (waiting)
        showValue(*waiting);
}

BitEditor::BitEditor(int setValue)
    : valueWhenSet(setValue)
{
    connect(this, &QCheckBox::toggled, this, [this](bool isSet) {
        if (!isShowing)
            report(isSet ? valueWhenSet : 0);
    });
}

void BitEditor::showValue(int value)
{
    const QScopedValueRollback<bool> showing(isShowing, true);
    setChecked(value != 0);
}

void BitEditor::setInputReadOnly(bool readOnly)
{
    isReadOnly = readOnly;
    setFocusPolicy(readOnly ? Qt::NoFocus : Qt::StrongFocus);
}

bool BitEditor::event(QEvent *event)
{
    return handleAndReport(this, [this, event] { return QCheckBox::event(event); });
}

void BitEditor::nextCheckState()
{
    if (!isReadOnly)
        QCheckBox::nextCheckState();
}
