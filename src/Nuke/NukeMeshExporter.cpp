// Nuke WarpLattice to Tracker: the user pastes the text into the node graph. The tracks
// "1", "2", ... of the Tracker4 node (NukeTrackerNode.cpp shows it) are the vertices of
// the mesh, in the mesh's order.

#include "Nuke/NukeMeshExporter.h"

#include "Host/KORV_Layer.h"
#include "Host/KORV_ProjectManager.h"
#include "Host/MeshTracking.h"
#include "Host/ZN_ClipInfo.h"
#include "Nuke/parts/NukeTrackerNode.h"
#include "Writing/Frames.h"

namespace Export
{

namespace
{

std::shared_ptr<ZN::MeshTracking::ParameterSet> meshOf(KORV_ProjectManager const& project, unsigned int layerId)
{
    boost::shared_ptr<KORV_Layer> const layer = project.sm()->findLayer(layerId, false);
    return layer ? layer->trackMesh() : nullptr;
}

}

NukeMeshExporter::NukeMeshExporter() = default;
NukeMeshExporter::~NukeMeshExporter() = default;

QString NukeMeshExporter::exportSingleView(QString const& name, QVector<NukePointCurve> const& curves) const
{
    TextBuffer out;
    writeSingleView(out, name, curves);
    return out.toString();
}

void NukeMeshExporter::writeSingleView(TextBuffer& out, QString const& name,
                                       QVector<NukePointCurve> const& curves) const
{
    appendTrackerNode(out, name, curves, "");
}

QVector<NukePointCurve> NukeMeshExporter::createCurves() const
{
    auto const mesh = meshOf(*helper().projectManager(), helper().layerId());
    if (!mesh)
    {
        return {};
    }
    std::vector<ZN::MeshTracking::Vertex> const& vertices = mesh->vertices();
    int const frames = helper().numFrames();
    refuseMoreThanFits(static_cast<qint64>(vertices.size()), frames);

    QVector<NukePointCurve> curves(static_cast<int>(vertices.size()));
    for (NukePointCurve& curve : curves)
    {
        curve.first.reserve(frames);
        curve.second.reserve(frames);
    }
    ZN_BaseClipInfo const& clip = *helper().baseClipInfo();
    ZN::NormalizedSpace const picture(QSize(static_cast<int>(clip.width()), static_cast<int>(clip.height())));
    double const step = static_cast<double>(helper().frameStep());
    auto const addFrame = [&](int, int frame)
    {
        double const time = frame * step;
        Anm::Context const context(Anm::Time::fromDouble(time), helper().view(), Anm::ProxyScale::Full);
        float const key = static_cast<float>(helper().baseClipOffset() + time);
        NukePointCurve* curve = curves.data();
        for (ZN::MeshTracking::Vertex const& vertex : vertices)
        {
            Mtx_Vector2_f point = vertex.pos(context);
            picture.toImage(point);
            curve->first.addKeyframe(key, point.x);
            curve->second.addKeyframe(key, point.y);
            ++curve;
        }
    };
    forEachFrame(helper(), addFrame);
    return curves;
}

}
