#include "kestrelia/KstText.h"

#include <algorithm>

namespace KestreliaLib
{
namespace Kst
{

namespace
{

bool isFrame(int frame)
{
    return frame >= -LARGEST_FRAME && frame <= LARGEST_FRAME;
}

bool isSide(int pixels)
{
    return pixels >= 1 && pixels <= LARGEST_SIDE;
}

// Indices that are all there are of.
bool lieBelow(std::vector<int> const& indices, std::size_t count)
{
    return std::all_of(indices.begin(), indices.end(),
                       [count](int index) { return index >= 0 && static_cast<std::size_t>(index) < count; });
}

}

char const* faultOf(Shot const& shot)
{
    if (!isSide(shot.width) || !isSide(shot.height))
    {
        return "the size of a picture is 1 to 1000000 pixels";
    }
    if (!isFrame(shot.firstFrame) || !isFrame(shot.lastFrame) || shot.lastFrame < shot.firstFrame)
    {
        return "the last frame of a shot isn't before its first";
    }
    bool const isPositive = shot.pixelAspect > 0 && shot.frameRate > 0 && shot.screenDistance > 0;
    return isPositive ? nullptr : "pixel aspect, frame rate and screen distance are above 0";
}

char const* faultOf(Camera const& camera)
{
    return camera.filmBack.x > 0 && camera.filmBack.y > 0 ? nullptr : "the sides of a film back are above 0";
}

char const* faultOf(Mesh const& mesh)
{
    std::size_t const points = mesh.vertices.isEmpty() ? 0 : mesh.vertices.values.front().size();
    std::size_t corners = 0;
    for (int const count : mesh.faceCounts)
    {
        if (count < FEWEST_CORNERS)
        {
            return "a face has three vertices or more";
        }
        corners += static_cast<std::size_t>(count);
    }
    for (std::vector<Vector3> const& row : mesh.vertices.values)
    {
        if (row.size() != points)
        {
            return "all rows of a mesh have as many vertices";
        }
    }
    if (corners != mesh.faceIndices.size() || !lieBelow(mesh.faceIndices, points))
    {
        return "a face names a vertex that isn't there";
    }
    if (mesh.uvIndices.empty())
    {
        bool const fit = mesh.uvs.empty() || mesh.uvs.size() == points;
        return fit ? nullptr : "a mesh without \"face_uv\" has no \"uv\", or one for each vertex";
    }
    bool const fit = mesh.uvIndices.size() == corners && lieBelow(mesh.uvIndices, mesh.uvs.size());
    return fit ? nullptr : "a face names a \"uv\" that isn't there";
}

}
}
