#pragma once

#include <memory>

class XmlRegisterSetPrivate;
class XmlValueRegister;

/// All registers of one chip. Owned by the chip description.
class XmlRegisterSet
{
public:
    explicit XmlRegisterSet(std::unique_ptr<XmlRegisterSetPrivate> state);
    ~XmlRegisterSet();

    /// The register at an address, not owned by the caller; null when the chip has none there.
    XmlValueRegister *getRegister(unsigned int address);

private:
    friend class XmlRegisterSetPrivate;
    std::unique_ptr<XmlRegisterSetPrivate> d;
};
