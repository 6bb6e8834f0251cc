#pragma once

#include <QObject>

#include <memory>

class XmlValueRegister;
class XmlValueRegisterFieldPrivate;

/// A range of bits of one register with a meaning of its own. Owned by the host, lives at most as
/// long as its register.
class XmlValueRegisterField : public QObject
{
public:
    explicit XmlValueRegisterField(std::unique_ptr<XmlValueRegisterFieldPrivate> state,
                                   QObject *parent = nullptr);
    ~XmlValueRegisterField() override;

    /// The register that holds the field; null when it is gone.
    XmlValueRegister *getRegister();

    /// The field's name as shown to users.
    QString getName();

private:
    friend class XmlValueRegisterFieldPrivate;
    std::unique_ptr<XmlValueRegisterFieldPrivate> d;
};
