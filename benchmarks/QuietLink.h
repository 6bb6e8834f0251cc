#pragma once

#include "ModuleLink.h"
#include "PositionPacking.h"

#include <QPoint>

/// A link that answers at once and keeps nothing: every register reads the same, every write is
/// taken without effect, and both positions are the ones set here.
struct QuietLink : ModuleLink
{
    QPoint position;
    /// Not 0, so velocities say that a move goes on.
    int registerValue = 1000;

    bool readRegister(unsigned int, unsigned char, int *value) override
    {
        *value = registerValue;
        return true;
    }

    bool writeRegister(unsigned int, unsigned char, int) override { return true; }

    bool userFunction(unsigned char *a, unsigned char *b, unsigned char, unsigned char,
                      unsigned char, unsigned int *reply) override
    {
        const workbench::LinkReply packed = workbench::packPositions(position.x(), position.y());
        *a = packed.a;
        *b = packed.b;
        *reply = packed.value;
        return true;
    }
};
