#pragma once

#include "ChipInfo.h"

/// How a field's value sits in its register's 32 bits. Pure functions; `info` must describe bits
/// within the register.
namespace FieldCoding {

struct Range
{
    int min = 0;
    int max = 0;
};

/// The values that the field can hold, cut to those of an `int`.
Range range(const FieldInfo &info);

/// The field's value in a register value, sign-extended for a signed field. An unsigned 32-bit
/// value above the largest `int` gives the largest `int`.
int extract(const FieldInfo &info, int registerValue);

/// `registerValue` with the field's bits replaced by the low bits of `fieldValue`.
int insert(const FieldInfo &info, int registerValue, int fieldValue);

} // namespace FieldCoding
