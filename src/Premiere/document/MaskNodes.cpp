#include "Premiere/document/MaskNodes.h"

#include "Premiere/document/Elements.h"

#include <algorithm>

namespace Export::Premiere
{

namespace
{

// Of the hidden parameters.
constexpr quint32 CHECK_BOX = 4;
constexpr quint32 GROUP_START = 11;
constexpr quint32 GROUP_END = 12;
constexpr quint32 HIDDEN = 16;

constexpr qint32 HOLD = 4;

}

IMask::~IMask() = default;
IMaskContainer::~IMaskContainer() = default;

VideoFilterComponent::VideoFilterComponent()
    : IndexedObject(QStringLiteral("VideoFilterComponent"),
                    QUuid(QStringLiteral("d10da199-beea-4dd1-b941-ed3a78766d50")), 7)
{
}

MaskNode::MaskNode(Environment const& environment) : m_name(QStringLiteral("marlo Mask"))
{
    auto const add = [this](auto const& param)
    {
        children.append(param);
        m_params.append(param);
        return param;
    };
    auto const hidden = [](QString const& name, qint32 id, quint32 control, bool upper)
    { return boost::make_shared<HiddenMaskParam>(name, id, control, upper); };
    add(hidden(QStringLiteral("Track:"), 1, GROUP_START, false));
    add(hidden(QString(), 2, HIDDEN, true));
    add(hidden(QString(), 3, HIDDEN, true));
    add(hidden(QString(), 4, HIDDEN, false));
    add(hidden(QString(), 5, GROUP_END, false));
    m_path = add(boost::make_shared<MaskPathNode>(QStringLiteral("Mask Path"), 6, environment));
    add(boost::make_shared<MaskFeatherParam>());
    m_opacity = add(boost::make_shared<MaskOpacityParam>());
    add(boost::make_shared<MaskExpansionParam>());
    m_inverted = add(hidden(QString(), -1, CHECK_BOX, true));
    add(boost::make_shared<TrackingMethodParam>());
}

bool MaskNode::isExportable() const
{
    return m_path->isExportable();
}

void MaskNode::writeContent(QDomElement& element) const
{
    ElementWriter const writer(element);
    ElementWriter const component = writer.group(QStringLiteral("Component"), 4);
    ElementWriter const params = component.group(QStringLiteral("Params"), 1);
    for (int index = 0; index < m_params.size(); ++index)
    {
        params.indexedReference(QStringLiteral("Param"), index, *m_params[index]);
    }
    component.integer(QStringLiteral("ID"), 0)
        .text(QStringLiteral("DisplayName"), QStringLiteral("Mask"))
        .text(QStringLiteral("InstanceName"), m_name)
        .boolean(QStringLiteral("Bypass"), false)
        .boolean(QStringLiteral("Intrinsic"), false);
    writer.text(QStringLiteral("MatchName"), QStringLiteral("AE.ADBE AEMask"))
        .integer(QStringLiteral("VideoFilterType"), 2);
}

void MaskNode::setInverted(bool inverted)
{
    m_inverted->value = inverted;
}

void MaskNode::addKey(double time, boost::shared_ptr<Mask::Shape const> const& shape)
{
    m_path->addKey(time, shape);
}

void MaskNode::setName(QString const& name)
{
    m_name = name;
}

void MaskNode::setRange(double first, double last, double step)
{
    m_opacity->timeVarying = true;
    m_opacity->keys += {{first - step, 0, HOLD}, {first, 100, HOLD}, {last + step, 0, HOLD}};
}

MaskContainerNode::MaskContainerNode(Environment environment) : m_environment(std::move(environment))
{
}

boost::shared_ptr<IMask> MaskContainerNode::addMask()
{
    auto const mask = addChild<MaskNode>(m_environment);
    m_masks.append(mask);
    mask->setName(QStringLiteral("marlo Mask %1").arg(m_masks.size()));
    return mask;
}

bool MaskContainerNode::isExportable() const
{
    return std::any_of(m_masks.begin(), m_masks.end(), [](auto const& mask) { return mask->isExportable(); });
}

BlackAndWhiteVideoFilter::BlackAndWhiteVideoFilter(Environment const& environment)
    : MaskContainerNode(environment), m_dummy(addChild<DummyParam>())
{
}

void BlackAndWhiteVideoFilter::writeContent(QDomElement& element) const
{
    ElementWriter const writer(element);
    ElementWriter const component = writer.group(QStringLiteral("Component"), 4);
    component.group(QStringLiteral("Params"), 1).indexedReference(QStringLiteral("Param"), 0, *m_dummy);
    component.text(QStringLiteral("ID"), QStringLiteral("1"))
        .text(QStringLiteral("DisplayName"), QStringLiteral("Black & White"))
        .boolean(QStringLiteral("Bypass"), false)
        .boolean(QStringLiteral("Intrinsic"), false);
    // A mask that isn't written has no identifier to point to.
    ElementWriter const subComponents = writer.group(QStringLiteral("SubComponents"), 1);
    int index = 0;
    for (boost::shared_ptr<MaskNode> const& mask : masks())
    {
        if (mask->isExportable())
        {
            subComponents.indexedReference(QStringLiteral("SubComponent"), index++, *mask);
        }
    }
    writer.text(QStringLiteral("MatchName"), QStringLiteral("PR.ADBE Black & White"))
        .integer(QStringLiteral("VideoFilterType"), 1);
}

}
