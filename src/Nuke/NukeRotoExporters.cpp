#include "Nuke/NukeRotoExporters.h"

namespace Export
{

NukeRotoExporter::NukeRotoExporter(bool withMatrix) : NukeRotoExporterBase(withMatrix)
{
}

NukeRotoExporter::~NukeRotoExporter() = default;

QString NukeRotoExporter::getFormatName() const
{
    return QStringLiteral("Roto");
}

NukeRotoPaintExporter::NukeRotoPaintExporter(bool withMatrix) : NukeRotoExporterBase(withMatrix)
{
}

NukeRotoPaintExporter::~NukeRotoPaintExporter() = default;

QString NukeRotoPaintExporter::getFormatName() const
{
    return QStringLiteral("RotoPaint");
}

NukeSplineWarpExporter::NukeSplineWarpExporter() : NukeRotoExporterBase(true)
{
}

NukeSplineWarpExporter::~NukeSplineWarpExporter() = default;

QString NukeSplineWarpExporter::getFormatName() const
{
    return QStringLiteral("SplineWarp3");
}

}
