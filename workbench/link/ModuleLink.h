#pragma once

/// How a module of the stand-in host reaches its device. All requests block until they are answered
/// or given up; a failed request returns false and leaves its results alone. LinkChain.h shows
/// which links stand behind one another. GUI thread.
class ModuleLink
{
public:
    virtual ~ModuleLink() = default;

    virtual bool readRegister(unsigned int address, unsigned char motor, int *value) = 0;
    virtual bool writeRegister(unsigned int address, unsigned char motor, int value) = 0;

    /// `a` and `b` go out with the request and are overwritten with bytes of the reply.
    virtual bool userFunction(unsigned char *a, unsigned char *b, unsigned char function,
                              unsigned char arg, unsigned char motor, unsigned int *reply) = 0;
};
