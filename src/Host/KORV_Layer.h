#pragma once
// Layers, groups and what hangs on them.

#include "Host/Anm.h"
#include "Host/AnmParameter.h"
#include "Host/HostApi.h"

#include <QColor>
#include <QList>
#include <QString>
#include <boost/shared_ptr.hpp>

#include <memory>
#include <set>

class KORV_Layer;

namespace ZN
{
class Point3DParameterSet;
namespace MeshTracking
{
class ParameterSet;
}
}

namespace Korvane
{

class Contour;
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

    /// Its place in the 3D scene.
    virtual ZN::Point3DParameterSet const& points() const = 0;

    /// What KORV_SelectionManager::layerFromID takes.
    virtual QString const& textID() const = 0;
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
    ZN::Point3DParameterSet const& points() const override;
    QString const& textID() const override;

    /// The host's own record; opaque to exporters.
    Data const& data() const;

private:
    std::unique_ptr<Data> m_data;
};

/// A control point of a contour; what it stands for is the host's business.
class MARLO_HOST_API ControlPoint
{
public:
    virtual ~ControlPoint();
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

/// How a layer's shapes join those below.
enum ZN_BlendMode : unsigned int
{
    ZN_BLEND_ADD = 0,
    ZN_BLEND_SUBTRACT = 1
};

/// What of a layer a colour is asked for.
enum ZN_SELECTION_COMPONENT : int
{
    ZN_SELECTION_FILL = 0,
    ZN_SELECTION_OUTLINE = 1
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
    ZN::Point3DParameterSet const& points() const override;
    QString const& textID() const override;

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

    /// The contours that are in use, in drawing order.
    QList<boost::shared_ptr<Korvane::Contour const>> const& activeContours() const;

    /// The tracked mesh, null where the layer has none.
    std::shared_ptr<ZN::MeshTracking::ParameterSet> trackMesh() const;

    /// Adds the host frames in which a contour of the layer is keyed.
    void getLayerKeyframes(std::set<Anm::Frame>& frames, Anm::View const& view) const;

    /// Whether what is outside of the contours belongs to the layer, not what is inside.
    Anm::Parameter<bool> const& invert() const;

    /// How the layer joins those below it; a value of ZN_BlendMode.
    Anm::Parameter<unsigned int> const& blendMode() const;

    /// The colour that the layer is drawn in, and that of its outline.
    virtual QColor colour() const;
    QColor fillColour() const;
    QColor overlayColour() const;

    /// The same as components from 0 to 1.
    void vGetColor(ZN_SELECTION_COMPONENT component, float* red, float* green, float* blue) const;

    /// The host's own record; opaque to exporters.
    Data const& data() const;

private:
    std::unique_ptr<Data> m_data;
};
