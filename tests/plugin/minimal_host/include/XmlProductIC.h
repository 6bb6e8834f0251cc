#pragma once

#include "XmlRegisterSet.h"

#include <QString>

class XmlValueRegisterField;

/// A chip description that lists nothing.
class XmlProductIC
{
public:
    XmlValueRegister *getRegisterByName(QString name, bool visibleOnly);
    XmlValueRegisterField *getRegisterFieldByIdentifier(QString identifier, bool includeHidden,
                                                        bool allRegisters);
    XmlRegisterSet *registerSet();
    int lookUpCount() const { return m_lookUps; }

private:
    int m_lookUps = 0;
    XmlRegisterSet m_registers;
};
