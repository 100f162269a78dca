#include "marlohost/FrameNumbers.h"
#include "Project.h"

namespace
{

unsigned int shownNumber(int frame, ZN_BaseClipInfo const& clip)
{
    MarloHost::FrameNumbers const numbers(clip.baseClipOffset(), clip.bIsInterlaced());
    return static_cast<unsigned int>(numbers.shown(frame));
}

QColor colourOf(std::array<int, 4> const& components)
{
    return QColor(components[0], components[1], components[2], components[3]);
}

bool hiddenByGroup(Korvane::LayerGroup const* group)
{
    return group && group->isHidden(true);
}

Korvane::LayerGroup* outermost(Korvane::LayerGroup* group)
{
    while (group && group->parentGroup(true))
    {
        group = group->parentGroup(true);
    }
    return group;
}

}

namespace Korvane
{

ItemItf::~ItemItf() = default;
LayerBase::~LayerBase() = default;
ControlPoint::~ControlPoint() = default;

LayerGroup::LayerGroup(std::unique_ptr<Data> data) : m_data(std::move(data))
{
}

LayerGroup::~LayerGroup() = default;

QString const& LayerGroup::name() const
{
    return m_data->model->name;
}

bool LayerGroup::isHidden(bool includeAncestors) const
{
    return m_data->model->hidden || (includeAncestors && hiddenByGroup(m_data->parent));
}

bool LayerGroup::isSelected() const
{
    return m_data->model->selected;
}

LayerGroup* LayerGroup::parentGroup(bool direct) const
{
    return direct ? m_data->parent : outermost(m_data->parent);
}

bool LayerGroup::isMoving() const
{
    return m_data->model->moving;
}

ZN::Point3DParameterSet const& LayerGroup::points() const
{
    return *m_data->points;
}

QString const& LayerGroup::textID() const
{
    return m_data->textId;
}

LayerGroup::Data const& LayerGroup::data() const
{
    return *m_data;
}

}

ZN::Layer::~Layer() = default;

ZN_StabilizeParameterSet::ZN_StabilizeParameterSet(Anm::Parameter<bool> const& fixedFrames) : m_fixedFrames(fixedFrames)
{
}

Anm::Parameter<bool> const& ZN_StabilizeParameterSet::fixedFrames() const
{
    return m_fixedFrames;
}

KORV_Layer::KORV_Layer(std::unique_ptr<Data> data) : m_data(std::move(data))
{
}

KORV_Layer::~KORV_Layer() = default;

unsigned int KORV_Layer::numericID() const
{
    return m_data->id;
}

QString const& KORV_Layer::name() const
{
    return m_data->model->name;
}

bool KORV_Layer::isHidden(bool includeAncestors) const
{
    return m_data->model->hidden || (includeAncestors && hiddenByGroup(m_data->group));
}

bool KORV_Layer::isSelected() const
{
    return m_data->model->selected;
}

Korvane::LayerGroup* KORV_Layer::parentGroup(bool direct) const
{
    return direct ? m_data->group : outermost(m_data->group);
}

bool KORV_Layer::isMoving() const
{
    return m_data->model->moving;
}

ZN::Point3DParameterSet const& KORV_Layer::points() const
{
    return *m_data->points;
}

QString const& KORV_Layer::textID() const
{
    return m_data->textId;
}

KV::Surface const& KORV_Layer::surface() const
{
    return m_data->surface;
}

unsigned int KORV_Layer::getBaseClipID() const
{
    return m_data->clip->id();
}

unsigned int KORV_Layer::getInsertClipID(Anm::View const&) const
{
    return m_data->insertClipId;
}

unsigned int KORV_Layer::trackingInputClipID(bool, bool, bool) const
{
    return m_data->clip->id();
}

unsigned int KORV_Layer::inPoint(bool shown) const
{
    return shown ? shownNumber(m_data->inPoint, m_data->clip->info()) : static_cast<unsigned int>(m_data->inPoint);
}

unsigned int KORV_Layer::outPoint(bool shown) const
{
    return shown ? shownNumber(m_data->outPoint, m_data->clip->info()) : static_cast<unsigned int>(m_data->outPoint);
}

unsigned int KORV_Layer::stabilizeRangeStart(Anm::BaseContext const&) const
{
    return static_cast<unsigned int>(m_data->model->stabilize.rangeStart.value_or(m_data->inPoint));
}

unsigned int KORV_Layer::stabilizeRangeEnd(Anm::BaseContext const&) const
{
    return static_cast<unsigned int>(m_data->model->stabilize.rangeEnd.value_or(m_data->outPoint));
}

ZN_StabilizeParameterSet const& KORV_Layer::stabilizeParameters() const
{
    return m_data->stabilize;
}

KORV_Layer const* KORV_Layer::layerBelow() const
{
    return m_data->below;
}

QList<boost::shared_ptr<Korvane::Contour const>> const& KORV_Layer::activeContours() const
{
    return m_data->contours;
}

std::shared_ptr<ZN::MeshTracking::ParameterSet> KORV_Layer::trackMesh() const
{
    return m_data->mesh;
}

void KORV_Layer::getLayerKeyframes(std::set<Anm::Frame>& frames, Anm::View const&) const
{
    for (MarloHost::ContourModel const& contour : m_data->model->contours)
    {
        for (std::size_t key = 0; contour.active && key < contour.keys.size(); ++key)
        {
            frames.insert(Anm::Frame::fromInt(contour.keys[key].frame));
        }
    }
}

Anm::Parameter<bool> const& KORV_Layer::invert() const
{
    return m_data->invert;
}

Anm::Parameter<unsigned int> const& KORV_Layer::blendMode() const
{
    return m_data->blendMode;
}

QColor KORV_Layer::colour() const
{
    return fillColour();
}

QColor KORV_Layer::fillColour() const
{
    return colourOf(m_data->model->colour);
}

QColor KORV_Layer::overlayColour() const
{
    return colourOf(m_data->model->overlayColour.value_or(m_data->model->colour));
}

void KORV_Layer::vGetColor(ZN_SELECTION_COMPONENT component, float* red, float* green, float* blue) const
{
    QColor const colour = component == ZN_SELECTION_OUTLINE ? overlayColour() : fillColour();
    *red = static_cast<float>(colour.redF());
    *green = static_cast<float>(colour.greenF());
    *blue = static_cast<float>(colour.blueF());
}

KORV_Layer::Data const& KORV_Layer::data() const
{
    return *m_data;
}
