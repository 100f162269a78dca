// Tracked meshes of layers.

#include "Host/MeshTracking.h"

#include "Host/KORV_Exception.h"
#include "Host/ZN_ClipInfo.h"
#include "plane/SurfaceMotion.h"
#include "Shapes.h"

#include <algorithm>
#include <cmath>

/// Positions of all vertices in every view.
struct ZN::MeshTracking::Vertex::Data
{
    /// What the user's corrections add at each frame of a track; empty for nothing.
    struct Track
    {
        MarloHost::MeshTrackModel const* model = nullptr;
        std::vector<MarloHost::Homography> corrections;
    };

    /// By the id of the view; views without a track have that of the first one that has it.
    std::vector<Track> tracks;
    std::size_t vertexCount = 0;

    /// Of the picture.
    double perWidth = 1;
    double perHeight = 1;

    /// The positions of all vertices in a context, and the correction of that frame or null;
    /// no positions for views without a track.
    struct Row
    {
        double const* xy = nullptr;
        MarloHost::Homography const* correction = nullptr;
    };

    Row rowAt(Anm::Context const& context) const;

    /// @param xy one vertex of a row
    Mtx_Vector2_f normalized(Row const& row, double const* xy) const
    {
        TXI::Pos2 at{xy[0], xy[1]};
        if (row.correction)
        {
            at = row.correction->apply(at);
        }
        return {static_cast<float>(at.x * perWidth), static_cast<float>(at.y * perHeight)};
    }
};

namespace
{

using MarloHost::Homography;
using MarloHost::MeshTrackModel;
using MarloHost::SurfaceMotion;
using MeshData = ZN::MeshTracking::Vertex::Data;

std::size_t indexOfView(Anm::Views const& views, QString const& name)
{
    int const index = views.viewIndex(name.isEmpty() ? Anm::View::defaultView() : views.viewForName(name));
    if (index < 0)
    {
        throw KORV_BadArgument(__FILE__, __LINE__, QStringLiteral("There is no view \"%1\"").arg(name), QString());
    }
    return static_cast<std::size_t>(index);
}

MeshData::Track makeTrack(MeshTrackModel const& model, KORV_Layer::Data const& layer, int view)
{
    MeshData::Track track{&model, {}};
    if (!layer.model->adjust.empty())
    {
        SurfaceMotion const motion(layer, view);
        track.corrections.reserve(model.frames.size());
        for (int const frame : model.frames)
        {
            track.corrections.push_back(motion.correction(frame));
        }
    }
    return track;
}

// Views without a track take the first one that there is.
void fillGaps(std::vector<MeshData::Track>& tracks)
{
    auto const first =
        std::find_if(tracks.begin(), tracks.end(), [](MeshData::Track const& track) { return track.model; });
    for (MeshData::Track& track : tracks)
    {
        if (!track.model && first != tracks.end())
        {
            track = *first;
        }
    }
}

// Most tracks run without a gap, where the place follows from the frame.
std::size_t indexOfFrame(std::vector<int> const& frames, int frame)
{
    auto const offset = static_cast<long long>(frame) - frames.front();
    if (offset >= 0 && offset < static_cast<long long>(frames.size()) &&
        frames[static_cast<std::size_t>(offset)] == frame)
    {
        return static_cast<std::size_t>(offset);
    }
    return MarloHost::nearestFrameIndex(frames, frame);
}

}

namespace ZN
{

NormalizedSpace::NormalizedSpace(QSize const& size)
    : m_width(static_cast<float>(size.width())), m_height(static_cast<float>(size.height()))
{
}

void NormalizedSpace::toImage(Mtx_Vector2_f& point) const
{
    point.x *= m_width;
    point.y *= m_height;
}

void NormalizedSpace::toImage(std::vector<Mtx_Vector2_f>& points) const
{
    for (Mtx_Vector2_f& point : points)
    {
        point.x *= m_width;
        point.y *= m_height;
    }
}

namespace MeshTracking
{

Vertex::Data::Row Vertex::Data::rowAt(Anm::Context const& context) const
{
    auto const view = static_cast<std::size_t>(context.view().id() - Anm::View::defaultViewId());
    Track const& track = tracks[view < tracks.size() ? view : 0];
    if (!track.model || track.model->frames.empty())
    {
        return {};
    }
    std::size_t const index = indexOfFrame(track.model->frames, context.frameValue());
    return {&track.model->positions[index * vertexCount * 2],
            track.corrections.empty() ? nullptr : &track.corrections[index]};
}

Vertex::Vertex(std::shared_ptr<Data const> mesh, std::size_t index) : m_mesh(std::move(mesh)), m_index(index)
{
}

Mtx_Vector2_f Vertex::pos(Anm::Context const& context) const
{
    Data::Row const row = m_mesh->rowAt(context);
    return row.xy ? m_mesh->normalized(row, row.xy + 2 * m_index) : Mtx_Vector2_f{NAN, NAN};
}

ParameterSet::ParameterSet(std::vector<Vertex> vertices, std::vector<int> faceCounts, std::vector<int> faceIndices)
    : m_vertices(std::move(vertices)), m_faceCounts(std::move(faceCounts)), m_faceIndices(std::move(faceIndices))
{
}

ParameterSet::~ParameterSet() = default;

std::vector<Vertex> const& ParameterSet::vertices() const
{
    return m_vertices;
}

void ParameterSet::positions(Anm::Context const& context, std::vector<Mtx_Vector2_f>& positions) const
{
    positions.resize(m_vertices.size());
    Vertex::Data const* const mesh = m_vertices.empty() ? nullptr : m_vertices.front().m_mesh.get();
    Vertex::Data::Row const row = mesh ? mesh->rowAt(context) : Vertex::Data::Row();
    if (!row.xy)
    {
        std::fill(positions.begin(), positions.end(), Mtx_Vector2_f{NAN, NAN});
        return;
    }
    for (std::size_t i = 0; i < m_vertices.size(); ++i)
    {
        positions[i] = mesh->normalized(row, row.xy + 2 * i);
    }
}

std::vector<int> const& ParameterSet::faceCounts() const
{
    return m_faceCounts;
}

std::vector<int> const& ParameterSet::faceIndices() const
{
    return m_faceIndices;
}

}
}

namespace MarloHost
{

std::shared_ptr<ZN::MeshTracking::ParameterSet> makeMesh(KORV_Layer::Data const& data, Anm::Views const& views)
{
    if (!data.model->mesh)
    {
        return nullptr;
    }
    MeshModel const& model = *data.model->mesh;
    auto mesh = std::make_shared<MeshData>();
    mesh->vertexCount = static_cast<std::size_t>(model.vertexCount);
    mesh->perWidth = 1.0 / data.clip->info().width();
    mesh->perHeight = 1.0 / data.clip->info().height();

    mesh->tracks.resize(views.viewCount());
    for (MeshTrackModel const& track : model.tracks)
    {
        std::size_t const view = indexOfView(views, track.view);
        mesh->tracks[view] = makeTrack(track, data, static_cast<int>(view));
    }
    fillGaps(mesh->tracks);

    std::vector<ZN::MeshTracking::Vertex> vertices;
    vertices.reserve(mesh->vertexCount);
    for (std::size_t index = 0; index < mesh->vertexCount; ++index)
    {
        vertices.emplace_back(mesh, index);
    }
    return std::make_shared<ZN::MeshTracking::ParameterSet>(std::move(vertices), model.faceCounts, model.faceIndices);
}

}
