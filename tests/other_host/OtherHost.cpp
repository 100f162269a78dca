// A host that shares nothing with the reference host but the headers of src/Host. Of
// their bodies it has those that the list of formats and one corner pin need; the others
// are stubs that print their name and abort (host_symbols.py). Where the test runs into
// one of these, its body belongs here. Destructors of the project's objects are stubs,
// too, as the project is never taken down; but a class of objects with virtual functions
// needs its own, since the vtable comes with it.
//
// The one layer, number 7, was tracked on clip 3, which shows host frame 0 as 1001. Its
// surface is 40 x 20 pixels, with the lower left corner at (10, 30) in the first of three
// frames, and slides by (5, 0.25) a frame.

#include "Host/CameraSolveExporter.h"
#include "Host/ExportedShape.h"
#include "Host/ExporterHelper.h"
#include "Host/KORV_Clip.h"
#include "Host/KORV_Layer.h"
#include "Host/KORV_ProjectManager.h"
#include "Host/Product.h"
#include "Host/ShapeExporter.h"

namespace
{

constexpr unsigned int LAYER = 7;
constexpr unsigned int CLIP = 3;
constexpr int FRAMES = 3;

}

// Static data, which can't be stubs

double const KORV_NumericOptimiser::s_matrixScale = 1;
QString const Korvane::ShapeExporter::ERROR_FILENAME;

// What is offered

QSet<QString> Product::trackExportOptions()
{
    return {"flowbox", "vegas"};
}
QSet<QString> Product::trackExportOptionsExtra()
{
    return {"nuke"};
}

// The values that say when and for which eye

namespace Anm
{

Time::Time(double frame) : m_frame(frame)
{
}
Time Time::fromInt(int frame)
{
    return Time(frame);
}
double Time::value() const
{
    return m_frame;
}
View::View(int id) : m_id(id)
{
}
View View::defaultView()
{
    return View(0);
}
ProxyScale::ProxyScale(Enum scale) : m_scale(scale)
{
}
BaseContext::BaseContext(Time const& time, View const& view, ProxyScale const& scale)
    : m_time(time), m_view(view), m_scale(scale)
{
}
Time const& BaseContext::time() const
{
    return m_time;
}
View const& BaseContext::view() const
{
    return m_view;
}
Context::Context(Time const& time, View const& view, ProxyScale const& scale) : BaseContext(time, view, scale)
{
}
Context::Explicit::Explicit(BaseContext const& context) : BaseContext(context)
{
}

}

// The project

struct KORV_Clip::Data
{
};
KORV_Clip::KORV_Clip(std::unique_ptr<Data> data) : m_data(std::move(data))
{
}

struct KORV_Layer::Data
{
    QString name = "Slider";
};
KORV_Layer::KORV_Layer(std::unique_ptr<Data> data) : m_data(std::move(data))
{
}
KORV_Layer::~KORV_Layer() = default;
QString const& KORV_Layer::name() const
{
    return m_data->name;
}
unsigned int KORV_Layer::trackingInputClipID(bool, bool, bool) const
{
    return CLIP;
}

struct KORV_SelectionManager::Data
{
    KORV_Layer layer{std::make_unique<KORV_Layer::Data>()};
};
KORV_SelectionManager::KORV_SelectionManager(std::unique_ptr<Data> data) : m_data(std::move(data))
{
}
KORV_Layer* KORV_SelectionManager::layerFromNumericID(unsigned int id, bool) const
{
    return id == LAYER ? &m_data->layer : nullptr;
}

struct KORV_ParameterManager::Data
{
    KORV_Clip clip{nullptr};
};
KORV_ParameterManager::KORV_ParameterManager(std::unique_ptr<Data> data) : m_data(std::move(data))
{
}
KORV_Clip const* KORV_ParameterManager::getClip(unsigned int id) const
{
    return id == CLIP ? &m_data->clip : nullptr;
}

struct KORV_ProjectManager::Data
{
    KORV_SelectionManager selection{std::make_unique<KORV_SelectionManager::Data>()};
    KORV_ParameterManager parameters{std::make_unique<KORV_ParameterManager::Data>()};
};
KORV_ProjectManager::KORV_ProjectManager(std::unique_ptr<Data> data) : m_data(std::move(data))
{
}
KORV_ProjectManager::~KORV_ProjectManager() = default;
KORV_SelectionManager* KORV_ProjectManager::sm()
{
    return &m_data->selection;
}
KORV_SelectionManager* KORV_ProjectManager::pGetSelectionManager()
{
    return &m_data->selection;
}
KORV_ParameterManager* KORV_ProjectManager::pGetParameterManager()
{
    return &m_data->parameters;
}

KORV_ProjectManager& otherProject()
{
    static auto* const project = new KORV_ProjectManager(std::make_unique<KORV_ProjectManager::Data>());
    return *project;
}

// What exporters hold and derive from

namespace Korvane
{

TrackingExporter::TrackingExporter() = default;
TrackingExporter::~TrackingExporter() = default;

struct ExporterHelperBase::Data
{
};
ExporterHelperBase::ExporterHelperBase(bool)
{
}
ExporterHelperBase::~ExporterHelperBase() = default;
void ExporterHelperBase::setClip(KORV_Clip const&)
{
}
int ExporterHelperBase::baseClipOffset() const
{
    return 1001;
}
Anm::Time ExporterHelperBase::firstFrame() const
{
    return Anm::Time::fromInt(0);
}
int ExporterHelperBase::numFrames() const
{
    return FRAMES;
}
float ExporterHelperBase::frameStep() const
{
    return 1;
}
float ExporterHelperBase::verticalScale() const
{
    return 1;
}

struct TrackingExporterHelper::Data
{
};
TrackingExporterHelper::TrackingExporterHelper() : ExporterHelperBase(true)
{
}
TrackingExporterHelper::~TrackingExporterHelper() = default;
void TrackingExporterHelper::initialiseWithPMAndRange(KORV_ProjectManager const&, unsigned int, Anm::View const&, int,
                                                      Anm::Time, Anm::Time, bool)
{
}
bool TrackingExporterHelper::updateSurfacePoints(KORV_ProjectManager const&, unsigned int,
                                                 Anm::Context::Explicit const&, TrackingExporter::Options const&,
                                                 ZN::ProgressRange*)
{
    return true;
}
boost::shared_array<TXI::Pos2[5]> TrackingExporterHelper::surfacePoints() const
{
    boost::shared_array<TXI::Pos2[5]> points(new TXI::Pos2[FRAMES][5]);
    for (int frame = 0; frame < FRAMES; ++frame)
    {
        double const x = 10 + 5 * frame;
        double const y = 30 + 0.25 * frame;
        points[frame][TrackingExporterTypes::LowerLeft] = {x, y};
        points[frame][TrackingExporterTypes::LowerRight] = {x + 40, y};
        points[frame][TrackingExporterTypes::UpperLeft] = {x, y + 20};
        points[frame][TrackingExporterTypes::UpperRight] = {x + 40, y + 20};
    }
    return points;
}
QStringList TrackingExporterHelper::failureMessages() const
{
    return {};
}

}
