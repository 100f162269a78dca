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

namespace
{

namespace Abc = Alembic::AbcGeom;

/// The samples of a mesh behind its first one, whose faces stay. They go to the properties of the
/// schema one by one: its own set() measures each box of a flat mesh anew, whatever it is told.
class LaterSamples
{
public:
    explicit LaterSamples(Abc::OPolyMeshSchema& mesh)
        : m_positions(arrayOf(mesh, "P")),
          m_faceIndices(arrayOf(mesh, ".faceIndices")),
          m_faceCounts(arrayOf(mesh, ".faceCounts")),
          m_box(mesh.getPtr()->getProperty(".selfBnds")->asScalarPtr())
    {
    }

    void add(std::vector<Imath::V3f> const& positions, Imath::Box3d const& box)
    {
        m_positions.set(Abc::P3fArraySample(positions));
        m_faceIndices.setFromPrevious();
        m_faceCounts.setFromPrevious();
        m_box.set(box);
    }

private:
    static Alembic::AbcCoreAbstract::ArrayPropertyWriterPtr arrayOf(Abc::OPolyMeshSchema& mesh, char const* name)
    {
        return mesh.getPtr()->getProperty(name)->asArrayPtr();
    }

    Abc::OP3fArrayProperty m_positions;
    Abc::OInt32ArrayProperty m_faceIndices;
    Abc::OInt32ArrayProperty m_faceCounts;
    Abc::OBox3dProperty m_box;
};

}

AlembicMeshExporter::AlembicMeshExporter() = default;
AlembicMeshExporter::~AlembicMeshExporter() = default;

qint64 AlembicMeshExporter::bytesOfVertex() const
{
    return sizeof(Imath::V3f);
}

int AlembicMeshExporter::exportGeometry(std::string const& name, ZN::MeshTracking::ParameterSet const& mesh,
                                        AlembicContents& contents) const
{
    Abc::OPolyMesh object(contents.top, contents.names.claim(QString::fromStdString(name)), contents.timeSampling);
    std::vector<int> const faceIndices = clockwise(mesh.faceCounts(), mesh.faceIndices());
    MeshPositions positions(helper(), mesh);
    object.getSchema().set(Abc::OPolyMeshSchema::Sample(Abc::P3fArraySample(positions.nextFrame()),
                                                        Abc::Int32ArraySample(faceIndices),
                                                        Abc::Int32ArraySample(mesh.faceCounts())));
    contents.addBounds(positions.bounds());
    LaterSamples later(object.getSchema());
    for (int row = 1; row < helper().numFrames(); ++row)
    {
        std::vector<Imath::V3f> const& seen = positions.nextFrame();
        later.add(seen, positions.bounds());
        contents.addBounds(positions.bounds());
    }
    return positions.failedCount();
}

}
