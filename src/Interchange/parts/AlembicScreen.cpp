#include "Interchange/parts/AlembicScreen.h"

#include "Interchange/parts/AlembicArchive.h"

namespace Export
{

namespace
{

constexpr int COLUMNS = 16;
constexpr int ROWS = 9;

}

void writeScreenShape(Alembic::AbcGeom::OXform const& parent, std::string const& name, std::uint32_t timeSampling)
{
    namespace Abc = Alembic::AbcGeom;
    std::vector<Imath::V3f> points;
    std::vector<Imath::V2f> uvs;
    std::vector<int> faces;
    for (int row = 0; row <= ROWS; ++row)
    {
        for (int column = 0; column <= COLUMNS; ++column)
        {
            Imath::V2f const uv(static_cast<float>(column) / COLUMNS, static_cast<float>(row) / ROWS);
            uvs.push_back(uv);
            points.emplace_back(2.0F * uv.x - 1.0F, 2.0F * uv.y - 1.0F, 0.0F);
            if (row < ROWS && column < COLUMNS)
            {
                int const corner = row * (COLUMNS + 1) + column;
                int const above = corner + COLUMNS + 1;
                faces.insert(faces.end(), {corner, corner + 1, above + 1, above});
            }
        }
    }
    std::vector<int> const counts(static_cast<std::size_t>(ROWS * COLUMNS), 4);
    faces = clockwise(counts, std::move(faces));
    std::vector<std::uint32_t> const uvIndices(faces.begin(), faces.end());
    Abc::OV2fGeomParam::Sample const uvSample{Abc::V2fArraySample(uvs), Abc::UInt32ArraySample(uvIndices),
                                              Abc::kFacevaryingScope};
    Abc::OPolyMesh(parent, name, timeSampling)
        .getSchema()
        .set({Abc::P3fArraySample(points), Abc::Int32ArraySample(faces), Abc::Int32ArraySample(counts), uvSample});
}

}
