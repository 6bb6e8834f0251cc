#pragma once

#include "ChipInfo.h"
#include "XmlProductIC.h"

#include <memory>

/// Puts a chip description together, register by register.
class ProductBuilder
{
public:
    ProductBuilder();
    ~ProductBuilder();

    /// Adds a register, which belongs to the product. Null when the name is empty or the name or
    /// the address is already taken.
    XmlValueRegister *addRegister(const RegisterInfo &info);

    /// Adds a field to a register of this product. Null for a null register, an empty identifier,
    /// or bits that do not lie within the register's 32.
    XmlValueRegisterField *addField(XmlValueRegister *reg, const FieldInfo &info);

    /// Hands the product over; the builder then starts on a new one.
    std::unique_ptr<XmlProductIC> take();

private:
    std::unique_ptr<XmlProductIC> product;
};
