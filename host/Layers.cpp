#include "Project.h"
#include "marlohost/FrameNumbers.h"

namespace
{

unsigned int shownNumber(int frame, ZN_BaseClipInfo const& clip)
{
    MarloHost::FrameNumbers const numbers(clip.baseClipOffset(), clip.bIsInterlaced());
    return static_cast<unsigned int>(numbers.shown(frame));
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
Contour::~Contour() = default;

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

KORV_Layer::Data const& KORV_Layer::data() const
{
    return *m_data;
}
