// A mesh of 10,000 vertices over 500 frames as an Alembic archive: the whole export of a
// project, against the bare library that writes the same objects of positions made beforehand
// into the same kind of buffer, a QByteArray with room made ahead.

#include "ProjectBuilder.h"
#include "Ratios.h"

#include "Host/KORV_ProjectManager.h"
#include "Interchange/AlembicMeshExporter.h"

#include <Alembic/AbcCoreOgawa/All.h>
#include <Alembic/AbcGeom/All.h>
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstring>
#include <streambuf>

namespace
{

namespace Abc = Alembic::AbcGeom;

constexpr int frameCount = 500;
constexpr int firstFrame = 1001;
constexpr int columns = 100;
constexpr int vertexCount = columns * columns;
constexpr float pixelsPerUnit = 100.0F;

// What the export makes room for ahead, so that both have fresh memory of the system each time.
constexpr int roomBytes = vertexCount * frameCount * 12 / 64 * 65 + 65536;

double x(int vertex, int frame)
{
    return 10 * (vertex % columns) + 30 * std::sin(frame * 0.011 + vertex * 0.003);
}

double y(int vertex, int frame)
{
    return 10 * (vertex / columns) + 20 * std::cos(frame * 0.013 + vertex * 0.005);
}

struct Faces
{
    std::vector<int> counts;
    std::vector<int> indices;
};

Faces makeFaces()
{
    Faces faces;
    for (int row = 0; row + 1 < columns; ++row)
    {
        for (int column = 0; column + 1 < columns; ++column)
        {
            int const corner = row * columns + column;
            faces.counts.push_back(4);
            faces.indices.insert(faces.indices.end(), {corner, corner + 1, corner + columns + 1, corner + columns});
        }
    }
    return faces;
}

boost::shared_ptr<KORV_ProjectManager> makeShot()
{
    ProjectBuilder builder(frameCount);
    builder.clip().frameOffset = firstFrame;
    builder.addLayer(QStringLiteral("cloth"));
    MarloHost::MeshModel mesh;
    mesh.vertexCount = vertexCount;
    MarloHost::MeshTrackModel track;
    for (int frame = 0; frame < frameCount; ++frame)
    {
        track.frames.push_back(frame);
        for (int vertex = 0; vertex < vertexCount; ++vertex)
        {
            track.positions.push_back(x(vertex, frame));
            track.positions.push_back(y(vertex, frame));
        }
    }
    mesh.tracks.push_back(track);
    Faces const faces = makeFaces();
    mesh.faceCounts = faces.counts;
    mesh.faceIndices = faces.indices;
    builder.layer().mesh = mesh;
    return builder.make();
}

/// A row of positions for each frame.
std::vector<std::vector<Imath::V3f>> makePositions()
{
    std::vector<std::vector<Imath::V3f>> rows(frameCount);
    for (int frame = 0; frame < frameCount; ++frame)
    {
        for (int vertex = 0; vertex < vertexCount; ++vertex)
        {
            rows[static_cast<std::size_t>(frame)].emplace_back(static_cast<float>(x(vertex, frame)) / pixelsPerUnit,
                                                               static_cast<float>(y(vertex, frame)) / pixelsPerUnit,
                                                               0.0F);
        }
    }
    return rows;
}

/// Appends to a QByteArray whose capacity doubles, and comes back to fill in the head.
class Buffer : public std::streambuf
{
public:
    QByteArray bytes;

protected:
    std::streamsize xsputn(char const* data, std::streamsize count) override
    {
        int const end = m_at + static_cast<int>(count);
        if (end > bytes.capacity())
        {
            bytes.reserve(std::max(end, 2 * bytes.capacity()));
        }
        if (end > bytes.size())
        {
            bytes.resize(end);
        }
        std::memcpy(bytes.data() + m_at, data, static_cast<std::size_t>(count));
        m_at = end;
        return count;
    }

    int_type overflow(int_type byte) override
    {
        char const character = traits_type::to_char_type(byte);
        xsputn(&character, 1);
        return byte;
    }

    pos_type seekoff(off_type offset, std::ios_base::seekdir from, std::ios_base::openmode mode) override
    {
        int const base = from == std::ios_base::beg ? 0 : from == std::ios_base::cur ? m_at : bytes.size();
        return seekpos(base + offset, mode);
    }

    pos_type seekpos(pos_type position, std::ios_base::openmode) override
    {
        m_at = static_cast<int>(position);
        return position;
    }

private:
    int m_at = 0;
};

void bareLibrary(benchmark::State& state)
{
    std::vector<std::vector<Imath::V3f>> const rows = makePositions();
    Faces const faces = makeFaces();
    for (auto _ : state)
    {
        Buffer buffer;
        buffer.bytes.reserve(roomBytes);
        std::ostream stream(&buffer);
        {
            Abc::OArchive archive(Alembic::AbcCoreOgawa::WriteArchive()(&stream, Alembic::AbcCoreAbstract::MetaData()));
            std::uint32_t const sampling = archive.addTimeSampling(Abc::TimeSampling(1.0 / 24, firstFrame / 24.0));
            Abc::OBox3dProperty bounds = Abc::CreateOArchiveBounds(archive, sampling);
            Abc::OCamera(archive.getTop(), "camera", sampling).getSchema().set(Abc::CameraSample());
            Abc::OPolyMesh mesh(archive.getTop(), "cloth", sampling);
            for (std::vector<Imath::V3f> const& row : rows)
            {
                Abc::OPolyMeshSchema::Sample sample{Abc::P3fArraySample(row)};
                if (&row == &rows.front())
                {
                    sample.setFaceIndices(Abc::Int32ArraySample(faces.indices));
                    sample.setFaceCounts(Abc::Int32ArraySample(faces.counts));
                }
                mesh.getSchema().set(sample);
                bounds.set(Imath::Box3d(Imath::V3d(0.0), Imath::V3d(10.0)));
            }
        }
        benchmark::DoNotOptimize(buffer.bytes.data());
        state.counters["bytes"] = buffer.bytes.size();
    }
}
BENCHMARK(bareLibrary)->Unit(benchmark::kMillisecond);

void meshExport(benchmark::State& state)
{
    auto const project = makeShot();
    Export::AlembicMeshExporter const exporter;
    Anm::Context const reference(Anm::Time::fromInt(0), Anm::View::defaultView());
    for (auto _ : state)
    {
        Korvane::ExportedFiles const result = exporter.exportTracking(
            *project, QStringLiteral("out.abc"), project->currentLayer()->numericID(), reference, {});
        benchmark::DoNotOptimize(result.files.first().constData());
        state.counters["bytes"] = result.files.first().size();
    }
}
BENCHMARK(meshExport)->Unit(benchmark::kMillisecond);

}

int main(int argc, char** argv)
{
    return Bench::runBenchmarks(argc, argv, {{"meshExport", "bareLibrary", "the bare library"}});
}
