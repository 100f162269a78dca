#pragma once
// The root of a project and the managers that it owns.

#include "Host/Anm.h"
#include "Host/ExportEnums.h"
#include "Host/HostApi.h"
#include "mtx/Camera.h"

#include <QFlags>
#include <QList>
#include <QObject>
#include <QSize>
#include <QString>
#include <QVector>
#include <boost/enable_shared_from_this.hpp>
#include <boost/shared_ptr.hpp>

#include <map>
#include <memory>

class ApplicationContext;
class KORV_Clip;
class KORV_FrameManager;
class KORV_Layer;
class KORV_ParameterManager;
class KORV_SelectionManager;
class KORV_ToolManager;
class ProjectProperties;
class ZN_BaseClipInfo;
class ZN_ClipInfo;

namespace Korvane
{
class Callbacks;
class ItemItf;
class LayerBase;
class PluginHost;
enum ItemsQuery : int;
}
namespace KV
{
class RenderingContext;
}
namespace ZN
{
class Scene3DParameterSet;
}

class MARLO_HOST_API KORV_ProjectManager : public QObject, public boost::enable_shared_from_this<KORV_ProjectManager>
{
public:
    struct Data;

    explicit KORV_ProjectManager(std::unique_ptr<Data> data);
    ~KORV_ProjectManager() override;
    KORV_ProjectManager(KORV_ProjectManager const&) = delete;
    KORV_ProjectManager& operator=(KORV_ProjectManager const&) = delete;

    KORV_SelectionManager* sm();
    KORV_SelectionManager const* sm() const;
    KORV_SelectionManager* pGetSelectionManager();
    KORV_SelectionManager const* pGetSelectionManager() const;
    boost::shared_ptr<KORV_SelectionManager> selectionManager() const;

    KORV_FrameManager* fm();
    KORV_FrameManager const* fm() const;
    KORV_FrameManager* frameManager();
    KORV_FrameManager const* frameManager() const;
    KORV_FrameManager* pGetFrameManager();
    KORV_FrameManager const* pGetFrameManager() const;

    KORV_ParameterManager* parameterManager();
    KORV_ParameterManager const* parameterManager() const;
    KORV_ParameterManager* pGetParameterManager();
    KORV_ParameterManager const* pGetParameterManager() const;

    KORV_ToolManager* toolManager();
    KORV_ToolManager const* toolManager() const;

    KV::RenderingContext* renderingContext() const;

    /// Null when no layer is current.
    KORV_Layer* currentLayer() const;
    Anm::Context const& currentFrame() const;
    Anm::View currentView() const;

    /// Never null.
    Anm::Views const* views() const;
    ProjectProperties const& projProps() const;

    /// Empty for a project that was never saved.
    QString projectFilePath() const;

    /// The playback range, both ends included.
    /// @param shown true for numbers as a user sees them, false for host frames
    unsigned int playbackInPoint(bool shown) const;
    unsigned int playbackOutPoint(bool shown) const;

    /// Frames (not fields) per second.
    double frameRate() const;

    /// What is added to a host frame to show it: the base offset of the first clip.
    int frameOffset() const;

    /// Host frames of the project: those of the first clip.
    int frameCount() const;

    /// Null when the program isn't a plug-in.
    Korvane::PluginHost* pluginHost() const;

    /// Null in plug-in and batch use.
    boost::shared_ptr<ApplicationContext const> applicationContext() const;

    Korvane::Callbacks& callbacks() const;
    ZN::Scene3DParameterSet& scene3DParameters() const;

    /// A host frame as a user sees it: offset added, fields halved to frames.
    unsigned int shownFrame(unsigned int frame) const;

    /// The host's own record; opaque to exporters.
    Data& data();
    Data const& data() const;

private:
    std::unique_ptr<Data> m_data;
};

/// The ordered layer stack, selection and look-ups.
class MARLO_HOST_API KORV_SelectionManager
{
public:
    struct Data;

    explicit KORV_SelectionManager(std::unique_ptr<Data> data);
    ~KORV_SelectionManager();
    KORV_SelectionManager(KORV_SelectionManager const&) = delete;
    KORV_SelectionManager& operator=(KORV_SelectionManager const&) = delete;

    /// The layer of that id or null. Callers pass false.
    KORV_Layer* layerFromNumericID(unsigned int id, bool includeDeleted) const;
    boost::shared_ptr<KORV_Layer> findLayer(unsigned int id, bool includeDeleted) const;

    /// All layers of that name, top of the stack first. Callers pass false.
    QVector<boost::shared_ptr<Korvane::LayerBase>> findLayers(QString const& name, bool includeGroups) const;

    /// The layer or group of that text id; null when there is none.
    boost::shared_ptr<Korvane::LayerBase> layerFromID(QString const& id) const;

    /// All layers from the top of the stack when given no flags.
    QVector<boost::shared_ptr<KORV_Layer const>> layers(QFlags<Korvane::ItemsQuery> query) const;

    KORV_Layer const* topLayer() const;
    bool hasLayers() const;

    /// Whether the layer has tracking data of its own at the frame and in the view of the
    /// context.
    bool isLayerTrackedAtFrame(KORV_Layer const& layer, Anm::Context context) const;

    /// Raster of the clip that the layer was tracked on, of one field in interlaced material.
    /// Parts of pixels of a smaller scale count as pixels.
    QSize layerFrameSize(KORV_Layer const& layer, Anm::ProxyScale const& scale) const;

    /// The motion of the layer's plane as the camera of its base clip sees it: with H the
    /// motion in pixels (y up), K the matrix of KORV_Clip::camera() with y0 measured from
    /// the bottom edge, and D = diag(1, -1, 1), it is
    ///
    ///     D inverse(K(frame)) H(frame) K(start) D.
    ///
    /// H goes from the surface's reference frame to the frame; stabilized motion brings the
    /// plane at the frame to where it is in the start frame. A frame that can't be used takes
    /// the H of the nearest one that can; without any the plane stands still.
    ///
    /// @param context frame and view that the motion is asked of
    /// @param start the frame whose camera the motion starts from; its view has no effect
    /// @param standsIn set to whether H isn't that of the frame itself; may be null
    Mtx_Mat33 layerTransform(KORV_Layer const& layer, Anm::Context const& context, ZN_TRACKING_OPTION option,
                             Anm::Context const& start, bool* standsIn) const;

    /// The layers by numeric id.
    std::map<unsigned int, boost::shared_ptr<Korvane::ItemItf>> const& layerItems() const;

private:
    std::unique_ptr<Data> m_data;
};

namespace Korvane
{

/// Narrows what KORV_SelectionManager::layers gives. Exporters hand on these numbers as they
/// find them in their options.
enum ItemsQuery : int
{
    SelectedItems = 8,
    VisibleItems = 128
};

}

/// Clips as images.
class MARLO_HOST_API KORV_FrameManager
{
public:
    struct Data;

    explicit KORV_FrameManager(std::unique_ptr<Data> data);
    ~KORV_FrameManager();
    KORV_FrameManager(KORV_FrameManager const&) = delete;
    KORV_FrameManager& operator=(KORV_FrameManager const&) = delete;

    /// Whether the clip table has a clip of this id.
    bool hasClip(unsigned int clipId) const;

    /// The clip of this id, null when there is none.
    KORV_Clip const* getClip(unsigned int clipId) const;

private:
    std::unique_ptr<Data> m_data;
};

/// Clips and what is set for each.
class MARLO_HOST_API KORV_ParameterManager
{
public:
    struct Data;

    explicit KORV_ParameterManager(std::unique_ptr<Data> data);
    ~KORV_ParameterManager();
    KORV_ParameterManager(KORV_ParameterManager const&) = delete;
    KORV_ParameterManager& operator=(KORV_ParameterManager const&) = delete;

    /// Null when there is no clip of this id.
    KORV_Clip const* getClip(unsigned int clipId) const;
    ZN_BaseClipInfo const* getBaseClipInfo(unsigned int clipId) const;
    ZN_ClipInfo const* getClipInfo(unsigned int clipId, bool reserved) const;

    /// Path of the image file of a frame; empty for a solid.
    QString getFrameSourceFile(KORV_Clip const& clip, Anm::Context::Explicit const& context, bool reserved) const;

    /// 0 when there is no clip of this name.
    unsigned int clipIDForName(QString const& name) const;

private:
    std::unique_ptr<Data> m_data;
};

class MARLO_HOST_API KORV_ToolManager
{
public:
    explicit KORV_ToolManager(unsigned int currentLayerId);

    /// 0 when no layer is current.
    unsigned int currentLayerID() const;

private:
    unsigned int m_currentLayerId;
};

namespace KV
{

/// What the viewer shows.
class MARLO_HOST_API RenderingContext
{
public:
    explicit RenderingContext(unsigned int displayClipId);

    unsigned int getDisplayClipID() const;

private:
    unsigned int m_displayClipId;
};

}

/// Numbers of the project as a whole.
class MARLO_HOST_API ProjectProperties
{
public:
    struct Data;

    explicit ProjectProperties(std::unique_ptr<Data> data);
    ~ProjectProperties();
    ProjectProperties(ProjectProperties const&) = delete;
    ProjectProperties& operator=(ProjectProperties const&) = delete;

    /// Size of a full frame in pixels.
    QSize size() const;
    double par() const;

    /// Host frame where the trimmed project starts.
    int trimInPoint() const;

    /// What is added to a host frame to show it, the base offset of the first clip.
    int start() const;
    boost::shared_ptr<Anm::Views const> views() const;

private:
    std::unique_ptr<Data> m_data;
};
