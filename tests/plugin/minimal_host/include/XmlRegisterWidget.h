#pragma once

#include <QObject>

class XmlValueRegisterField;

class XmlRegisterWidget : public QObject
{
    Q_OBJECT

public:
    XmlRegisterWidget(XmlValueRegisterField *field, QObject *parent);
    ~XmlRegisterWidget() override;

    void setInputWidgetReadOnly(bool readOnly);
    XmlValueRegisterField *registerField();
    void updateActualValue(int value, bool updateInput);
    void setAndUpdateValue(unsigned long long value);

signals:
    void valueChanged(int value);

private:
    bool m_readOnly = false;
    int m_actual = 0;
    XmlValueRegisterField *m_field;
};
