#pragma once
// Projects for tests: a whole one in a line, an odd one in three.

#include "QtPrinting.h"
#include "marlohost/ProjectFile.h"
#include "marlohost/ProjectModel.h"

#include "Host/KORV_Layer.h"
#include "Host/KORV_ProjectManager.h"

#include <cmath>

/// A clip of 1920 x 1080 at 24 frames per second and no layer, to begin with.
/// `model` is open: what the calls don't offer is set there.
class ProjectBuilder
{
public:
    using Matrix = std::array<double, 9>;

    explicit ProjectBuilder(int frameCount = 2, int width = 1920, int height = 1080)
    {
        MarloHost::ClipModel clip;
        clip.name = QStringLiteral("clip");
        clip.width = width;
        clip.height = height;
        clip.frameCount = frameCount;
        model.clips.push_back(clip);
    }

    MarloHost::ClipModel& clip()
    {
        return model.clips.front();
    }

    MarloHost::LayerModel& layer()
    {
        return model.layers.back();
    }

    /// A layer with a still surface over the whole of its range, which becomes the
    /// current one. Corners: lower left, lower right, upper left, upper right, y up.
    ProjectBuilder& addLayer(QString const& name,
                             std::array<double, 8> const& corners = {860, 490, 1060, 490, 860, 590, 1060, 590})
    {
        MarloHost::LayerModel layer;
        layer.name = name;
        layer.corners = corners;
        model.layers.push_back(layer);
        model.currentLayer = name;
        track([](int) { return identity(); });
        return *this;
    }

    /// Tracks the last layer over its range.
    template <typename HomographyOfFrame>
    ProjectBuilder& track(HomographyOfFrame const& homographyOf, QString const& view = QString())
    {
        MarloHost::TrackModel track;
        track.view = view;
        int const last = layer().outPoint.value_or(clip().frameCount - 1);
        for (int frame = layer().inPoint.value_or(0); frame <= last; ++frame)
        {
            Matrix const h = homographyOf(frame);
            track.frames.push_back(frame);
            track.homographies.insert(track.homographies.end(), h.begin(), h.end());
        }
        auto& tracks = layer().tracks;
        tracks.erase(std::remove_if(tracks.begin(), tracks.end(), [&](auto const& old) { return old.view == view; }),
                     tracks.end());
        tracks.push_back(track);
        return *this;
    }

    /// Narrows the last layer; track it afterwards.
    ProjectBuilder& range(int first, int last)
    {
        layer().inPoint = first;
        layer().outPoint = last;
        layer().referenceFrame = first;
        return *this;
    }

    boost::shared_ptr<KORV_ProjectManager> make(QString const& path = QString(),
                                                MarloHost::HostServices const& services = {}) const
    {
        return MarloHost::makeProject(model, path, services);
    }

    static Matrix identity()
    {
        return {1, 0, 0, 0, 1, 0, 0, 0, 1};
    }

    static Matrix translation(double x, double y)
    {
        return {1, 0, x, 0, 1, y, 0, 0, 1};
    }

    /// Turns counter-clockwise and scales about a point, then moves it. Square
    /// pixels; `radians` as seen with y up.
    static Matrix similarity(double centreX, double centreY, double radians, double scale, double moveX, double moveY)
    {
        double const c = scale * std::cos(radians);
        double const s = scale * std::sin(radians);
        return {c, -s, centreX + moveX - c * centreX + s * centreY,
                s, c,  centreY + moveY - s * centreX - c * centreY,
                0, 0,  1};
    }

    MarloHost::ProjectModel model;
};
