#pragma once

#include <QObject>

#include <memory>

class XmlValueRegisterPrivate;

/// One register of a chip description. Owned by the host, which may delete it at any time between
/// two events: hold it through a `QPointer` and test that before use.
class XmlValueRegister : public QObject
{
public:
    explicit XmlValueRegister(std::unique_ptr<XmlValueRegisterPrivate> state,
                              QObject *parent = nullptr);
    ~XmlValueRegister() override;

    /// The address under which the module reads and writes the register.
    unsigned int address();

    /// The name as the chip's register map spells it, for example "M0_VMAX".
    QString name();

private:
    friend class XmlValueRegisterPrivate;
    std::unique_ptr<XmlValueRegisterPrivate> d;
};
