// What the shape exporters ask of a host, of one that has no shapes: bodies for the
// linker, most of which nobody calls.

#include "Host/Contour.h"
#include "Host/ExportedShape.h"
#include "Host/ExporterHelper.h"
#include "Host/KORV_Clip.h"
#include "Host/KORV_Layer.h"
#include "Host/KORV_ProjectManager.h"
#include "Host/ShapeExporter.h"
#include "Host/ZN_ClipInfo.h"

#include <stdexcept>

namespace
{

[[noreturn]] void noShapes()
{
    throw std::logic_error("this host has no shapes");
}

}

double const KORV_NumericOptimiser::s_matrixScale = 1;

namespace Anm
{

bool BaseContext::operator<(BaseContext const&) const
{
    noShapes();
}
unsigned int Views::viewCount() const
{
    return 1;
}
int Views::viewIndex(View const&) const
{
    return 0;
}
template <>
bool Parameter<bool>::staticValue(View const&) const
{
    noShapes();
}

}

KORV_Clip const* KORV_FrameManager::getClip(unsigned int) const
{
    return nullptr;
}

QList<boost::shared_ptr<Korvane::Contour const>> const& KORV_Layer::activeContours() const
{
    noShapes();
}
Anm::Parameter<unsigned int> const& KORV_Layer::blendMode() const
{
    noShapes();
}
Anm::Parameter<bool> const& KORV_Layer::invert() const
{
    noShapes();
}
QColor KORV_Layer::fillColour() const
{
    noShapes();
}
QColor KORV_Layer::overlayColour() const
{
    noShapes();
}
unsigned int KORV_Layer::getBaseClipID() const
{
    return 0;
}

int KORV_ProjectManager::frameCount() const
{
    noShapes();
}
int KORV_ProjectManager::frameOffset() const
{
    return 0;
}
KORV_FrameManager* KORV_ProjectManager::frameManager()
{
    noShapes();
}
KORV_FrameManager const* KORV_ProjectManager::frameManager() const
{
    noShapes();
}
KORV_ParameterManager const* KORV_ProjectManager::pGetParameterManager() const
{
    noShapes();
}
KORV_SelectionManager const* KORV_ProjectManager::pGetSelectionManager() const
{
    noShapes();
}
unsigned int KORV_ProjectManager::playbackInPoint(bool) const
{
    return 0;
}
Anm::Views const* KORV_ProjectManager::views() const
{
    noShapes();
}
double ProjectProperties::par() const
{
    return 1;
}
QSize ProjectProperties::size() const
{
    noShapes();
}

double ZN::FilmType::filmBackWidth() const
{
    return m_width;
}
double ZN::FilmType::filmBackHeight() const
{
    return m_height;
}
QSize ZN::ImageFormat::size() const
{
    return m_size;
}
int ZN_BaseClipInfo::baseClipOffset() const
{
    return 0;
}
ZN::FilmType const& ZN_BaseClipInfo::filmType() const
{
    noShapes();
}
unsigned int ZN_BaseClipInfo::length(Anm::View const&) const
{
    noShapes();
}

struct ZN::TrackCache::Data
{
};
ZN::TrackCache::TrackCache() = default;
ZN::TrackCache::~TrackCache() = default;

namespace Korvane
{

Anm::Time ExporterHelperBase::inPoint() const
{
    noShapes();
}
Anm::Time ExporterHelperBase::outPoint() const
{
    noShapes();
}
bool ExporterHelperBase::layerIsWithinProject(KORV_ProjectManager const&, unsigned int, Anm::Time, Anm::Time, bool)
{
    return false;
}

ExportCurveBase::ExportCurveBase(double keyTime, bool isClosed) : time(keyTime), closed(isClosed)
{
}
ExportCurveBase::~ExportCurveBase() = default;
ExportBezierCurve::ExportBezierCurve(double keyTime, bool isClosed, std::vector<Sabrel::BezierSpan> spans)
    : ExportCurveBase(keyTime, isClosed), m_spans(std::move(spans))
{
}
ExportBezierCurve::~ExportBezierCurve() = default;
int ExportBezierCurve::numSpans() const
{
    return static_cast<int>(m_spans.size());
}
Sabrel::BezierSpan const& ExportBezierCurve::operator[](std::size_t index) const
{
    return m_spans[index];
}

struct ExportedShape::Data
{
};
ExportedShape::ExportedShape(KORV_ProjectManager const&, int, int, KORV_Layer const&, Anm::View const&, unsigned int,
                             double, QPointF const&, bool)
{
    noShapes();
}
ExportedShape::~ExportedShape() = default;
int ExportedShape::numShapes() const
{
    noShapes();
}
int ExportedShape::numContours() const
{
    noShapes();
}
int ExportedShape::numContourCC(int) const
{
    noShapes();
}
ExportedShape::Curves const& ExportedShape::maskShape(int, int) const
{
    noShapes();
}
ExportedShape::Curves const& ExportedShape::blurShape(int, int) const
{
    noShapes();
}
std::vector<KORV_ExportHomography> const& ExportedShape::transform(int, int) const
{
    noShapes();
}

QVector<boost::shared_ptr<KORV_Layer const>>
ShapeExportHelper::getLayersToExport(KORV_ProjectManager const&, ZN::LayerExportMode, QList<unsigned int> const&)
{
    return {};
}
boost::shared_ptr<Contour::HomographyMap> ShapeExportHelper::buildHomogMap(KORV_ProjectManager const&,
                                                                           KORV_Layer const&, Anm::View const&)
{
    noShapes();
}
QVector<HomographyComponents> ShapeExportHelper::buildComponentsList(boost::shared_ptr<Contour::HomographyMap> const&,
                                                                     unsigned int)
{
    noShapes();
}

}
