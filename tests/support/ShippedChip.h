#pragma once

#include "ChipDescriptionReader.h"

#include <QCoreApplication>
#include <QFile>

#include <optional>

/// The chip description that comes with the workbench, found in the build tree relative to the test
/// program; nothing when it is missing or faulty.
inline std::optional<workbench::ChipDescription>
readShippedChip(workbench::ChipDescriptionError *error = nullptr)
{
    QFile file(QCoreApplication::applicationDirPath() +
               QStringLiteral("/../share/workbench/chips/dual-axis.xml"));
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return workbench::readChipDescription(&file, error);
}
