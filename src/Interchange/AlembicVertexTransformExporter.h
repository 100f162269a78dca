#pragma once

#include "Interchange/AlembicExporterBase.h"

namespace Export
{

/// A moving transform for each vertex of the layer's mesh, with a point in it.
class MARLO_EXPORT_API AlembicVertexTransformExporter : public AlembicExporterBase
{
public:
    AlembicVertexTransformExporter();
    ~AlembicVertexTransformExporter() override;

private:
    qint64 bytesOfVertex() const override;
    int exportGeometry(std::string const& name, ZN::MeshTracking::ParameterSet const& mesh,
                       AlembicContents& contents) const override;
};

}
