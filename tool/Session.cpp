#include "Session.h"

#include "Core/ExportFunctions.h"
#include "Failure.h"
#include "Host/KORV_Exception.h"
#include "Host/KORV_Layer.h"
#include "Host/KORV_ProjectManager.h"
#include "Host/MessageBox.h"
#include "Host/ZN_ClipInfo.h"
#include "marlohost/FrameNumbers.h"
#include "marlohost/ProjectFile.h"

#include <algorithm>
#include <cmath>

MarloHost::ProjectModel readModel(QString const& path)
{
    try
    {
        return MarloHost::readProjectFile(path);
    }
    catch (KORV_BadFile const& error)
    {
        throw Failure(UnreadableInput, error.message());
    }
}

/// Keeps warnings instead of showing them, so that they get into the record of the
/// export that they belong to.
class Session::Warnings : public Korvane::Callbacks
{
public:
    KORV_MESSAGEBOX_REPLY warning(std::string const& title, std::string const& text,
                                  KORV_MESSAGEBOX_STYLE) const override
    {
        QString const heading = title.empty() ? QString() : QString::fromStdString(title) + QStringLiteral(": ");
        m_texts += heading + QString::fromStdString(text);
        return KORV_MESSAGEBOX_REPLY_OK;
    }

    QStringList take()
    {
        return std::exchange(m_texts, QStringList());
    }

private:
    mutable QStringList m_texts;
};

Session::Session(QString const& projectPath) : m_warnings(std::make_shared<Warnings>())
{
    MarloHost::ProjectModel const model = readModel(projectPath);
    for (MarloHost::ClipModel const& clip : model.clips)
    {
        m_clipNames += clip.name;
    }
    m_frameCount = model.clips.front().frameCount;
    MarloHost::HostServices services;
    services.callbacks = m_warnings;
    m_project = MarloHost::makeProject(model, projectPath, services);
    noteTrackedViews(model);
}

Session::~Session() = default;

// Both lists go from the top of the stack to the bottom.
void Session::noteTrackedViews(MarloHost::ProjectModel const& model)
{
    std::vector<KORV_Layer const*> const stack = layers();
    for (std::size_t i = 0; i < stack.size(); ++i)
    {
        for (MarloHost::TrackModel const& track : model.layers[i].tracks)
        {
            QString const name = track.view.isEmpty() ? model.views.front() : track.view;
            if (!track.frames.empty())
            {
                m_trackedViews.insert(stack[i]->numericID(), m_project->views()->viewForName(name).id());
            }
        }
    }
}

bool Session::isTracked(KORV_Layer const& layer, std::vector<Anm::View> const& views) const
{
    return std::any_of(views.begin(), views.end(),
                       [&](Anm::View const& view) { return m_trackedViews.contains(layer.numericID(), view.id()); });
}

KORV_ProjectManager& Session::project()
{
    return *m_project;
}

std::vector<KORV_Layer const*> Session::layers() const
{
    std::vector<KORV_Layer const*> stack;
    for (KORV_Layer const* layer = m_project->sm()->topLayer(); layer; layer = layer->layerBelow())
    {
        stack.push_back(layer);
    }
    return stack;
}

std::vector<KORV_Layer const*> Session::layers(ZN::LayerExportMode mode) const
{
    std::vector<KORV_Layer const*> reached = layers();
    auto const isLeftOut = [mode](KORV_Layer const* layer)
    {
        return (mode == ZN::SelectedLayer && !Export::isLayerOrAncestorGroupSelected(layer)) ||
               (mode == ZN::VisibleLayers && layer->isHidden(true));
    };
    reached.erase(std::remove_if(reached.begin(), reached.end(), isLeftOut), reached.end());
    return reached;
}

std::vector<Anm::View> Session::views(QStringList const& names) const
{
    Anm::Views const& all = *m_project->views();
    std::vector<Anm::View> chosen;
    QStringList known;
    for (unsigned int i = 0; i < all.viewCount(); ++i)
    {
        known += all.name(all.view(i));
        if (names == QStringList(QStringLiteral("all")))
        {
            chosen.push_back(all.view(i));
        }
    }
    for (QString const& name : chosen.empty() ? names : QStringList())
    {
        Anm::View const view = all.viewForName(name);
        if (view == Anm::View::INVALID())
        {
            throw usageError(QStringLiteral("--view: there is no view \"") + name + QStringLiteral("\"; found ") +
                             quotedList(known));
        }
        if (std::find(chosen.begin(), chosen.end(), view) == chosen.end())
        {
            chosen.push_back(view);
        }
    }
    return chosen;
}

int Session::hostFrame(int shownFrame) const
{
    bool const isInterlaced = m_project->parameterManager()->getBaseClipInfo(1)->bIsInterlaced();
    MarloHost::FrameNumbers const numbers(m_project->frameOffset(), isInterlaced);
    int const last = m_frameCount - 1;
    qint64 const frame = numbers.host(shownFrame);
    if (frame < 0 || frame > last)
    {
        // The first field of the project may be the second one of its frame.
        int const lowest = numbers.host(numbers.shown(0)) < 0 ? numbers.shown(0) + 1 : numbers.shown(0);
        throw usageError(QStringLiteral("--reference-frame: %1 isn't within the project, whose frames are %2 to %3")
                             .arg(shownFrame)
                             .arg(lowest)
                             .arg(numbers.shown(last)));
    }
    return static_cast<int>(frame);
}

int Session::lastFrame() const
{
    return m_frameCount - 1;
}

unsigned int Session::clipId(std::optional<QString> const& name) const
{
    if (!name)
    {
        return m_project->renderingContext()->getDisplayClipID();
    }
    unsigned int const id = m_project->parameterManager()->clipIDForName(*name);
    if (id == 0)
    {
        throw usageError(QStringLiteral("--clip: there is no clip \"") + *name + QStringLiteral("\"; found ") +
                         quotedList(m_clipNames));
    }
    return id;
}

QStringList Session::takeWarnings()
{
    return m_warnings->take();
}
