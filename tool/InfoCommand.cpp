// `marlo-export info`

#include "Commands.h"
#include "Console.h"
#include "FormatSheet.h"
#include "Record.h"
#include "Session.h"
#include "marlohost/FrameNumbers.h"

#include <QFileInfo>
#include <QMap>

#include <algorithm>

namespace
{

using Json = nlohmann::ordered_json;
using MarloHost::ClipModel;
using MarloHost::LayerModel;
using MarloHost::ProjectModel;

/// The words for what is set.
QStringList flagsOf(LayerModel const& layer)
{
    QStringList flags;
    for (auto const& [isSet, word] :
         {std::pair(layer.hidden, "hidden"), std::pair(layer.selected, "selected"), std::pair(layer.moving, "moving")})
    {
        if (isSet)
        {
            flags += QLatin1String(word);
        }
    }
    return flags;
}

class ProjectSummary
{
public:
    explicit ProjectSummary(ProjectModel const& model)
        : m_model(model), m_numbers(model.clips.front().frameOffset, model.clips.front().interlaced)
    {
    }

    Json toJson(QString const& path) const
    {
        Json clips = Json::array();
        for (ClipModel const& clip : m_model.clips)
        {
            clips.push_back(clipToJson(clip));
        }
        Json layers = Json::array();
        for (LayerModel const& layer : m_model.layers)
        {
            layers.push_back(layerToJson(layer));
        }
        return {{"file", jsonText(path)},
                {"frameRate", m_model.frameRate},
                {"currentFrame", m_numbers.shown(m_model.currentFrame)},
                {"currentView", jsonText(viewName(m_model.currentView))},
                {"currentLayer", m_model.currentLayer.isEmpty() ? Json() : Json(jsonText(m_model.currentLayer))},
                {"displayedClip", jsonText(clipName(m_model.displayClip))},
                {"views", jsonTexts(m_model.views)},
                {"clips", clips},
                {"layers", layers},
                {"solve", m_model.solve ? solveToJson(*m_model.solve) : Json()}};
    }

    QStringList lines() const
    {
        QStringList lines;
        for (ClipModel const& clip : m_model.clips)
        {
            lines += clipLine(clip);
        }
        lines += QStringLiteral("views  ") + m_model.views.join(QStringLiteral(", ")) + QStringLiteral("; current: ") +
                 viewName(m_model.currentView);
        if (m_model.layers.empty())
        {
            lines += QStringLiteral("no layers");
        }
        for (LayerModel const& layer : m_model.layers)
        {
            lines += layerLine(layer);
        }
        if (m_model.solve)
        {
            lines += solveLine(*m_model.solve);
        }
        return lines;
    }

private:
    QString viewName(QString const& name) const
    {
        return name.isEmpty() ? m_model.views.front() : name;
    }

    QString clipName(QString const& name) const
    {
        return name.isEmpty() ? m_model.clips.front().name : name;
    }

    int clipLength(QString const& name) const
    {
        for (ClipModel const& clip : m_model.clips)
        {
            if (clip.name == name)
            {
                return clip.frameCount;
            }
        }
        return m_model.clips.front().frameCount;
    }

    /// Of several layers of that name the topmost is current.
    bool isCurrent(LayerModel const& layer) const
    {
        if (layer.name != m_model.currentLayer)
        {
            return false;
        }
        for (LayerModel const& candidate : m_model.layers)
        {
            if (candidate.name == m_model.currentLayer)
            {
                return &candidate == &layer;
            }
        }
        return false;
    }

    int firstShown(LayerModel const& layer) const
    {
        return m_numbers.shown(layer.inPoint.value_or(0));
    }

    int lastShown(LayerModel const& layer) const
    {
        return m_numbers.shown(layer.outPoint.value_or(clipLength(layer.clip) - 1));
    }

    QMap<QString, int> trackedFrames(LayerModel const& layer) const
    {
        QMap<QString, int> counts;
        for (MarloHost::TrackModel const& track : layer.tracks)
        {
            counts.insert(viewName(track.view), static_cast<int>(track.frames.size()));
        }
        return counts;
    }

    static int activeContours(LayerModel const& layer)
    {
        return static_cast<int>(std::count_if(layer.contours.begin(), layer.contours.end(),
                                              [](MarloHost::ContourModel const& contour) { return contour.active; }));
    }

    Json clipToJson(ClipModel const& clip) const
    {
        MarloHost::FrameNumbers const numbers(clip.frameOffset, clip.interlaced);
        return {{"name", jsonText(clip.name)},    {"width", clip.width},
                {"height", clip.height},          {"pixelAspect", clip.pixelAspect},
                {"interlaced", clip.interlaced},  {"frameCount", clip.frameCount},
                {"firstFrame", numbers.shown(0)}, {"lastFrame", numbers.shown(clip.frameCount - 1)}};
    }

    Json layerToJson(LayerModel const& layer) const
    {
        Json tracked = Json::object();
        QMap<QString, int> const counts = trackedFrames(layer);
        for (auto count = counts.begin(); count != counts.end(); ++count)
        {
            tracked[jsonText(count.key())] = count.value();
        }
        return {{"name", jsonText(layer.name)},
                {"current", isCurrent(layer)},
                {"group", layer.group.isEmpty() ? Json() : Json(jsonText(layer.group))},
                {"clip", jsonText(clipName(layer.clip))},
                {"firstFrame", firstShown(layer)},
                {"lastFrame", lastShown(layer)},
                {"referenceFrame", m_numbers.shown(layer.referenceFrame)},
                {"trackedFrames", tracked},
                {"contours", activeContours(layer)},
                {"meshVertices", layer.mesh ? layer.mesh->vertexCount : 0},
                {"hidden", layer.hidden},
                {"selected", layer.selected},
                {"moving", layer.moving}};
    }

    QString clipLine(ClipModel const& clip) const
    {
        MarloHost::FrameNumbers const numbers(clip.frameOffset, clip.interlaced);
        QString line = QStringLiteral("clip   %1x%2, pixel aspect %3, %4 fps, %5 %6, shown as %7 to %8: ")
                           .arg(clip.width)
                           .arg(clip.height)
                           .arg(clip.pixelAspect)
                           .arg(m_model.frameRate)
                           .arg(clip.frameCount)
                           .arg(clip.interlaced ? QStringLiteral("fields, interlaced") : QStringLiteral("frames"))
                           .arg(numbers.shown(0))
                           .arg(numbers.shown(clip.frameCount - 1));
        return line + clip.name;
    }

    QString layerLine(LayerModel const& layer) const
    {
        QStringList parts{QStringLiteral("frames %1 to %2").arg(firstShown(layer)).arg(lastShown(layer))};
        QMap<QString, int> const counts = trackedFrames(layer);
        for (auto count = counts.begin(); count != counts.end(); ++count)
        {
            QString const view = m_model.views.size() > 1 ? QStringLiteral(" in ") + count.key() : QString();
            parts += QStringLiteral("%1 tracked").arg(count.value()) + view;
        }
        if (counts.isEmpty())
        {
            parts += QStringLiteral("not tracked");
        }
        if (int const contours = activeContours(layer))
        {
            parts += contours == 1 ? QStringLiteral("1 contour") : QStringLiteral("%1 contours").arg(contours);
        }
        if (layer.mesh)
        {
            parts += QStringLiteral("mesh of %1 vertices").arg(layer.mesh->vertexCount);
        }
        if (!layer.group.isEmpty())
        {
            parts += QStringLiteral("in group ") + layer.group;
        }
        parts += flagsOf(layer);
        return (isCurrent(layer) ? QStringLiteral("layer* ") : QStringLiteral("layer  ")) + layer.name +
               QStringLiteral(": ") + parts.join(QStringLiteral(", "));
    }

    int solvedPoints() const
    {
        int count = 0;
        for (LayerModel const& layer : m_model.layers)
        {
            count += layer.surfacePoints ? layer.surfacePoints->pointCount() : 0;
            count += layer.meshPoints ? layer.meshPoints->pointCount() : 0;
        }
        return count;
    }

    static int featurePoints(MarloHost::SolveModel const& solve)
    {
        int count = 0;
        for (MarloHost::FeatureSetModel const& features : solve.features)
        {
            count += features.points.pointCount();
        }
        return count;
    }

    Json solveToJson(MarloHost::SolveModel const& solve) const
    {
        return {{"camera", solve.stereo ? "stereo" : "mono"},
                {"legacy", solve.legacy},
                {"layerPoints", solvedPoints()},
                {"featureSets", solve.features.size()},
                {"featurePoints", featurePoints(solve)},
                {"assets", solve.assets.size()}};
    }

    QString solveLine(MarloHost::SolveModel const& solve) const
    {
        QString line = solve.stereo ? QStringLiteral("solve  stereo rig") : QStringLiteral("solve  one camera");
        line += QStringLiteral(", points of layers: %1, features: %2 in sets: %3, models: %4")
                    .arg(solvedPoints())
                    .arg(featurePoints(solve))
                    .arg(solve.features.size())
                    .arg(solve.assets.size());
        return solve.legacy ? line + QStringLiteral(", legacy") : line;
    }

    ProjectModel const& m_model;
    MarloHost::FrameNumbers m_numbers;
};

void tellFormat(FormatEntry const& format, bool asJson, Console& console)
{
    if (asJson)
    {
        console.result(jsonBytes(wholeFormat(format)));
        return;
    }
    for (QString const& line : formatLines(format))
    {
        console.result(oneLine(line));
    }
}

}

ExitStatus runInfo(Options const& options, Console& console)
{
    // A folder may well have the name of a format: `all` makes them.
    std::optional<FormatEntry> const format = formatByKey(options.project);
    if (format && !QFileInfo(options.project).isFile())
    {
        tellFormat(*format, options.json, console);
        return Success;
    }
    ProjectModel const model = readModel(options.project);
    ProjectSummary const summary(model);
    if (options.json)
    {
        console.result(jsonBytes(summary.toJson(options.project)));
        return Success;
    }
    for (QString const& line : summary.lines())
    {
        console.result(oneLine(line));
    }
    return Success;
}
