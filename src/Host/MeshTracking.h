#pragma once
// Tracked meshes of layers.

#include "Host/Anm.h"
#include "Host/HostApi.h"
#include "mtx/Vectors.h"

#include <QSize>

#include <memory>
#include <vector>

namespace ZN
{

/// Coordinates 0 to 1 over a picture, y up.
class MARLO_HOST_API NormalizedSpace
{
public:
    explicit NormalizedSpace(QSize const& size);

    /// From this space to pixels, in place.
    void toImage(Mtx_Vector2_f& point) const;

    /// The same for many points.
    void toImage(std::vector<Mtx_Vector2_f>& points) const;

private:
    float m_width;
    float m_height;
};

namespace MeshTracking
{

class MARLO_HOST_API Vertex
{
public:
    struct Data;

    explicit Vertex(std::shared_ptr<Data const> mesh, std::size_t index);

    /// Where the vertex is seen, 0 to 1 over the picture. Frames without data take those
    /// of the nearest frame that has them.
    Mtx_Vector2_f pos(Anm::Context const& context) const;

private:
    friend class ParameterSet;

    std::shared_ptr<Data const> m_mesh;
    std::size_t m_index;
};

/// The mesh of a layer. Vertices and faces are the same in all frames.
class MARLO_HOST_API ParameterSet
{
public:
    ParameterSet(std::vector<Vertex> vertices, std::vector<int> faceCounts, std::vector<int> faceIndices);
    ~ParameterSet();
    ParameterSet(ParameterSet const&) = delete;
    ParameterSet& operator=(ParameterSet const&) = delete;

    std::vector<Vertex> const& vertices() const;

    /// pos() of every vertex at once, for exports of large meshes.
    /// @param positions gets as many as there are vertices
    void positions(Anm::Context const& context, std::vector<Mtx_Vector2_f>& positions) const;

    /// Vertices per face, and the vertices of all faces one after another, counter-clockwise
    /// as seen on screen.
    std::vector<int> const& faceCounts() const;
    std::vector<int> const& faceIndices() const;

private:
    std::vector<Vertex> m_vertices;
    std::vector<int> m_faceCounts;
    std::vector<int> m_faceIndices;
};

}
}
