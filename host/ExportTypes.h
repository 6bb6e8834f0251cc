#pragma once

#include <QString>
#include <QVariant>

/// One kind of value that plug-ins pass to each other: what it is called, and what the variant
/// that goes with it holds.
struct export_type_t
{
    QString name;
    QVariant::Type type;
};

/// The kinds of values that all plug-ins of the host know.
struct ExportTypes
{
    /// Register addresses as `unsigned int` variants, ascending. The name is "RergisterList", the
    /// extra r included: every plug-in compares these same characters.
    static const export_type_t RegisterList;
};
