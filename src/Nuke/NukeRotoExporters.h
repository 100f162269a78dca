#pragma once

#include "Nuke/NukeRotoExporterBase.h"

namespace Export
{

/// Nuke Roto.
class MARLO_EXPORT_API NukeRotoExporter : public NukeRotoExporterBase
{
public:
    explicit NukeRotoExporter(bool withMatrix);
    ~NukeRotoExporter() override;

    QString getFormatName() const override;
};

/// Nuke RotoPaint.
class MARLO_EXPORT_API NukeRotoPaintExporter : public NukeRotoExporterBase
{
public:
    explicit NukeRotoPaintExporter(bool withMatrix);
    ~NukeRotoPaintExporter() override;

    QString getFormatName() const override;
};

/// Nuke SplineWarp, always with a matrix.
class MARLO_EXPORT_API NukeSplineWarpExporter : public NukeRotoExporterBase
{
public:
    NukeSplineWarpExporter();
    ~NukeSplineWarpExporter() override;

    QString getFormatName() const override;
};

}
