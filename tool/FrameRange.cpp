#include "FrameRange.h"

#include "Failure.h"
#include "marlohost/FrameNumbers.h"

#include <algorithm>

namespace
{

using MarloHost::LayerModel;
using MarloHost::ProjectModel;

/// Host frames.
struct HostRange
{
    qint64 first;
    qint64 last;
};

/// Of interlaced material both fields of the last frame.
HostRange hostRange(ProjectModel const& project, FrameRange const& range)
{
    MarloHost::ClipModel const& clip = project.clips.front();
    MarloHost::FrameNumbers const numbers(clip.frameOffset, clip.interlaced);
    HostRange const host{numbers.host(range.first), numbers.host(range.last) + (clip.interlaced ? 1 : 0)};
    if (host.last < 0 || host.first >= clip.frameCount)
    {
        throw usageError(QStringLiteral("--frames: %1 misses the project, whose frames are %2 to %3")
                             .arg(frameRangeText(range))
                             .arg(numbers.shown(0))
                             .arg(numbers.shown(clip.frameCount - 1)));
    }
    return host;
}

int lastFrameOf(ProjectModel const& project, LayerModel const& layer)
{
    auto const clip = std::find_if(project.clips.begin(), project.clips.end(),
                                   [&](MarloHost::ClipModel const& c) { return c.name == layer.clip; });
    return (clip != project.clips.end() ? clip : project.clips.begin())->frameCount - 1;
}

/// @return whether anything of the layer is left
bool cut(LayerModel& layer, int lastOfClip, HostRange const& range)
{
    int const first = layer.inPoint.value_or(0);
    int const last = layer.outPoint.value_or(lastOfClip);
    layer.inPoint = static_cast<int>(std::max<qint64>(first, range.first));
    layer.outPoint = static_cast<int>(std::min<qint64>(last, range.last));
    return *layer.inPoint <= *layer.outPoint;
}

/// Moves all that is keyed to earlier frames.
class FrameMover
{
public:
    /// @param by host frames
    /// @param count frames that the first clip has afterwards
    FrameMover(int by, int count) : m_by(by), m_count(count)
    {
    }

    void move(ProjectModel& project) const
    {
        for (MarloHost::ClipModel& clip : project.clips)
        {
            move(clip);
        }
        project.clips.front().frameCount = m_count;
        for (MarloHost::GroupModel& group : project.groups)
        {
            move(group.pose.frames);
        }
        for (LayerModel& layer : project.layers)
        {
            move(layer);
        }
        if (project.solve)
        {
            move(*project.solve);
        }
        moveInto(project.currentFrame);
        for (std::optional<int>* frame : {&project.playbackIn, &project.playbackOut, &project.trimIn, &project.trimOut})
        {
            frame->reset();
        }
    }

private:
    void move(std::vector<int>& frames) const
    {
        for (int& frame : frames)
        {
            frame -= m_by;
        }
    }

    /// For frames that must be some of the project.
    void moveInto(int& frame) const
    {
        frame = std::min(std::max(frame - m_by, 0), m_count - 1);
    }

    void moveInto(std::optional<int>& frame) const
    {
        if (frame)
        {
            moveInto(*frame);
        }
    }

    void move(MarloHost::ClipModel& clip) const
    {
        constexpr int PULLDOWN = 5;
        clip.footage.firstIndex += clip.interlaced ? m_by / 2 : m_by;
        clip.frameOffset += m_by;
        clip.frameCount = std::max(1, clip.frameCount - m_by);
        if (clip.pulldown)
        {
            clip.pulldown = (*clip.pulldown + m_by) % PULLDOWN;
        }
        if (clip.lens)
        {
            MarloHost::LensModel& lens = *clip.lens;
            for (MarloHost::KeyedNumber* number :
                 {&lens.focalLength, &lens.centreX, &lens.centreY, &lens.radial[0], &lens.radial[1], &lens.radial[2],
                  &lens.tangential[0], &lens.tangential[1], &lens.squeeze})
            {
                move(number->frames);
            }
        }
    }

    void move(LayerModel& layer) const
    {
        moveInto(layer.inPoint);
        moveInto(layer.outPoint);
        moveInto(layer.referenceFrame);
        moveInto(layer.stabilize.rangeStart);
        moveInto(layer.stabilize.rangeEnd);
        move(layer.stabilize.fixedFrames);
        move(layer.pose.frames);
        for (MarloHost::TrackModel& track : layer.tracks)
        {
            move(track.frames);
        }
        for (MarloHost::AdjustKeyModel& key : layer.adjust)
        {
            key.frame -= m_by;
        }
        for (MarloHost::ContourModel& contour : layer.contours)
        {
            for (MarloHost::ContourKeyModel& key : contour.keys)
            {
                key.frame -= m_by;
            }
        }
        for (std::size_t i = 0; layer.mesh && i < layer.mesh->tracks.size(); ++i)
        {
            move(layer.mesh->tracks[i].frames);
        }
        for (auto* const cloud : {&layer.surfacePoints, &layer.meshPoints})
        {
            if (*cloud)
            {
                move((*cloud)->frames);
            }
        }
    }

    void move(MarloHost::SolveModel& solve) const
    {
        moveInto(solve.referenceFrame);
        move(solve.camera.pose.frames);
        move(solve.camera.focalLength.frames);
        if (solve.stereo)
        {
            for (MarloHost::KeyedNumber* number : {&solve.stereo->separation, &solve.stereo->convergence,
                                                   &solve.stereo->shift[0], &solve.stereo->shift[1]})
            {
                move(number->frames);
            }
        }
        for (MarloHost::FeatureSetModel& features : solve.features)
        {
            move(features.points.frames);
        }
    }

    int m_by;
    int m_count;
};

/// For what hangs on layers that were taken out.
void clearDangling(ProjectModel& project)
{
    auto const clearIfGone = [&](QString& name)
    {
        bool const isThere = std::any_of(project.layers.begin(), project.layers.end(),
                                         [&](LayerModel const& layer) { return layer.name == name; });
        name = isThere ? name : QString();
    };
    clearIfGone(project.currentLayer);
    if (project.solve)
    {
        for (MarloHost::FeatureSetModel& features : project.solve->features)
        {
            clearIfGone(features.layer);
        }
        for (MarloHost::FileAssetModel& asset : project.solve->assets)
        {
            clearIfGone(asset.layer);
        }
    }
}

}

QString frameRangeText(FrameRange const& range)
{
    return QStringLiteral("%1-%2").arg(range.first).arg(range.last);
}

QStringList cutLayers(ProjectModel& project, FrameRange const& range)
{
    HostRange const host = hostRange(project, range);
    QStringList missed;
    std::vector<LayerModel> kept;
    for (LayerModel& layer : project.layers)
    {
        if (cut(layer, lastFrameOf(project, layer), host))
        {
            kept.push_back(std::move(layer));
        }
        else
        {
            missed += layer.name;
        }
    }
    project.layers = std::move(kept);
    clearDangling(project);
    return missed;
}

void cutScene(ProjectModel& project, FrameRange const& range)
{
    HostRange const host = hostRange(project, range);
    int const first = static_cast<int>(std::max<qint64>(0, host.first));
    int const last = static_cast<int>(std::min<qint64>(project.clips.front().frameCount - 1, host.last));
    FrameMover(first, last - first + 1).move(project);
}
