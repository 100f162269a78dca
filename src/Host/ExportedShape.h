#pragma once
// The contours of a layer, keyed or baked, as shape exporters read them.

#include "Host/Anm.h"
#include "Host/HostApi.h"
#include "mtx/Sabrel.h"

#include <QPointF>
#include <QVector>
#include <boost/shared_ptr.hpp>

#include <array>
#include <memory>
#include <string>
#include <vector>

class KORV_Layer;
class KORV_ProjectManager;

/// Numbers of the host's optimiser that exporters meet.
struct MARLO_HOST_API KORV_NumericOptimiser
{
    /// What the entries of a KORV_ExportHomography are multiplied by, so that texts with few
    /// decimals keep the small ones.
    static double const s_matrixScale;
};

/// The homography of a layer at one frame.
struct KORV_ExportHomography
{
    /// Row by row, in the coordinates of the curves; the last is
    /// KORV_NumericOptimiser::s_matrixScale.
    std::array<double, 9> m{};

    /// Shown frame number.
    double time = 0.0;

    bool operator==(KORV_ExportHomography const& other) const
    {
        return m == other.m && time == other.time;
    }
};

namespace Korvane
{

/// One key of an outline.
class MARLO_HOST_API ExportCurveBase
{
public:
    ExportCurveBase(double keyTime, bool isClosed);
    virtual ~ExportCurveBase();

    /// One for each vertex. The last span leads back to the first vertex; on an open curve
    /// it isn't drawn, and its handles are 0.
    virtual int numSpans() const = 0;

    /// Shown frame number.
    double time;
    bool closed;
};

class MARLO_HOST_API ExportBezierCurve : public ExportCurveBase
{
public:
    ExportBezierCurve(double keyTime, bool isClosed, std::vector<Sabrel::BezierSpan> spans);
    ~ExportBezierCurve() override;

    int numSpans() const override;
    Sabrel::BezierSpan const& operator[](std::size_t index) const;

    /// The mean of the vertices.
    Mtx_Vector2 centre() const;

private:
    std::vector<Sabrel::BezierSpan> m_spans;
};

/// Points of a closed or open X-spline after Blanc and Schlick ("X-splines", SIGGRAPH
/// 1995). A weight of 0 makes a corner, 1 a round bend that passes by the point, -1 one
/// that goes through it. An open one begins and ends in its end points, whatever their
/// weights.
class MARLO_HOST_API ExportXSplineCurve : public ExportCurveBase
{
public:
    struct Point
    {
        Mtx_Vector2 position;
        double weight = 0.0;
    };

    ExportXSplineCurve(double keyTime, bool isClosed, std::vector<Point> points);
    ~ExportXSplineCurve() override;

    /// As many as points.
    int numSpans() const override;
    Mtx_Vector2 point(int index) const;
    double weight(int index) const;

private:
    std::vector<Point> m_points;
};

/// What an ExportedShape is to hold; added up.
enum ExportedShapeFlags : unsigned int
{
    /// Pixels of the clip's raster (full-frame lines), not 0 to 1.
    ShapeInPixels = 1,
    /// X-splines become Bezier curves that keep within 0.05 pixels.
    ShapeAsBezier = 2,
    /// Motion stays apart, in transform(); the outlines are as they lie in the surface's
    /// reference frame and have only the contour's own keys, the ends of the range, and
    /// keys between which curves of X-splines whose weights change are linear.
    ShapeMotionApart = 4,
    /// Blur (feather) curves are made.
    ShapeWithBlur = 8,
    /// y is measured down from the top edge.
    ShapeYDown = 16,
    /// Curves stay what they are.
    ShapeKeepsType = 32,
    /// As ShapeAsBezier.
    ShapeXSplinesToBezier = 64
};

/// The contours of one layer over a range of frames. "Shapes" are the parts of contours:
/// contour c has numContourCC(c) of them. Indices that don't exist throw std::out_of_range.
class MARLO_HOST_API ExportedShape
{
public:
    using Curves = QVector<boost::shared_ptr<ExportCurveBase>>;

    /// @param firstFrame,lastFrame host frames, both included
    /// @param flags of ExportedShapeFlags
    /// @param scale times the distance of blur curves from the outlines
    /// @param offset in the coordinates of the curves; moves only transform(): T(offset) H
    ///        T(-offset)
    /// @param reserved has no effect
    ExportedShape(KORV_ProjectManager const& project, int firstFrame, int lastFrame, KORV_Layer const& layer,
                  Anm::View const& view, unsigned int flags, double scale, QPointF const& offset, bool reserved);
    ExportedShape(ExportedShape const& other);
    ExportedShape& operator=(ExportedShape const& other);
    ~ExportedShape();

    /// Appends the contours of another layer.
    ExportedShape& operator+=(ExportedShape const& other);

    int numShapes() const;
    int numContours() const;
    int numContourCC(int contour) const;

    /// How many shapes have an outline.
    unsigned int numValidContourMasks() const;

    /// The outline by keys in time order.
    Curves const& maskShape(int contour, int part) const;

    /// The blur curve: keys and spans of the outline, equal to it where there is no feather.
    /// Empty without ShapeWithBlur.
    Curves const& blurShape(int contour, int part) const;

    std::string const& maskName(int contour, int part) const;

    /// An entry for each frame of the range with ShapeMotionApart, else empty.
    std::vector<KORV_ExportHomography> const& transform(int contour, int part) const;

    /// Turns outlines that run counter-clockwise as seen on screen around. The first vertex
    /// stays first; blur curves follow their outline.
    void convertAllShapesToClockwise();

private:
    struct Data;
    std::unique_ptr<Data> m_data;
};

}
