#pragma once

class XmlValueRegister;

class XmlRegisterSet
{
public:
    XmlValueRegister *getRegister(unsigned int address);
};
