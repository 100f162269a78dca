// Alembic 2D mesh data: beside the camera (AlembicExporterBase.cpp shows the archive)
//
//   /Poster               a polygon mesh: faces once, points for each frame
//
// Faces run clockwise as seen on screen: importers turn them round, as they do those of the
// library's own exporters, so that their front is where the viewer is.

#include "Interchange/AlembicMeshExporter.h"

#include "Host/MeshTracking.h"
#include "Interchange/parts/AlembicArchive.h"
#include "Interchange/parts/MeshPositions.h"

namespace Export
{

AlembicMeshExporter::AlembicMeshExporter() = default;
AlembicMeshExporter::~AlembicMeshExporter() = default;

qint64 AlembicMeshExporter::bytesOfVertex() const
{
    return sizeof(Imath::V3f);
}

int AlembicMeshExporter::exportGeometry(std::string const& name, ZN::MeshTracking::ParameterSet const& mesh,
                                        AlembicContents& contents) const
{
    namespace Abc = Alembic::AbcGeom;
    Abc::OPolyMesh object(contents.top, contents.names.claim(QString::fromStdString(name)), contents.timeSampling);
    std::vector<int> const faceIndices = clockwise(mesh.faceCounts(), mesh.faceIndices());
    MeshPositions positions(helper(), mesh);
    for (int row = 0; row < helper().numFrames(); ++row)
    {
        Abc::OPolyMeshSchema::Sample sample{Abc::P3fArraySample(positions.nextFrame())};
        if (row == 0)
        {
            sample.setFaceIndices(Abc::Int32ArraySample(faceIndices));
            sample.setFaceCounts(Abc::Int32ArraySample(mesh.faceCounts()));
        }
        object.getSchema().set(sample);
        contents.addBounds(positions.bounds());
    }
    return positions.failedCount();
}

}
