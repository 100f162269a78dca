#pragma once

#include "Core/ExportApi.h"

#include <QUuid>

namespace Export
{

/// Where exporters that mint identifiers get them. Tests derive from it to have the
/// same ones in every run.
class MARLO_EXPORT_API ExportEnvironment
{
public:
    virtual ~ExportEnvironment();

    /// A new identifier.
    virtual QUuid createUID();
};

}
