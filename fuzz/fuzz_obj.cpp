// Any bytes as a model: meshes whose indices are all there, or one clear refusal.

#include "marlohost/ObjFile.h"

#include "Host/KORV_Exception.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <numeric>

namespace
{

void require(bool holds)
{
    if (!holds)
    {
        std::abort();
    }
}

bool lieBelow(std::vector<int> const& indices, std::size_t count)
{
    return std::all_of(indices.begin(), indices.end(),
                       [count](int index) { return index >= 0 && static_cast<std::size_t>(index) < count; });
}

}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    QByteArray const text(reinterpret_cast<char const*>(data), static_cast<int>(size));
    try
    {
        for (ZN::AssetMesh const& mesh : MarloHost::readObj(text, QStringLiteral("fuzz.obj")))
        {
            int const corners = std::accumulate(mesh.faceCounts.begin(), mesh.faceCounts.end(), 0);
            require(static_cast<std::size_t>(corners) == mesh.faceIndices.size() && corners > 0);
            require(lieBelow(mesh.faceIndices, mesh.positions.size()));
            require(mesh.uvIndices.empty() == mesh.uvs.empty());
            require(mesh.uvIndices.empty() || mesh.uvIndices.size() == mesh.faceIndices.size());
            require(lieBelow(mesh.uvIndices, mesh.uvs.size()));
        }
    }
    catch (KORV_BadFile const& error)
    {
        require(!error.message().contains(QLatin1Char('\n')));
    }
    return 0;
}
