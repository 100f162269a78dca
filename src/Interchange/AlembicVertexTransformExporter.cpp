// Alembic 2D vertex transforms: beside the camera (AlembicExporterBase.cpp shows the archive)
//
//   /Poster_0001_transform                        a translation for each frame
//   /Poster_0001_transform/Poster_0001_vertex     a point in its origin
//   /Poster_0002_transform
//   ...
//
// The numbers count the vertices in the mesh's order, from 1.

#include "Interchange/AlembicVertexTransformExporter.h"

#include "Host/MeshTracking.h"
#include "Interchange/parts/AlembicArchive.h"
#include "Interchange/parts/MeshPositions.h"

namespace Export
{

namespace
{

namespace Abc = Alembic::AbcGeom;

void writeVertex(AlembicContents& contents, QString const& prefix, std::size_t vertex,
                 std::vector<Imath::V3f> const& positions)
{
    Abc::OXform transform(contents.top, contents.names.claim(prefix + QStringLiteral("transform")),
                          contents.timeSampling);
    Abc::OPoints point(transform, contents.names.claim(prefix + QStringLiteral("vertex")), contents.timeSampling);
    Abc::V3f const origin(0);
    Abc::uint64_t const id = vertex;
    for (std::size_t row = 0; row < positions.size(); ++row)
    {
        Abc::XformSample translation;
        translation.setTranslation(Abc::V3d(positions[row]));
        transform.getSchema().set(translation);
        if (row == 0)
        {
            point.getSchema().set({Abc::P3fArraySample(&origin, 1), Abc::UInt64ArraySample(&id, 1)});
        }
        else
        {
            point.getSchema().setFromPrevious();
        }
    }
}

}

AlembicVertexTransformExporter::AlembicVertexTransformExporter() = default;
AlembicVertexTransformExporter::~AlembicVertexTransformExporter() = default;

qint64 AlembicVertexTransformExporter::bytesOfVertex() const
{
    return sizeof(Imath::V3d);
}

int AlembicVertexTransformExporter::exportGeometry(std::string const& name, ZN::MeshTracking::ParameterSet const& mesh,
                                                   AlembicContents& contents) const
{
    std::size_t const vertices = mesh.vertices().size();
    int const frames = helper().numFrames();
    MeshPositions const positions(helper(), mesh);
    std::vector<Imath::Box3d> bounds(static_cast<std::size_t>(frames));
    int failed = 0;
    for (std::size_t vertex = 0; vertex < vertices; ++vertex)
    {
        QString const number = QString::number(vertex + 1).rightJustified(4, QLatin1Char('0'));
        QString const prefix = QString::fromStdString(name) + QLatin1Char('_') + number + QLatin1Char('_');
        std::vector<Imath::V3f> const path = positions.ofVertex(vertex, failed);
        writeVertex(contents, prefix, vertex, path);
        for (std::size_t row = 0; row < path.size(); ++row)
        {
            bounds[row].extendBy(Imath::V3d(path[row]));
        }
    }
    for (Imath::Box3d const& box : bounds)
    {
        contents.addBounds(box);
    }
    return failed;
}

}
