#pragma once

#include "Interchange/AlembicExporterBase.h"

namespace Export
{

/// The layer's mesh as one polygon mesh whose points move.
class MARLO_EXPORT_API AlembicMeshExporter : public AlembicExporterBase
{
public:
    AlembicMeshExporter();
    ~AlembicMeshExporter() override;

private:
    qint64 bytesOfVertex() const override;
    int exportGeometry(std::string const& name, ZN::MeshTracking::ParameterSet const& mesh,
                       AlembicContents& contents) const override;
};

}
