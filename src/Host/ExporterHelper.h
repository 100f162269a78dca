#pragma once
// The host's view of one layer, as tracking exporters read it.

#include "Host/Anm.h"
#include "Host/ExportEnums.h"
#include "Host/HostApi.h"
#include "Host/TrackingExporter.h"

#include <QStringList>
#include <boost/optional.hpp>
#include <boost/shared_array.hpp>

#include <map>
#include <memory>

class KORV_Clip;
class KORV_ProjectManager;
class ZN_BaseClipInfo;

namespace TXI
{

/// A point in pixels.
struct Pos2
{
    double x;
    double y;
};

}

namespace ZN
{

/// Told how far long work has come, 0 to 1.
class MARLO_HOST_API ProgressRange
{
public:
    virtual ~ProgressRange();
    virtual void setProgress(double fraction) = 0;
};

}

namespace Korvane
{

/// Project, layer, view, frame range and clip of one export.
class MARLO_HOST_API ExporterHelperBase
{
public:
    /// @param cutToLayer whether ranges are cut to that of the layer; otherwise they
    ///        are cut to the project's playback range
    explicit ExporterHelperBase(bool cutToLayer);
    ExporterHelperBase(ExporterHelperBase const& other);
    ExporterHelperBase(ExporterHelperBase&& other) noexcept;
    ExporterHelperBase& operator=(ExporterHelperBase const& other);
    ExporterHelperBase& operator=(ExporterHelperBase&& other) noexcept;
    virtual ~ExporterHelperBase();

    /// Fixes project, layer, view and range and forgets all earlier data.
    ///
    /// The range is cut to that of the layer; the largest and the smallest int,
    /// in either order, ask for the whole of it. A layer that doesn't exist or
    /// lies outside leaves a helper with nothing to export: firstFrame() is -1.
    ///
    /// @param reserved has no effect; callers pass false
    virtual void initialiseWithPMAndRange(KORV_ProjectManager const& project, unsigned int layerId,
                                          Anm::View const& view, int framesToExport, Anm::Time first, Anm::Time last,
                                          bool reserved);

    /// A selector that initialiseWithPMAndRange understands. All values in use
    /// today mean every frame.
    static int framesToExport(boost::optional<ZN_TRACKING_OPTION> option);

    /// False when the layer has no frame in the range; without limits, which are given as
    /// for initialiseWithPMAndRange, in that of the project.
    static bool layerIsWithinProject(KORV_ProjectManager const& project, unsigned int layerId, Anm::Time first,
                                     Anm::Time last, bool reserved);

    /// The clip that gives size, interlacing and frame offset.
    void setClip(KORV_Clip const& clip);

    KORV_ProjectManager const* projectManager() const;

    /// Null until setClip.
    ZN_BaseClipInfo const* baseClipInfo() const;
    int baseClipOffset() const;

    /// First and last frame of the export, both included, in host frames.
    Anm::Time firstFrame() const;
    Anm::Time lastFrame() const;

    /// First and last frame of the layer, in host frames.
    Anm::Time inPoint() const;
    Anm::Time outPoint() const;

    int numFrames() const;
    Anm::View view() const;
    unsigned int layerId() const;
    bool isInterlaced() const;

    /// Full-frame lines per line of the clip: 2 for interlaced material, else 1.
    /// verticalScale() is the same number.
    float heightScale() const;
    float verticalScale() const;
    void setHeightScale(float scale);

    /// Frames per host frame: 0.5 for interlaced material, else 1.
    /// frameStep() is the same number.
    float frameScale() const;
    float frameStep() const;
    void setFrameScale(float scale);

    /// Distance at which a camera is in focus, in the units of the export.
    float focalDistance() const;
    void setFocalDistance(float distance);

protected:
    /// A fresh start for what isn't about one layer: a range of its own, both frames included.
    void startWithoutLayer(KORV_ProjectManager const& project, Anm::View const& view, int first, int last);

    /// Leaves nothing to export.
    void clearRange();

private:
    struct Data;
    std::unique_ptr<Data> m_base;
};

/// The similarity that best fits the motion of the exported points at a frame.
struct TransformSample
{
    /// Host frame.
    float frame;

    /// The anchor: the surface centre, or for motion that goes onto the footage
    /// itself the point that was in the middle of the picture. Pixels.
    double x;
    double y;

    /// Factor from the reference frame, 1 there.
    double scale;

    /// Radians from the reference frame, counter-clockwise as seen on screen,
    /// unwrapped over time, 0 at the reference frame.
    double rotation;
};

/// Points and transforms of a layer's surface over time.
class MARLO_HOST_API TrackingExporterHelper : public ExporterHelperBase
{
public:
    TrackingExporterHelper();
    TrackingExporterHelper(TrackingExporterHelper const& other);
    TrackingExporterHelper(TrackingExporterHelper&& other) noexcept;
    TrackingExporterHelper& operator=(TrackingExporterHelper const& other);
    TrackingExporterHelper& operator=(TrackingExporterHelper&& other) noexcept;
    ~TrackingExporterHelper() override;

    void initialiseWithPMAndRange(KORV_ProjectManager const& project, unsigned int layerId, Anm::View const& view,
                                  int framesToExport, Anm::Time first, Anm::Time last, bool reserved) override;

    /// Computes the points of every frame of the range.
    ///
    /// @param referenceFrame where inverted and stabilized motion starts from
    /// @param progress may be null
    /// @return false when there is nothing to export, as in layers without tracking data in
    ///         the view; the range is empty then
    bool updateSurfacePoints(KORV_ProjectManager const& project, unsigned int layerId,
                             Anm::Context::Explicit const& referenceFrame, TrackingExporter::Options const& options,
                             ZN::ProgressRange* progress);

    /// One row per frame from firstFrame(): the four corners by
    /// TrackingExporterTypes::SurfaceCorner, then the centre. Pixels of the
    /// clip, y up. Null when there is nothing to export.
    boost::shared_array<TXI::Pos2[5]> surfacePoints() const;

    /// Fits transformSamples() to the surface points.
    ///
    /// @param fullFrameLines y of the samples in lines of the full frame (true)
    ///        or of the clip's own raster
    /// @param yDown y of the samples from the top edge down (true) or from the
    ///        bottom edge up
    /// @param referenceFrame host frame in which scale is 1 and rotation 0
    void buildTransformDataFromSurfaceMotion(bool fullFrameLines, bool yDown, unsigned int referenceFrame);

    /// Ascending by host frame; empty when there is nothing to export.
    std::map<int, TransformSample> const& transformSamples() const;

    /// Replaces each corner by what a layer of the clip's size, anchored in its
    /// middle, must show so that Position, Scale and Rotation of the samples put
    /// it where the corner was: `M + R(-rotation) (p - anchor) / scale`.
    void makeCornerPinDataRelative();

    /// Frames for which a neighbour had to stand in, a line each.
    QStringList failureMessages() const;

private:
    struct Data;
    std::unique_ptr<Data> m_data;
};

}
