// What an import did or would do, in lines for a clerk.
#pragma once

#include <QStringList>

#include "exchange/import_csv.h"

namespace velanor::app {

enum class ImportVerb { kWould, kDid };

// The first line counts faults, or else records; behind it come the faults or remarks, each after
// "NAME:LINE".
QStringList import_lines(const QString& table, const exchange::ImportReport& report, ImportVerb verb);
// What becomes of each record; of some of them where there are many.
QStringList record_lines(const exchange::ImportReport& report);

}  // namespace velanor::app
