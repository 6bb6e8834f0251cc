#pragma once

#include <QObject>

class XmlValueRegister : public QObject
{
public:
    ~XmlValueRegister() override;

    unsigned int address();
    QString name();
};
