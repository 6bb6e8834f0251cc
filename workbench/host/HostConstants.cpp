#include "DynamicProperty.h"
#include "ExportTypes.h"
#include "HostLocale.h"

const char *const DynamicProperty::WindowFlags = "dpWindowFlags";
const char *const DynamicProperty::DoNotAnimate = "dpNoAnimate";

const export_type_t ExportTypes::RegisterList = {QStringLiteral("RergisterList"), QVariant::List};

const QLocale curLocale(QStringLiteral("fr_Fr"));
