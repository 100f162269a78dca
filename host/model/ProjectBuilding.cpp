// From the plain records of a project file to a project.

#include "Host/KORV_Exception.h"
#include "Parameter.h"
#include "Project.h"
#include "scene/Solve.h"
#include "shapes/Shapes.h"

#include <boost/make_shared.hpp>

#include <algorithm>

namespace MarloHost
{

namespace
{

[[noreturn]] void dangling(char const* what, QString const& name)
{
    throw KORV_BadArgument(__FILE__, __LINE__, QStringLiteral("There is no %1 \"%2\"").arg(QLatin1String(what), name),
                           QString());
}

// Without a film back of its own a clip has one of 36 mm width in the picture's shape.
ZN::FilmType filmOf(ClipModel const& model)
{
    if (model.filmBack)
    {
        return ZN::FilmType(model.filmBack->width, model.filmBack->height, true);
    }
    constexpr double WIDTH = 36.0;
    return ZN::FilmType(WIDTH, WIDTH * model.height / (model.width * model.pixelAspect), false);
}

std::unique_ptr<KORV_Clip> makeClip(ClipModel const& model, double frameRate, unsigned int id)
{
    auto info = std::make_unique<ZN_BaseClipInfo::Data>(
        ZN_BaseClipInfo::Data{&model, ZN::ImageFormat(QSize(model.width, model.height), model.pixelAspect),
                              filmOf(model), static_cast<float>(frameRate)});
    auto data = std::make_unique<KORV_Clip::Data>();
    data->id = id;
    data->model = &model;
    data->info = std::make_unique<ZN_ClipInfo>(std::move(info));
    return std::make_unique<KORV_Clip>(std::move(data));
}

std::unique_ptr<KORV_ParameterManager> makeClips(std::vector<ClipModel> const& models, double frameRate)
{
    auto data = std::make_unique<KORV_ParameterManager::Data>();
    unsigned int id = 0;
    for (ClipModel const& model : models)
    {
        ++id;
        data->clips.emplace(id, makeClip(model, frameRate, id));
        data->idByName.insert(model.name, id);
    }
    return std::make_unique<KORV_ParameterManager>(std::move(data));
}

Anm::Parameter<bool> fixedFrames(StabilizeModel const& model)
{
    auto data = std::make_unique<Anm::Parameter<bool>::Data>();
    for (int const frame : model.fixedFrames)
    {
        data->keys.emplace_back(frame, true);
    }
    return Anm::Parameter<bool>(std::move(data));
}

std::unique_ptr<ZN::Point3DParameterSet> placeInScene(PoseModel const& pose, ZN::Point3DParameterSet const* parent)
{
    return std::make_unique<ZN::Point3DParameterSet>(
        std::make_unique<ZN::Point3DParameterSet::Data>(ZN::Point3DParameterSet::Data{&pose, parent, false}));
}

/// Fills the record of a project step by step; later steps look up what earlier
/// ones made.
class Builder
{
public:
    explicit Builder(KORV_ProjectManager::Data& project) : m_project(project), m_model(project.model)
    {
    }

    void build()
    {
        m_project.views = boost::make_shared<Anm::Views const>(m_model.views);
        m_project.parameters = makeClips(m_model.clips, m_model.frameRate);
        makeGroups();
        makeLayers();
        makeRest();
    }

private:
    ClipModel const& firstClip() const
    {
        return m_model.clips.front();
    }

    int viewIndex(QString const& name) const
    {
        Anm::View const view = name.isEmpty() ? Anm::View::defaultView() : m_project.views->viewForName(name);
        if (view == Anm::View::INVALID())
        {
            dangling("view", name);
        }
        return m_project.views->viewIndex(view);
    }

    unsigned int clipId(QString const& name) const
    {
        unsigned int const id = name.isEmpty() ? 1 : m_project.parameters->clipIDForName(name);
        if (id == 0)
        {
            dangling("clip", name);
        }
        return id;
    }

    Korvane::LayerGroup* group(QString const& name) const
    {
        if (name.isEmpty())
        {
            return nullptr;
        }
        Korvane::LayerGroup* const found = m_groupByName.value(name, nullptr);
        if (!found)
        {
            dangling("group", name);
        }
        return found;
    }

    // A parent may stand behind its child in the file, so the records are made
    // first and linked afterwards.
    void makeGroups()
    {
        std::vector<Korvane::LayerGroup::Data*> records;
        for (GroupModel const& model : m_model.groups)
        {
            auto data = std::make_unique<Korvane::LayerGroup::Data>();
            data->model = &model;
            data->textId = QStringLiteral("group-%1").arg(m_groups.size() + 1);
            records.push_back(data.get());
            m_groups.push_back(boost::make_shared<Korvane::LayerGroup>(std::move(data)));
            if (!m_groupByName.contains(model.name))
            {
                m_groupByName.insert(model.name, m_groups.back().get());
            }
        }
        for (Korvane::LayerGroup::Data* record : records)
        {
            record->parent = group(record->model->parent);
        }
        // Nearest to the scene first, as a pose points to that of its parent.
        for (Korvane::LayerGroup::Data* record : records)
        {
            makeGroupPose(*record);
        }
    }

    void makeGroupPose(Korvane::LayerGroup::Data& record) const
    {
        if (record.points)
        {
            return;
        }
        ZN::Point3DParameterSet const* above = nullptr;
        if (record.parent)
        {
            makeGroupPose(const_cast<Korvane::LayerGroup::Data&>(record.parent->data()));
            above = &record.parent->points();
        }
        record.points = placeInScene(record.model->pose, above);
    }

    std::unique_ptr<KORV_Layer::Data> layerData(LayerModel const& model, unsigned int id) const
    {
        unsigned int const clip = clipId(model.clip);
        auto data = std::make_unique<KORV_Layer::Data>(
            KORV_Layer::Data{&model,
                             id,
                             m_project.parameters->getClip(clip),
                             &m_model.clips[clip - 1],
                             model.insertClip.isEmpty() ? 0 : clipId(model.insertClip),
                             group(model.group),
                             nullptr,
                             model.inPoint.value_or(0),
                             model.outPoint.value_or(m_model.clips[clip - 1].frameCount - 1),
                             {Anm::Context(Anm::Time::fromInt(model.referenceFrame), Anm::View::defaultView())},
                             ZN_StabilizeParameterSet(fixedFrames(model.stabilize)),
                             std::vector<TrackModel const*>(m_project.views->viewCount(), nullptr),
                             unkeyed(model.invert),
                             unkeyed<unsigned int>(model.subtract ? ZN_BLEND_SUBTRACT : ZN_BLEND_ADD),
                             QStringLiteral("layer-%1").arg(id),
                             {},
                             {},
                             {}});
        bool const rides = model.moving && data->group;
        data->points = placeInScene(model.pose, rides ? &data->group->points() : nullptr);
        for (TrackModel const& track : model.tracks)
        {
            data->tracks[static_cast<std::size_t>(viewIndex(track.view))] = &track;
        }
        return data;
    }

    void makeLayers()
    {
        auto data = std::make_unique<KORV_SelectionManager::Data>();
        data->groups = m_groups;
        KORV_Layer::Data* above = nullptr;
        for (LayerModel const& model : m_model.layers)
        {
            unsigned int const id = static_cast<unsigned int>(data->stack.size()) + 1;
            std::unique_ptr<KORV_Layer::Data> record = layerData(model, id);
            KORV_Layer::Data* const here = record.get();
            data->stack.push_back(boost::make_shared<KORV_Layer>(std::move(record)));
            data->items.emplace(id, data->stack.back());
            addShapes(*data->stack.back(), *here, *m_project.views);
            if (above)
            {
                above->below = data->stack.back().get();
            }
            above = here;
        }
        m_project.selection = boost::make_shared<KORV_SelectionManager>(std::move(data));
    }

    KORV_Layer* currentLayer() const
    {
        if (m_model.currentLayer.isEmpty())
        {
            return nullptr;
        }
        auto const found = m_project.selection->findLayers(m_model.currentLayer, false);
        if (found.isEmpty())
        {
            dangling("layer", m_model.currentLayer);
        }
        return static_cast<KORV_Layer*>(found.front().get());
    }

    void makeRest()
    {
        m_project.frames = std::make_unique<KORV_FrameManager>(
            std::make_unique<KORV_FrameManager::Data>(KORV_FrameManager::Data{m_project.parameters.get()}));
        m_project.currentLayer = currentLayer();
        m_project.tools =
            std::make_unique<KORV_ToolManager>(m_project.currentLayer ? m_project.currentLayer->numericID() : 0);
        m_project.rendering = std::make_unique<KV::RenderingContext>(clipId(m_model.displayClip));
        m_project.currentView = m_project.views->view(static_cast<unsigned int>(viewIndex(m_model.currentView)));
        m_project.currentFrame = Anm::Context(Anm::Time::fromInt(m_model.currentFrame), m_project.currentView);

        auto properties = std::make_unique<ProjectProperties::Data>();
        properties->size = QSize(firstClip().width, firstClip().height);
        properties->par = firstClip().pixelAspect;
        properties->trimIn = m_model.trimIn.value_or(0);
        properties->start = firstClip().frameOffset;
        properties->views = m_project.views;
        m_project.properties = std::make_unique<ProjectProperties>(std::move(properties));

        m_project.scene = makeScene(m_model, *m_project.selection);
        m_project.offset = firstClip().frameOffset;
        m_project.interlaced = firstClip().interlaced;
        m_project.playbackIn = static_cast<unsigned int>(m_model.playbackIn.value_or(0));
        m_project.playbackOut = static_cast<unsigned int>(m_model.playbackOut.value_or(firstClip().frameCount - 1));
    }

    KORV_ProjectManager::Data& m_project;
    ProjectModel const& m_model;
    std::vector<boost::shared_ptr<Korvane::LayerGroup>> m_groups;
    QHash<QString, Korvane::LayerGroup*> m_groupByName;
};

class StderrCallbacks : public Korvane::Callbacks
{
public:
    KORV_MESSAGEBOX_REPLY warning(std::string const& title, std::string const& text,
                                  KORV_MESSAGEBOX_STYLE style) const override
    {
        return KORV_MessageBox(nullptr).warning(title, text, style);
    }
};

}

boost::shared_ptr<KORV_ProjectManager> makeProject(ProjectModel const& model, QString const& projectFilePath,
                                                   HostServices const& services)
{
    if (model.clips.empty())
    {
        throw KORV_BadArgument(__FILE__, __LINE__, QStringLiteral("A project needs a clip"), QString());
    }
    auto data = std::make_unique<KORV_ProjectManager::Data>(KORV_ProjectManager::Data{model,
                                                                                      projectFilePath,
                                                                                      services,
                                                                                      {},
                                                                                      {},
                                                                                      {},
                                                                                      {},
                                                                                      {},
                                                                                      {},
                                                                                      {},
                                                                                      {},
                                                                                      nullptr,
                                                                                      Anm::Context::invalid(),
                                                                                      Anm::View::defaultView(),
                                                                                      0,
                                                                                      false,
                                                                                      0,
                                                                                      0});
    if (!data->services.callbacks)
    {
        data->services.callbacks = std::make_shared<StderrCallbacks>();
    }
    carryContoursIntoPlane(data->model);
    Builder(*data).build();
    return boost::make_shared<KORV_ProjectManager>(std::move(data));
}

void setCurrentLayer(KORV_ProjectManager& project, unsigned int layerId)
{
    KORV_Layer* const layer = project.sm()->layerFromNumericID(layerId, false);
    if (layerId != 0 && !layer)
    {
        dangling("layer", QString::number(layerId));
    }
    project.data().currentLayer = layer;
    *project.toolManager() = KORV_ToolManager(layerId);
}

void setCurrentView(KORV_ProjectManager& project, Anm::View const& view)
{
    if (project.views()->viewIndex(view) < 0)
    {
        dangling("view", view.toString());
    }
    KORV_ProjectManager::Data& data = project.data();
    data.currentView = view;
    data.currentFrame = Anm::Context(data.currentFrame.time(), view);
}

}
