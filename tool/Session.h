#pragma once
// A project that was read, and what the commands ask about it.

#include "Host/Anm.h"
#include "Host/ExportEnums.h"
#include "marlohost/ProjectModel.h"

#include <QMultiMap>
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

class Session
{
public:
    /// @throws Failure as unreadable input
    explicit Session(QString const& projectPath);
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

    /// The views of these names, in this order; "all" alone stands for all of them.
    /// @throws Failure as wrong usage that lists the views
    std::vector<Anm::View> views(QStringList const& names) const;

    /// The host frame of a shown number.
    /// @throws Failure as wrong usage that says the range of the project
    int hostFrame(int shownFrame) const;

    /// The last host frame of the project; the first is 0.
    int lastFrame() const;

    /// The id of the clip of that name, or of the displayed one.
    /// @throws Failure as wrong usage that lists the clips
    unsigned int clipId(std::optional<QString> const& name) const;

    /// What exporters warned of since the last call.
    QStringList takeWarnings();

private:
    class Warnings;
    void noteTrackedViews(MarloHost::ProjectModel const& model);

    QStringList m_clipNames;
    int m_frameCount = 0;

    /// The ids of the views that the layers are tracked in, by the ids of the layers.
    QMultiMap<unsigned int, int> m_trackedViews;
    std::shared_ptr<Warnings> m_warnings;
    boost::shared_ptr<KORV_ProjectManager> m_project;
};
