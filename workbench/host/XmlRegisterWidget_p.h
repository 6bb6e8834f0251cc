#pragma once

#include "ActualValueLabel.h"
#include "ChipInfo.h"
#include "FieldCoding.h"
#include "FieldEditor.h"
#include "QVXLModuleInterface.h"
#include "XmlRegisterWidget.h"
#include "XmlValueRegisterField.h"

#include <QPointer>

class XmlRegisterWidgetPrivate
{
public:
    XmlRegisterWidgetPrivate(XmlRegisterWidget *publicWidget, XmlValueRegisterField *boundField,
                             QObject *parent);
    ~XmlRegisterWidgetPrivate();

    static XmlRegisterWidgetPrivate *of(const XmlRegisterWidget *widget) { return widget->d.get(); }

    /// False for a widget without a field, or whose field or register is gone.
    bool isBound() const { return field && field->getRegister(); }

    void makeParts();
    void connectParts();
    void setValue(int newValue);
    void takeUserValue(int newValue);
    void show(int newValue);
    void applyReadOnly();

    XmlRegisterWidget *q;
    QPointer<XmlValueRegisterField> field;
    QPointer<QVXLModuleInterface> module;
    unsigned char motor = 0;
    RegisterInfo regInfo;
    FieldInfo fieldInfo;
    FieldCoding::Range range;
    bool isInputReadOnly = false;

    /// The parts belong to whatever lays them out, and to this object too: whichever goes first
    /// takes them along. Null for a widget made without a field.
    QPointer<QLabel> label;
    QPointer<QWidget> input;
    QPointer<ActualValueLabel> actual;

private:
    void follow(unsigned short address, int registerValue, unsigned char writtenMotor);
    void write();
    bool isSameChip(unsigned char otherMotor) const;
    QString toolTip() const;

    /// Valid as long as `input` is not null.
    FieldEditor *editor = nullptr;
    int value = 0;
    bool hasWriteFailed = false;
};
