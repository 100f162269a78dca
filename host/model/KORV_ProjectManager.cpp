#include "marlohost/FrameNumbers.h"
#include "Project.h"

#include <algorithm>

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

KORV_SelectionManager const* KORV_ProjectManager::pGetSelectionManager() const
{
    return sm();
}

boost::shared_ptr<KORV_SelectionManager> KORV_ProjectManager::selectionManager() const
{
    return m_data->selection;
}

KORV_FrameManager* KORV_ProjectManager::fm()
{
    return m_data->frames.get();
}

KORV_FrameManager const* KORV_ProjectManager::fm() const
{
    return m_data->frames.get();
}

KORV_FrameManager* KORV_ProjectManager::frameManager()
{
    return fm();
}

KORV_FrameManager const* KORV_ProjectManager::frameManager() const
{
    return fm();
}

KORV_FrameManager* KORV_ProjectManager::pGetFrameManager()
{
    return fm();
}

KORV_FrameManager const* KORV_ProjectManager::pGetFrameManager() const
{
    return fm();
}

KORV_ParameterManager* KORV_ProjectManager::parameterManager()
{
    return m_data->parameters.get();
}

KORV_ParameterManager const* KORV_ProjectManager::parameterManager() const
{
    return m_data->parameters.get();
}

KORV_ParameterManager* KORV_ProjectManager::pGetParameterManager()
{
    return parameterManager();
}

KORV_ParameterManager const* KORV_ProjectManager::pGetParameterManager() const
{
    return parameterManager();
}

KORV_ToolManager* KORV_ProjectManager::toolManager()
{
    return m_data->tools.get();
}

KORV_ToolManager const* KORV_ProjectManager::toolManager() const
{
    return m_data->tools.get();
}

KV::RenderingContext* KORV_ProjectManager::renderingContext() const
{
    return m_data->rendering.get();
}

KORV_Layer* KORV_ProjectManager::currentLayer() const
{
    return m_data->currentLayer;
}

Anm::Context const& KORV_ProjectManager::currentFrame() const
{
    return m_data->currentFrame;
}

Anm::View KORV_ProjectManager::currentView() const
{
    return m_data->currentView;
}

Anm::Views const* KORV_ProjectManager::views() const
{
    return m_data->views.get();
}

ProjectProperties const& KORV_ProjectManager::projProps() const
{
    return *m_data->properties;
}

QString KORV_ProjectManager::projectFilePath() const
{
    return m_data->filePath;
}

unsigned int KORV_ProjectManager::playbackInPoint(bool shown) const
{
    return shown ? shownFrame(m_data->playbackIn) : m_data->playbackIn;
}

unsigned int KORV_ProjectManager::playbackOutPoint(bool shown) const
{
    return shown ? shownFrame(m_data->playbackOut) : m_data->playbackOut;
}

unsigned int KORV_ProjectManager::shownFrame(unsigned int frame) const
{
    MarloHost::FrameNumbers const numbers(m_data->offset, m_data->interlaced);
    return static_cast<unsigned int>(numbers.shown(static_cast<int>(frame)));
}

double KORV_ProjectManager::frameRate() const
{
    return m_data->model.frameRate;
}

int KORV_ProjectManager::frameOffset() const
{
    return m_data->offset;
}

int KORV_ProjectManager::frameCount() const
{
    return m_data->model.clips.front().frameCount;
}

Korvane::PluginHost* KORV_ProjectManager::pluginHost() const
{
    return m_data->services.pluginHost.get();
}

boost::shared_ptr<ApplicationContext const> KORV_ProjectManager::applicationContext() const
{
    return m_data->services.applicationContext;
}

Korvane::Callbacks& KORV_ProjectManager::callbacks() const
{
    return *m_data->services.callbacks;
}

ZN::Scene3DParameterSet& KORV_ProjectManager::scene3DParameters() const
{
    return *m_data->scene;
}

KORV_ProjectManager::Data& KORV_ProjectManager::data()
{
    return *m_data;
}

KORV_ProjectManager::Data const& KORV_ProjectManager::data() const
{
    return *m_data;
}

KORV_SelectionManager::KORV_SelectionManager(std::unique_ptr<Data> data) : m_data(std::move(data))
{
}

KORV_SelectionManager::~KORV_SelectionManager() = default;

boost::shared_ptr<KORV_Layer> KORV_SelectionManager::findLayer(unsigned int id, bool) const
{
    // Ids are positions in the stack, from 1.
    return id >= 1 && id <= m_data->stack.size() ? m_data->stack[id - 1] : nullptr;
}

boost::shared_ptr<Korvane::LayerBase> KORV_SelectionManager::layerFromID(QString const& id) const
{
    auto const hasId = [&](auto const& item) { return item->textID() == id; };
    auto const layer = std::find_if(m_data->stack.begin(), m_data->stack.end(), hasId);
    if (layer != m_data->stack.end())
    {
        return *layer;
    }
    auto const group = std::find_if(m_data->groups.begin(), m_data->groups.end(), hasId);
    return group != m_data->groups.end() ? *group : nullptr;
}

KORV_Layer* KORV_SelectionManager::layerFromNumericID(unsigned int id, bool includeDeleted) const
{
    return findLayer(id, includeDeleted).get();
}

QVector<boost::shared_ptr<Korvane::LayerBase>> KORV_SelectionManager::findLayers(QString const& name, bool) const
{
    QVector<boost::shared_ptr<Korvane::LayerBase>> found;
    for (boost::shared_ptr<KORV_Layer> const& layer : m_data->stack)
    {
        if (layer->name() == name)
        {
            found.push_back(layer);
        }
    }
    return found;
}

QVector<boost::shared_ptr<KORV_Layer const>> KORV_SelectionManager::layers(QFlags<Korvane::ItemsQuery> query) const
{
    QVector<boost::shared_ptr<KORV_Layer const>> found;
    for (boost::shared_ptr<KORV_Layer> const& layer : m_data->stack)
    {
        bool const hides = query.testFlag(Korvane::VisibleItems) && layer->isHidden(true);
        bool const unselected = query.testFlag(Korvane::SelectedItems) && !layer->isSelected();
        if (!hides && !unselected)
        {
            found.push_back(layer);
        }
    }
    return found;
}

KORV_Layer const* KORV_SelectionManager::topLayer() const
{
    return m_data->stack.empty() ? nullptr : m_data->stack.front().get();
}

bool KORV_SelectionManager::hasLayers() const
{
    return !m_data->stack.empty();
}

std::map<unsigned int, boost::shared_ptr<Korvane::ItemItf>> const& KORV_SelectionManager::layerItems() const
{
    return m_data->items;
}

KORV_FrameManager::KORV_FrameManager(std::unique_ptr<Data> data) : m_data(std::move(data))
{
}

KORV_FrameManager::~KORV_FrameManager() = default;

bool KORV_FrameManager::hasClip(unsigned int clipId) const
{
    return getClip(clipId) != nullptr;
}

KORV_Clip const* KORV_FrameManager::getClip(unsigned int clipId) const
{
    return m_data->clips->getClip(clipId);
}

KORV_ParameterManager::KORV_ParameterManager(std::unique_ptr<Data> data) : m_data(std::move(data))
{
}

KORV_ParameterManager::~KORV_ParameterManager() = default;

KORV_Clip const* KORV_ParameterManager::getClip(unsigned int clipId) const
{
    auto const found = m_data->clips.find(clipId);
    return found == m_data->clips.end() ? nullptr : found->second.get();
}

ZN_BaseClipInfo const* KORV_ParameterManager::getBaseClipInfo(unsigned int clipId) const
{
    KORV_Clip const* const clip = getClip(clipId);
    return clip ? &clip->info() : nullptr;
}

ZN_ClipInfo const* KORV_ParameterManager::getClipInfo(unsigned int clipId, bool) const
{
    KORV_Clip const* const clip = getClip(clipId);
    return clip ? &clip->info() : nullptr;
}

QString KORV_ParameterManager::getFrameSourceFile(KORV_Clip const& clip, Anm::Context::Explicit const& context,
                                                  bool) const
{
    ZN_ClipInfo const& info = clip.info();
    Anm::View const& view = context.view();
    unsigned int const width = info.indexWidth(view, Anm::View::Mapped);
    if (info.footageKind() != ZN_ClipInfo::ImageSequence || width == 0)
    {
        return info.firstFileName();
    }
    int const fileFrame = info.bIsInterlaced() ? context.frameValue() / 2 : context.frameValue();
    return info.clipDirectory(view, Anm::View::Mapped) + QLatin1Char('/') +
           info.clipPrefix(view, Anm::View::Mapped).escaped() +
           QStringLiteral("%1").arg(info.minIndex(view, Anm::View::Mapped) + fileFrame, static_cast<int>(width), 10,
                                    QLatin1Char('0')) +
           info.clipSuffix(view, Anm::View::Mapped).escaped();
}

unsigned int KORV_ParameterManager::clipIDForName(QString const& name) const
{
    return m_data->idByName.value(name, 0);
}

KORV_ToolManager::KORV_ToolManager(unsigned int currentLayerId) : m_currentLayerId(currentLayerId)
{
}

unsigned int KORV_ToolManager::currentLayerID() const
{
    return m_currentLayerId;
}

KV::RenderingContext::RenderingContext(unsigned int displayClipId) : m_displayClipId(displayClipId)
{
}

unsigned int KV::RenderingContext::getDisplayClipID() const
{
    return m_displayClipId;
}

ProjectProperties::ProjectProperties(std::unique_ptr<Data> data) : m_data(std::move(data))
{
}

ProjectProperties::~ProjectProperties() = default;

QSize ProjectProperties::size() const
{
    return m_data->size;
}

double ProjectProperties::par() const
{
    return m_data->par;
}

int ProjectProperties::trimInPoint() const
{
    return m_data->trimIn;
}

int ProjectProperties::start() const
{
    return m_data->start;
}

boost::shared_ptr<Anm::Views const> ProjectProperties::views() const
{
    return m_data->views;
}
