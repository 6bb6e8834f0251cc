#pragma once

/// The low `width` bits, 1 to 32, as a two's-complement number.
inline int signExtended(unsigned int bits, int width)
{
    const unsigned int signBit = 1u << (width - 1);
    const unsigned int mask = signBit | (signBit - 1);
    return static_cast<int>(((bits & mask) ^ signBit) - signBit);
}
