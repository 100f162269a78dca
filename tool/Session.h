#pragma once
// A project that was read, and what the commands ask about it.

#include "FrameRange.h"
#include "Host/Anm.h"
#include "Host/ExportEnums.h"
#include "ProjectFacts.h"

#include <QHash>
#include <QString>
#include <QStringList>
#include <boost/shared_ptr.hpp>

#include <memory>
#include <optional>
#include <vector>

class KORV_Layer;
class KORV_ProjectManager;

/// Reads a project file.
/// @throws Failure as unreadable input
MarloHost::ProjectModel readModel(QString const& path);

/// What `--frames` restricts.
enum class FramesOf
{
    Layers,
    Scene
};

class Session
{
public:
    /// @throws Failure as unreadable input, and as wrong usage when the project has none of
    ///         the frames
    explicit Session(QString const& projectPath, std::optional<FrameRange> const& frames = std::nullopt,
                     FramesOf what = FramesOf::Layers);
    ~Session();
    Session(Session const&) = delete;
    Session& operator=(Session const&) = delete;

    KORV_ProjectManager& project();

    /// The layers from the top of the stack.
    std::vector<KORV_Layer const*> layers() const;

    /// The layers that a mode reaches, from the top; for SelectedLayer those that are
    /// selected or in a selected group.
    std::vector<KORV_Layer const*> layers(ZN::LayerExportMode mode) const;

    /// Whether the layer has tracking data in any of the views.
    bool isTracked(KORV_Layer const& layer, std::vector<Anm::View> const& views) const;

    /// Whether the layer has a mesh that was tracked in any of the views.
    bool hasMesh(KORV_Layer const& layer, std::vector<Anm::View> const& views) const;

    /// The views of these names, in this order; "all" alone stands for all of them.
    /// @throws Failure as wrong usage that lists the views
    std::vector<Anm::View> views(QStringList const& names) const;

    LayerFacts const& facts(KORV_Layer const& layer) const;

    /// Names in the solve and of what may carry its points.
    QStringList const& sceneNames() const;

    /// The names of the layers that have none of the frames that were asked for. The project
    /// is without them.
    QStringList const& missedLayers() const;

    /// Whether the project's current layer is one of them.
    bool missesCurrentLayer() const;

    /// The host frame of a shown number; halves are the second fields of interlaced material.
    /// @throws Failure as wrong usage that says the range of the project
    int hostFrame(double shownFrame) const;

    /// The last host frame of the project; the first is 0.
    int lastFrame() const;

    /// Size of the project file.
    qint64 fileBytes() const;

    /// The id of the clip of that name, or of the displayed one.
    /// @throws Failure as wrong usage that lists the clips
    unsigned int clipId(std::optional<QString> const& name) const;

    /// What exporters warned of since the last call.
    QStringList takeWarnings();

private:
    class Warnings;

    ProjectFacts m_facts;
    qint64 m_fileBytes;

    /// Places in `m_facts.layers` by the ids of the layers.
    QHash<unsigned int, std::size_t> m_placeById;
    QStringList m_missed;
    bool m_missesCurrent = false;
    std::shared_ptr<Warnings> m_warnings;
    boost::shared_ptr<KORV_ProjectManager> m_project;
};
