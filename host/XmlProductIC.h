#pragma once

#include <QString>

#include <memory>

class XmlProductICPrivate;
class XmlRegisterSet;
class XmlValueRegister;
class XmlValueRegisterField;

/// The description of one chip: its registers and their fields. Owned by the module, lives as long
/// as the module; what the look-ups return is owned by the description.
class XmlProductIC
{
public:
    explicit XmlProductIC(std::unique_ptr<XmlProductICPrivate> state);
    ~XmlProductIC();

    /// The register of exactly that name, or null. The flag restricts the search to registers that
    /// users may see; tools pass true.
    XmlValueRegister *getRegisterByName(QString name, bool visibleOnly);

    /// The field of exactly that identifier, or null. The first flag includes fields that users do
    /// not see, the second looks into all registers and not just the first that matches; tools
    /// pass false and true.
    XmlValueRegisterField *getRegisterFieldByIdentifier(QString identifier, bool includeHidden,
                                                        bool allRegisters);

    /// The chip's registers; never null.
    XmlRegisterSet *registerSet();

private:
    friend class XmlProductICPrivate;
    std::unique_ptr<XmlProductICPrivate> d;
};
