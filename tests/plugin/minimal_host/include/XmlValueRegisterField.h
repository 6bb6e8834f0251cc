#pragma once

#include <QObject>

class XmlValueRegister;

class XmlValueRegisterField : public QObject
{
public:
    ~XmlValueRegisterField() override;

    XmlValueRegister *getRegister();
    QString getName();
};
