#pragma once
// The identity of the host product and the format categories that it offers.

#include "Host/HostApi.h"

#include <QSet>
#include <QString>

namespace Product
{

MARLO_HOST_API QString name();
MARLO_HOST_API QString longVersion();
MARLO_HOST_API QString displayName();

/// Whether the process runs as a plug-in inside another program.
MARLO_HOST_API bool isPlugin();

// Format categories. The `Extra` sets are added only where a plug-in host grants
// extra export categories.
MARLO_HOST_API QSet<QString> trackExportOptions();
MARLO_HOST_API QSet<QString> trackExportOptionsExtra();
MARLO_HOST_API QSet<QString> shapeExportOptions();
MARLO_HOST_API QSet<QString> shapeExportOptionsExtra();
MARLO_HOST_API QSet<QString> cameraSolveExportOptions();

}
