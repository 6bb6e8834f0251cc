#pragma once

namespace workbench {

/// What a request brings back: a value and, from a user function, two bytes.
struct LinkReply
{
    unsigned char a = 0;
    unsigned char b = 0;
    unsigned int value = 0;
};

} // namespace workbench
