#pragma once

#include <QString>
#include <QVariant>

struct export_type_t
{
    QString name;
    QVariant::Type type;
};

struct ExportTypes
{
    static const export_type_t RegisterList;
};
