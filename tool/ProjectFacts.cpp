#include "ProjectFacts.h"

#include <QFileInfo>

#include <algorithm>

namespace
{

using namespace MarloHost;

ClipModel const& clipOf(ProjectModel const& project, LayerModel const& layer)
{
    auto const clip = std::find_if(project.clips.begin(), project.clips.end(),
                                   [&](ClipModel const& c) { return c.name == layer.clip; });
    return clip != project.clips.end() ? *clip : project.clips.front();
}

bool isZero(KeyedNumber const& number)
{
    return number.value == 0 &&
           std::all_of(number.values.begin(), number.values.end(), [](double value) { return value == 0; });
}

bool distorts(LensModel const& lens)
{
    return !std::all_of(lens.radial.begin(), lens.radial.end(), isZero) ||
           !std::all_of(lens.tangential.begin(), lens.tangential.end(), isZero);
}

bool areAlike(ClipModel const& a, ClipModel const& b)
{
    return a.width == b.width && a.height == b.height && a.pixelAspect == b.pixelAspect &&
           a.frameOffset == b.frameOffset && a.interlaced == b.interlaced;
}

/// The ids of the views that have frames; views are numbered in their order.
template <typename Tracks>
QSet<int> viewsOf(ProjectModel const& project, Tracks const& tracks)
{
    QSet<int> ids;
    for (auto const& track : tracks)
    {
        if (!track.frames.empty())
        {
            ids.insert(track.view.isEmpty() ? 0 : project.views.indexOf(track.view));
        }
    }
    return ids;
}

LayerFacts factsOf(ProjectModel const& project, LayerModel const& layer)
{
    ClipModel const& clip = clipOf(project, layer);
    LayerFacts facts;
    facts.isInverted = layer.invert;
    facts.subtracts = layer.subtract;
    facts.isInGroup = !layer.group.isEmpty();
    facts.clip = clip.name;
    facts.hasLens = clip.lens && distorts(*clip.lens);
    facts.isOnOtherClip = !areAlike(clip, project.clips.front());
    facts.hasFieldLifetime = clip.interlaced && (layer.inPoint.value_or(0) > 0 ||
                                                 layer.outPoint.value_or(clip.frameCount - 1) < clip.frameCount - 1);
    facts.trackedViews = viewsOf(project, layer.tracks);
    facts.meshViews = layer.mesh ? viewsOf(project, layer.mesh->tracks) : QSet<int>();
    for (ContourModel const& contour : layer.contours)
    {
        if (contour.active)
        {
            facts.contourNames += contour.name;
            facts.hasOpenContour = facts.hasOpenContour || !contour.closed;
            facts.hasFeather =
                facts.hasFeather || std::any_of(contour.keys.begin(), contour.keys.end(),
                                                [](ContourKeyModel const& key) { return !key.feather.empty(); });
        }
    }
    return facts;
}

QStringList sceneNamesOf(ProjectModel const& project)
{
    if (!project.solve)
    {
        return {};
    }
    QStringList names{project.solve->featureRootName};
    for (GroupModel const& group : project.groups)
    {
        names += group.name;
    }
    for (LayerModel const& layer : project.layers)
    {
        names += layer.name;
        names += layer.surfacePoints ? layer.surfacePoints->names : QStringList();
        names += layer.meshPoints ? layer.meshPoints->names : QStringList();
    }
    for (FeatureSetModel const& features : project.solve->features)
    {
        names += features.name;
        names += features.points.names;
    }
    for (FileAssetModel const& asset : project.solve->assets)
    {
        names += QFileInfo(asset.path).baseName();
    }
    return names;
}

}

ProjectFacts factsOf(MarloHost::ProjectModel const& project)
{
    ProjectFacts facts;
    for (ClipModel const& clip : project.clips)
    {
        facts.clipNames += clip.name;
    }
    facts.frameCount = project.clips.front().frameCount;
    for (LayerModel const& layer : project.layers)
    {
        facts.layers.push_back(factsOf(project, layer));
    }
    facts.sceneNames = sceneNamesOf(project);
    return facts;
}
