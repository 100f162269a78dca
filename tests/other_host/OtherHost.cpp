// The bodies that the export library needs of a host, as few and as plain as can be.

#include "OtherHost.h"

#include "Host/CameraSolveExporter.h"
#include "Host/ExporterHelper.h"
#include "Host/Fnd.h"
#include "Host/KORV_Clip.h"
#include "Host/KORV_Exception.h"
#include "Host/KORV_Layer.h"
#include "Host/MeshTracking.h"
#include "Host/PluginHost.h"
#include "Host/Product.h"
#include "Host/Scene3D.h"
#include "Host/ShapeExporter.h"
#include "Host/ZN_ClipInfo.h"

#include <boost/make_shared.hpp>

#include <cmath>

namespace
{

constexpr int FRAMES = 3;
constexpr unsigned int WIDTH = 200;
constexpr unsigned int HEIGHT = 100;
constexpr double STEP = 5;

}

// Time and views

namespace Anm
{

Time::Time() : m_frame(-1e300)
{
}
Time::Time(double frame) : m_frame(frame)
{
}
Time Time::fromInt(int frame)
{
    return Time(frame);
}
Time Time::fromDouble(double frame)
{
    return Time(frame);
}
bool Time::isValid() const
{
    return m_frame > -1e299;
}
double Time::value() const
{
    return m_frame;
}
bool Time::operator==(Time const& other) const
{
    return m_frame == other.m_frame;
}
View::View(int id) : m_id(id)
{
}
int View::defaultViewId()
{
    return 0;
}
View View::defaultView()
{
    return View(0);
}
int View::id() const
{
    return m_id;
}
bool View::operator==(View const& other) const
{
    return m_id == other.m_id;
}
QString Views::name(View const&) const
{
    return QString();
}
ProxyScale::ProxyScale(Enum scale) : m_scale(scale)
{
}
bool ProxyScale::operator==(ProxyScale const& other) const
{
    return m_scale == other.m_scale;
}
BaseContext::BaseContext(Time const& time, View const& view, ProxyScale const& scale)
    : m_time(time), m_view(view), m_scale(scale)
{
}
int BaseContext::frameValue() const
{
    return static_cast<int>(m_time.value());
}
Time const& BaseContext::time() const
{
    return m_time;
}
View const& BaseContext::view() const
{
    return m_view;
}
void BaseContext::setTime(Time const& time)
{
    m_time = time;
}
bool BaseContext::operator==(BaseContext const& other) const
{
    return m_time == other.m_time && m_view == other.m_view && m_scale == other.m_scale;
}
Context::Context(Time const& time, View const& view, ProxyScale const& scale) : BaseContext(time, view, scale)
{
}
Context Context::invalid()
{
    return Context(Time(), View::defaultView());
}
Context::Explicit::Explicit(BaseContext const& context) : BaseContext(context)
{
}

// Nothing of this host is keyed.
template <typename T>
struct Parameter<T>::Data
{
};
template <typename T>
Parameter<T>::Parameter(std::unique_ptr<Data> data) : m_data(std::move(data))
{
}
template <typename T>
Parameter<T>::Parameter(Parameter const&)
{
}
template <typename T>
Parameter<T>::~Parameter() = default;
template <typename T>
T Parameter<T>::value(View const&) const
{
    return T();
}
template <typename T>
unsigned int Parameter<T>::keyframeCount(View const&) const
{
    return 0;
}
template <typename T>
T Parameter<T>::keyframeValue(unsigned int, View const&) const
{
    return T();
}
template <typename T>
Time Parameter<T>::keyframeTime(unsigned int, View const&) const
{
    return Time();
}
template class Parameter<bool>;
template class Parameter<unsigned int>;

}

// Errors and services

KORV_Exception::KORV_Exception(std::string const& file, int line, QString const& message, QString const& detail)
    : m_file(file), m_line(line), m_message(message), m_detail(detail), m_what(message.toStdString())
{
}
KORV_Exception::~KORV_Exception() = default;
char const* KORV_Exception::what() const noexcept
{
    return m_what.c_str();
}

#define OTHER_HOST_ERROR(Name)                                                                                         \
    Name::Name(std::string const& file, int line, QString const& message, QString const& detail)                       \
        : KORV_Exception(file, line, message, detail)                                                                  \
    {                                                                                                                  \
    }                                                                                                                  \
    Name::~Name() = default;
OTHER_HOST_ERROR(KORV_BadArgument)
OTHER_HOST_ERROR(KORV_BadFile)
OTHER_HOST_ERROR(KORV_AssertionFailed)
OTHER_HOST_ERROR(KORV_ExternalException)
#undef OTHER_HOST_ERROR

KORV_OperationFailed::KORV_OperationFailed(std::string const& file, int line, QString const& title, QString const& what,
                                           QString const& detail)
    : KORV_Exception(file, line, what, detail), m_title(title)
{
}
KORV_OperationFailed::~KORV_OperationFailed() = default;

namespace Fnd
{

bool isDirWritable(QString const&)
{
    return true;
}
std::filesystem::path toFsPath(QString const& path)
{
    return path.toStdString();
}
UsageLogger::Record::Record(QString const& name) : m_name(name)
{
}
UsageLogger::Record::~Record() = default;
void UsageLogger::Record::addValue(QString const&, QString const&, bool)
{
}
UsageLogger::UserActivity::UserActivity(QString const& name) : Record(name)
{
}
UsageLogger::UserActivity::~UserActivity() = default;

}

namespace Product
{

QString name()
{
    return "Other";
}
QString longVersion()
{
    return "1";
}
bool isPlugin()
{
    return false;
}
QSet<QString> trackExportOptions()
{
    return {"scratch", "vegas"};
}
QSet<QString> trackExportOptionsExtra()
{
    return {};
}
QSet<QString> shapeExportOptions()
{
    return {};
}
QSet<QString> shapeExportOptionsExtra()
{
    return {};
}
QSet<QString> cameraSolveExportOptions()
{
    return {};
}

}

// The project

namespace ZN
{

ImageFormat::ImageFormat(QSize const& size, double pixelAspect) : m_size(size), m_par(pixelAspect)
{
}
double ImageFormat::par() const
{
    return m_par;
}
Layer::~Layer() = default;
NormalizedSpace::NormalizedSpace(QSize const&)
{
}
void NormalizedSpace::toImage(Mtx_Vector2_f&) const
{
}
Mtx_Vector2_f MeshTracking::Vertex::pos(Anm::Context const&) const
{
    return {};
}
std::vector<MeshTracking::Vertex> const& MeshTracking::ParameterSet::vertices() const
{
    return m_vertices;
}
struct Scene3DParameterSet::Data
{
};
Scene3DParameterSet::Scene3DParameterSet(std::unique_ptr<Data> data) : m_data(std::move(data))
{
}
Scene3DParameterSet::~Scene3DParameterSet() = default;
Camera3DParameterSet const* Scene3DParameterSet::cameraParameters(unsigned int) const
{
    return nullptr;
}

}

struct ZN_BaseClipInfo::Data
{
    ZN::ImageFormat format{QSize(WIDTH, HEIGHT), 1};
};
ZN_BaseClipInfo::ZN_BaseClipInfo(std::unique_ptr<Data> data) : m_data(std::move(data))
{
}
ZN_BaseClipInfo::~ZN_BaseClipInfo() = default;
unsigned int ZN_BaseClipInfo::width() const
{
    return WIDTH;
}
unsigned int ZN_BaseClipInfo::height() const
{
    return HEIGHT;
}
ZN::ImageFormat const& ZN_BaseClipInfo::format() const
{
    return m_data->format;
}
bool ZN_BaseClipInfo::bIsInterlaced() const
{
    return false;
}
ZN_ClipInfo::ZN_ClipInfo(std::unique_ptr<Data> data) : ZN_BaseClipInfo(std::move(data))
{
}
ZN_ClipInfo::~ZN_ClipInfo() = default;

struct KORV_Clip::Data
{
    ZN_ClipInfo info;
};
KORV_Clip::KORV_Clip(std::unique_ptr<Data> data) : m_data(std::move(data))
{
}
KORV_Clip::~KORV_Clip() = default;
ZN_ClipInfo const& KORV_Clip::info() const
{
    return m_data->info;
}

ZN_StabilizeParameterSet::ZN_StabilizeParameterSet(Anm::Parameter<bool> const& fixedFrames) : m_fixedFrames(fixedFrames)
{
}
Anm::Parameter<bool> const& ZN_StabilizeParameterSet::fixedFrames() const
{
    return m_fixedFrames;
}

Korvane::ItemItf::~ItemItf() = default;
Korvane::LayerBase::~LayerBase() = default;

struct KORV_Layer::Data
{
    QString name{"Slider"};
    KV::Surface surface{Anm::Context(Anm::Time::fromInt(0), Anm::View::defaultView())};
    ZN_StabilizeParameterSet stabilize{Anm::Parameter<bool>(nullptr)};
};
KORV_Layer::KORV_Layer(std::unique_ptr<Data> data) : m_data(std::move(data))
{
}
KORV_Layer::~KORV_Layer() = default;
unsigned int KORV_Layer::numericID() const
{
    return 7;
}
QString const& KORV_Layer::name() const
{
    return m_data->name;
}
bool KORV_Layer::isHidden(bool) const
{
    return false;
}
bool KORV_Layer::isSelected() const
{
    return true;
}
Korvane::LayerGroup* KORV_Layer::parentGroup(bool) const
{
    return nullptr;
}
bool KORV_Layer::isMoving() const
{
    return false;
}
ZN::Point3DParameterSet const& KORV_Layer::points() const
{
    throw std::logic_error("this host has no scene");
}
QString const& KORV_Layer::textID() const
{
    throw std::logic_error("this host has no scene");
}
QColor KORV_Layer::colour() const
{
    return Qt::white;
}
KV::Surface const& KORV_Layer::surface() const
{
    return m_data->surface;
}
unsigned int KORV_Layer::trackingInputClipID(bool, bool, bool) const
{
    return 3;
}
unsigned int KORV_Layer::inPoint(bool) const
{
    return 0;
}
unsigned int KORV_Layer::outPoint(bool) const
{
    return FRAMES - 1;
}
unsigned int KORV_Layer::stabilizeRangeStart(Anm::BaseContext const&) const
{
    return 0;
}
unsigned int KORV_Layer::stabilizeRangeEnd(Anm::BaseContext const&) const
{
    return FRAMES - 1;
}
ZN_StabilizeParameterSet const& KORV_Layer::stabilizeParameters() const
{
    return m_data->stabilize;
}
KORV_Layer const* KORV_Layer::layerBelow() const
{
    return nullptr;
}
std::shared_ptr<ZN::MeshTracking::ParameterSet> KORV_Layer::trackMesh() const
{
    return nullptr;
}

struct KORV_SelectionManager::Data
{
    boost::shared_ptr<KORV_Layer> layer;
    std::map<unsigned int, boost::shared_ptr<Korvane::ItemItf>> items;
};
KORV_SelectionManager::KORV_SelectionManager(std::unique_ptr<Data> data) : m_data(std::move(data))
{
}
KORV_SelectionManager::~KORV_SelectionManager() = default;
KORV_Layer* KORV_SelectionManager::layerFromNumericID(unsigned int id, bool) const
{
    return id == 7 ? m_data->layer.get() : nullptr;
}
boost::shared_ptr<KORV_Layer> KORV_SelectionManager::findLayer(unsigned int id, bool) const
{
    return id == 7 ? m_data->layer : nullptr;
}
QVector<boost::shared_ptr<Korvane::LayerBase>> KORV_SelectionManager::findLayers(QString const&, bool) const
{
    return {m_data->layer};
}
QVector<boost::shared_ptr<KORV_Layer const>> KORV_SelectionManager::layers(QFlags<Korvane::ItemsQuery>) const
{
    return {m_data->layer};
}
KORV_Layer const* KORV_SelectionManager::topLayer() const
{
    return m_data->layer.get();
}
bool KORV_SelectionManager::hasLayers() const
{
    return true;
}
std::map<unsigned int, boost::shared_ptr<Korvane::ItemItf>> const& KORV_SelectionManager::layerItems() const
{
    return m_data->items;
}

struct KORV_ParameterManager::Data
{
    KORV_Clip clip;
};
KORV_ParameterManager::KORV_ParameterManager(std::unique_ptr<Data> data) : m_data(std::move(data))
{
}
KORV_ParameterManager::~KORV_ParameterManager() = default;
KORV_Clip const* KORV_ParameterManager::getClip(unsigned int id) const
{
    return id == 3 ? &m_data->clip : nullptr;
}
bool KORV_FrameManager::hasClip(unsigned int id) const
{
    return id == 3;
}
KORV_ToolManager::KORV_ToolManager(unsigned int currentLayerId) : m_currentLayerId(currentLayerId)
{
}
unsigned int KORV_ToolManager::currentLayerID() const
{
    return m_currentLayerId;
}
int ProjectProperties::trimInPoint() const
{
    return 0;
}
boost::shared_ptr<Anm::Views const> ProjectProperties::views() const
{
    return nullptr;
}

struct KORV_ProjectManager::Data
{
    boost::shared_ptr<KORV_SelectionManager> selection;
    KORV_ParameterManager parameters;
    KORV_ToolManager tools{7};
    Anm::Context currentFrame{Anm::Time::fromInt(1), Anm::View::defaultView()};
    ZN::Scene3DParameterSet scene{nullptr};
};
KORV_ProjectManager::KORV_ProjectManager(std::unique_ptr<Data> data) : m_data(std::move(data))
{
}
KORV_ProjectManager::~KORV_ProjectManager() = default;
KORV_SelectionManager* KORV_ProjectManager::sm()
{
    return m_data->selection.get();
}
KORV_SelectionManager const* KORV_ProjectManager::sm() const
{
    return m_data->selection.get();
}
KORV_SelectionManager* KORV_ProjectManager::pGetSelectionManager()
{
    return sm();
}
KORV_ParameterManager* KORV_ProjectManager::pGetParameterManager()
{
    return &m_data->parameters;
}
KORV_FrameManager* KORV_ProjectManager::fm()
{
    return nullptr;
}
KORV_ToolManager const* KORV_ProjectManager::toolManager() const
{
    return &m_data->tools;
}
KORV_Layer* KORV_ProjectManager::currentLayer() const
{
    return m_data->selection->layerFromNumericID(7, false);
}
Anm::Context const& KORV_ProjectManager::currentFrame() const
{
    return m_data->currentFrame;
}
ProjectProperties const& KORV_ProjectManager::projProps() const
{
    throw KORV_AssertionFailed(__FILE__, __LINE__, "not asked for outside of a plug-in", QString());
}
QString KORV_ProjectManager::projectFilePath() const
{
    return QString();
}
double KORV_ProjectManager::frameRate() const
{
    return 30;
}
Korvane::PluginHost* KORV_ProjectManager::pluginHost() const
{
    return nullptr;
}
boost::shared_ptr<ApplicationContext const> KORV_ProjectManager::applicationContext() const
{
    return nullptr;
}
ZN::Scene3DParameterSet& KORV_ProjectManager::scene3DParameters() const
{
    return m_data->scene;
}

boost::shared_ptr<KORV_ProjectManager> slidingProject()
{
    auto selection = std::make_unique<KORV_SelectionManager::Data>();
    selection->layer = boost::make_shared<KORV_Layer>(std::make_unique<KORV_Layer::Data>());
    selection->items.emplace(7, selection->layer);
    auto clip =
        std::unique_ptr<KORV_Clip::Data>(new KORV_Clip::Data{ZN_ClipInfo(std::make_unique<ZN_BaseClipInfo::Data>())});
    auto parameters =
        std::unique_ptr<KORV_ParameterManager::Data>(new KORV_ParameterManager::Data{KORV_Clip(std::move(clip))});
    return boost::make_shared<KORV_ProjectManager>(std::unique_ptr<KORV_ProjectManager::Data>(
        new KORV_ProjectManager::Data{boost::make_shared<KORV_SelectionManager>(std::move(selection)),
                                      KORV_ParameterManager(std::move(parameters))}));
}

// What this host never makes itself, but other code may hand to the library

TXIHost::~TXIHost() = default;
Korvane::PluginHost::~PluginHost() = default;
Korvane::Contour::~Contour() = default;
ApplicationContext::~ApplicationContext() = default;
Fnd::UsageLogger::~UsageLogger() = default;
Korvane::ShapeExporter::~ShapeExporter() = default;
void Korvane::ShapeExporter::copyToClipboard(Fnd::IClipboard&, QString const&, bool) const
{
}
Korvane::GlimmersetShapeExporter::~GlimmersetShapeExporter() = default;
std::shared_ptr<QMap<QString, QByteArray>> Korvane::GlimmersetShapeExporter::exportShape(KORV_ProjectManager&,
                                                                                         QString const&,
                                                                                         QList<unsigned int> const&,
                                                                                         Options const&) const
{
    throw std::logic_error("this host has no contours");
}
KV::CameraSolveExporter::CameraSolveExporter() = default;
KV::CameraSolveExporter::~CameraSolveExporter() = default;
void KV::CameraSolveExporter::setUserOptions(ExportOptionsReceiver&) const
{
}
void KV::CameraSolveExporter::copyToClipboard(Fnd::IClipboard&, QString const&) const
{
}

// Exporters and their helper

namespace Korvane
{

void smartCopy(Fnd::IClipboard&, QString const&)
{
}
TrackingExporter::TrackingExporter() = default;
TrackingExporter::~TrackingExporter() = default;
void TrackingExporter::copyToClipboard(Fnd::IClipboard&, QString const&) const
{
}
QString const ShapeExporter::ERROR_FILENAME = "<error>";
QList<boost::shared_ptr<Contour const>>
ShapeExportHelper::getContoursToExport(KORV_ProjectManager const&, ZN::LayerExportMode, QList<unsigned int> const&)
{
    return {};
}

struct ExporterHelperBase::Data
{
    KORV_ProjectManager const* project = nullptr;
    KORV_Clip const* clip = nullptr;
};
ExporterHelperBase::ExporterHelperBase(bool) : m_base(std::make_unique<Data>())
{
}
ExporterHelperBase::~ExporterHelperBase() = default;
void ExporterHelperBase::initialiseWithPMAndRange(KORV_ProjectManager const& project, unsigned int, Anm::View const&,
                                                  int, Anm::Time, Anm::Time, bool)
{
    m_base->project = &project;
}
int ExporterHelperBase::framesToExport(boost::optional<ZN_TRACKING_OPTION>)
{
    return 0;
}
void ExporterHelperBase::setClip(KORV_Clip const& clip)
{
    m_base->clip = &clip;
}
KORV_ProjectManager const* ExporterHelperBase::projectManager() const
{
    return m_base->project;
}
ZN_BaseClipInfo const* ExporterHelperBase::baseClipInfo() const
{
    return &m_base->clip->info();
}
int ExporterHelperBase::baseClipOffset() const
{
    return 0;
}
int ExporterHelperBase::numFrames() const
{
    return FRAMES;
}
Anm::View ExporterHelperBase::view() const
{
    return Anm::View::defaultView();
}
unsigned int ExporterHelperBase::layerId() const
{
    return 7;
}
float ExporterHelperBase::verticalScale() const
{
    return 1;
}
float ExporterHelperBase::frameStep() const
{
    return 1;
}
Anm::Time ExporterHelperBase::firstFrame() const
{
    return Anm::Time::fromInt(0);
}
Anm::Time ExporterHelperBase::lastFrame() const
{
    return Anm::Time::fromInt(FRAMES - 1);
}
bool ExporterHelperBase::isInterlaced() const
{
    return false;
}
float ExporterHelperBase::heightScale() const
{
    return 1;
}
float ExporterHelperBase::frameScale() const
{
    return 1;
}

struct TrackingExporterHelper::Data
{
    boost::shared_array<TXI::Pos2[5]> points;
    std::map<int, TransformSample> samples;
};
TrackingExporterHelper::TrackingExporterHelper() : ExporterHelperBase(true), m_data(std::make_unique<Data>())
{
}
TrackingExporterHelper::~TrackingExporterHelper() = default;
void TrackingExporterHelper::initialiseWithPMAndRange(KORV_ProjectManager const& project, unsigned int layerId,
                                                      Anm::View const& view, int frames, Anm::Time first,
                                                      Anm::Time last, bool reserved)
{
    ExporterHelperBase::initialiseWithPMAndRange(project, layerId, view, frames, first, last, reserved);
}
bool TrackingExporterHelper::updateSurfacePoints(KORV_ProjectManager const&, unsigned int,
                                                 Anm::Context::Explicit const&, TrackingExporter::Options const&,
                                                 ZN::ProgressRange*)
{
    m_data->points.reset(new TXI::Pos2[FRAMES][5]);
    for (int frame = 0; frame < FRAMES; ++frame)
    {
        double const x = 10 + STEP * frame;
        TXI::Pos2 const row[5] = {{x, 30}, {x + 40, 30}, {x, 50}, {x + 40, 50}, {x + 20, 40}};
        std::copy_n(row, 5, m_data->points[frame]);
    }
    return true;
}
boost::shared_array<TXI::Pos2[5]> TrackingExporterHelper::surfacePoints() const
{
    return m_data->points;
}
void TrackingExporterHelper::buildTransformDataFromSurfaceMotion(bool, bool, unsigned int)
{
    for (int frame = 0; frame < FRAMES; ++frame)
    {
        m_data->samples[frame] = {static_cast<float>(frame), 30 + STEP * frame, 60, 1, 0};
    }
}
std::map<int, TransformSample> const& TrackingExporterHelper::transformSamples() const
{
    return m_data->samples;
}
void TrackingExporterHelper::makeCornerPinDataRelative()
{
}
QStringList TrackingExporterHelper::failureMessages() const
{
    return {};
}

}
