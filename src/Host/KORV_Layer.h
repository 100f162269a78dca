#pragma once
// Layers, groups and what hangs on them.

#include "Host/Anm.h"
#include "Host/AnmParameter.h"
#include "Host/HostApi.h"

#include <QList>
#include <QString>
#include <boost/shared_ptr.hpp>

#include <memory>

class KORV_Layer;

namespace Korvane
{

class LayerGroup;

/// Anything that has a row in the layer list.
class MARLO_HOST_API ItemItf
{
public:
    virtual ~ItemItf();

    virtual QString const& name() const = 0;

    /// @param includeAncestors whether a hidden group hides what is in it
    virtual bool isHidden(bool includeAncestors) const = 0;
    virtual bool isSelected() const = 0;
};

/// A layer or a group of layers.
class MARLO_HOST_API LayerBase : public ItemItf
{
public:
    ~LayerBase() override;

    /// The group that holds this item, null at the top.
    /// @param direct true for the group right above, false for the outermost one
    virtual LayerGroup* parentGroup(bool direct) const = 0;

    /// Whether it is a moving object of the solve.
    virtual bool isMoving() const = 0;
};

class MARLO_HOST_API LayerGroup : public LayerBase
{
public:
    struct Data;

    explicit LayerGroup(std::unique_ptr<Data> data);
    ~LayerGroup() override;

    QString const& name() const override;
    bool isHidden(bool includeAncestors) const override;
    bool isSelected() const override;
    LayerGroup* parentGroup(bool direct) const override;
    bool isMoving() const override;

private:
    std::unique_ptr<Data> m_data;
};

/// A roto contour of a layer.
class MARLO_HOST_API Contour
{
public:
    virtual ~Contour();

    virtual KORV_Layer const& parentLayer() const = 0;

    /// Whether the outline comes from a Veil ML model in this view, so that it
    /// has no control points to export.
    virtual bool isVeilML(Anm::View const& view) const = 0;
};

}

namespace ZN
{

class MARLO_HOST_API Layer
{
public:
    virtual ~Layer();

    /// Stable within one session; never 0.
    virtual unsigned int numericID() const = 0;
    virtual QString const& name() const = 0;
};

}

namespace KV
{

/// The planar surface of a layer.
struct MARLO_HOST_API Surface
{
    /// The frame in which the surface corners were placed.
    Anm::Context referenceFrame;
};

}

/// Marks for stabilized motion.
class MARLO_HOST_API ZN_StabilizeParameterSet
{
public:
    explicit ZN_StabilizeParameterSet(Anm::Parameter<bool> const& fixedFrames);

    /// A true key fixes the picture at its frame.
    Anm::Parameter<bool> const& fixedFrames() const;

private:
    Anm::Parameter<bool> m_fixedFrames;
};

/// A tracked layer. Frames are host frames.
class MARLO_HOST_API KORV_Layer : public Korvane::LayerBase, public ZN::Layer
{
public:
    struct Data;

    explicit KORV_Layer(std::unique_ptr<Data> data);
    ~KORV_Layer() override;

    unsigned int numericID() const override;
    QString const& name() const override;
    bool isHidden(bool includeAncestors) const override;
    bool isSelected() const override;
    Korvane::LayerGroup* parentGroup(bool direct) const override;
    bool isMoving() const override;

    KV::Surface const& surface() const;
    unsigned int getBaseClipID() const;

    /// The clip that is shown inside the surface; 0 for none.
    unsigned int getInsertClipID(Anm::View const& view) const;

    /// The clip that the layer was tracked on.
    unsigned int trackingInputClipID(bool resolve, bool original, bool fallBackToBaseClip) const;

    /// First and last frame of the layer, both included.
    /// @param shown true for numbers as a user sees them
    unsigned int inPoint(bool shown) const;
    unsigned int outPoint(bool shown) const;

    /// First and last frame that stabilizing looks at.
    unsigned int stabilizeRangeStart(Anm::BaseContext const& context) const;
    unsigned int stabilizeRangeEnd(Anm::BaseContext const& context) const;
    ZN_StabilizeParameterSet const& stabilizeParameters() const;

    /// The next layer of the stack, null at the bottom.
    KORV_Layer const* layerBelow() const;

    QList<boost::shared_ptr<Korvane::Contour const>> const& activeContours() const;

    /// The host's own record; opaque to exporters.
    Data const& data() const;

private:
    std::unique_ptr<Data> m_data;
};
