#pragma once
// Roto contours: control points, homographies of the layer, outlines as text.

#include "Host/Anm.h"
#include "Host/HostApi.h"
#include "mtx/Sabrel.h"

#include <QList>
#include <QMap>
#include <QSize>
#include <QString>
#include <QStringList>
#include <QVector>
#include <boost/shared_ptr.hpp>

#include <memory>
#include <set>
#include <vector>

class KORV_Layer;
class KORV_ProjectManager;

/// The kinds of curve that a contour can be.
enum ZN_CONTOUR_MODEL : int
{
    ZN_CONTOUR_XSPLINE = 0,
    ZN_CONTOUR_BEZIER = 1
};

namespace ZN
{

/// Scratch memory that speeds up many questions to contours; one per export.
class MARLO_HOST_API TrackCache
{
public:
    struct Data;

    TrackCache();
    ~TrackCache();
    TrackCache(TrackCache const&) = delete;
    TrackCache& operator=(TrackCache const&) = delete;

    /// The host's own record; opaque to exporters.
    Data& data();

private:
    std::unique_ptr<Data> m_data;
};

}

namespace Korvane
{

class ControlPoint;

/// The parts that a contour is exported in.
struct ContourPieces
{
    int count = 1;

    /// What Contour::getShapeKeyframesAsStrings() takes to make one of them.
    QStringList data;
};

/// A roto contour of a layer. Its control points ride on the layer's surface: where they
/// are seen at a frame is where the layer's homography of that frame carries them. An
/// X-spline is drawn in the plane of the surface, and its curve is carried.
class MARLO_HOST_API Contour
{
public:
    /// The homography of a layer at one frame, from the surface's reference frame.
    struct HomographyWithCamera
    {
        /// In pixels of the clip's raster, y up.
        Sabrel::Matrix33 homography;

        /// Raster of the clip that the pixels are of.
        double width = 1.0;
        double height = 1.0;
    };

    /// By contexts of every frame of the layer.
    using HomographyMap = QMap<Anm::Context, HomographyWithCamera>;

    using Pieces = ContourPieces;

    virtual ~Contour();

    virtual QString const& name() const = 0;
    virtual KORV_Layer const& parentLayer() const = 0;
    virtual ZN_CONTOUR_MODEL eGetType() const = 0;
    virtual bool isClosed() const = 0;

    /// Whether the outline comes from a Veil ML model in this view, so that it
    /// has no control points to export.
    virtual bool isVeilML(Anm::View const& view) const = 0;

    virtual std::vector<boost::shared_ptr<ControlPoint const>> const& allPoints() const = 0;

    /// Where a control point is seen.
    ///
    /// @param inPlane true for where it is in the surface's reference frame, without motion
    /// @param reserved callers pass false
    /// @param x,y pixels of the clip's raster, y up
    /// @param usable false where the motion throws the point to or past infinity
    /// @param cache may be null
    virtual void vGetControlPointXY(ControlPoint const& point, Anm::Context const& context, bool inPlane, bool reserved,
                                    double& x, double& y, bool& usable, ZN::TrackCache* cache) const = 0;

    /// The outline as a text for each of the contexts and each of the contour's own keys
    /// that has a homography: as it is seen in the picture of that frame, motion applied, in 0 to 1 of the
    /// picture, y up. docs/outline-text.md says how it is written. To read one between its
    /// keys: undo the homographies at the keys, interpolate, apply the homography.
    ///
    /// @param size of the picture in pixels
    /// @param homographies as ShapeExportHelper::buildHomogMap makes them
    /// @param contexts frames that get a text beside the contour's keys
    /// @param pieces,piece from splitForExport(); the default makes the whole contour
    virtual QMap<Anm::Context, QString> getShapeKeyframesAsStrings(KORV_ProjectManager const* project,
                                                                   QSize const& size, HomographyMap const& homographies,
                                                                   Anm::View const& view,
                                                                   std::set<Anm::Context> const& contexts,
                                                                   Pieces const& pieces = {}, int piece = 0) const = 0;

    /// Whether splitForExport() must not be asked: the contour is exported whole.
    virtual bool exportsWhole() const = 0;

    /// Parts for targets that can't hold the contour as one.
    virtual Pieces splitForExport(Anm::Context const& first, Anm::Context const& last, unsigned int width,
                                  unsigned int height) const = 0;
};

/// A homography in parts, in coordinates 0 to 1 of the picture, y up, with a last element
/// of 1: `R(rotation) scale [[1 + shearX, shearY], [shearY, 1 - shearX]]` as its upper left
/// block, then translation and perspective as they stand.
struct HomographyComponents
{
    /// Radians, counter-clockwise, unwrapped over time.
    double rotation = 0.0;
    double translationX = 0.0;
    double translationY = 0.0;
    double scale = 1.0;
    double shearX = 0.0;
    double shearY = 0.0;
    double perspectiveX = 0.0;
    double perspectiveY = 0.0;
};

}
