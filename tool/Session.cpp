#include "Session.h"

#include "Core/ExportFunctions.h"
#include "Failure.h"
#include "Host/KORV_Exception.h"
#include "Host/KORV_Layer.h"
#include "Host/KORV_ProjectManager.h"
#include "Host/MessageBox.h"
#include "Host/ZN_ClipInfo.h"
#include "marlohost/ProjectFile.h"

#include <QFileInfo>

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

Session::Session(QString const& projectPath, std::optional<FrameRange> const& frames, FramesOf what)
    : m_fileBytes(QFileInfo(projectPath).size()), m_warnings(std::make_shared<Warnings>())
{
    MarloHost::ProjectModel model = readModel(projectPath);
    if (frames && what == FramesOf::Scene)
    {
        cutScene(model, *frames);
    }
    else if (frames)
    {
        bool const hasCurrent = !model.currentLayer.isEmpty();
        m_missed = cutLayers(model, *frames);
        m_missesCurrent = hasCurrent && model.currentLayer.isEmpty();
    }
    m_facts = factsOf(model);
    MarloHost::HostServices services;
    services.callbacks = m_warnings;
    m_project = MarloHost::makeProject(model, projectPath, services);

    // Both lists go from the top of the stack to the bottom.
    for (KORV_Layer const* layer : layers())
    {
        m_placeById.insert(layer->numericID(), static_cast<std::size_t>(m_placeById.size()));
    }
}

Session::~Session() = default;

LayerFacts const& Session::facts(KORV_Layer const& layer) const
{
    return m_facts.layers.at(m_placeById.value(layer.numericID()));
}

bool Session::isTracked(KORV_Layer const& layer, std::vector<Anm::View> const& views) const
{
    return std::any_of(views.begin(), views.end(),
                       [&](Anm::View const& view) { return facts(layer).trackedViews.contains(view.id()); });
}

bool Session::hasMesh(KORV_Layer const& layer, std::vector<Anm::View> const& views) const
{
    return std::any_of(views.begin(), views.end(),
                       [&](Anm::View const& view) { return facts(layer).meshViews.contains(view.id()); });
}

QStringList const& Session::sceneNames() const
{
    return m_facts.sceneNames;
}

QStringList const& Session::missedLayers() const
{
    return m_missed;
}

bool Session::missesCurrentLayer() const
{
    return m_missesCurrent;
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

int Session::hostFrame(double shownFrame) const
{
    bool const isInterlaced = m_project->parameterManager()->getBaseClipInfo(1)->bIsInterlaced();
    int const fields = isInterlaced ? 2 : 1;
    auto const number = [](double frame) { return QString::number(frame, 'g', 12); };
    double const frame = fields * shownFrame - m_project->frameOffset();
    if (frame != std::floor(frame))
    {
        throw usageError(QStringLiteral("--reference-frame: %1 lies between two %2")
                             .arg(number(shownFrame))
                             .arg(isInterlaced ? QStringLiteral("fields") : QStringLiteral("frames")));
    }
    if (frame < 0 || frame > lastFrame())
    {
        auto const shown = [&](int host) { return number((host + m_project->frameOffset()) / (1.0 * fields)); };
        throw usageError(QStringLiteral("--reference-frame: %1 isn't within the project, whose frames are %2 to %3")
                             .arg(number(shownFrame), shown(0), shown(lastFrame())));
    }
    return static_cast<int>(frame);
}

int Session::lastFrame() const
{
    return m_facts.frameCount - 1;
}

qint64 Session::fileBytes() const
{
    return m_fileBytes;
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
                         quotedList(m_facts.clipNames));
    }
    return id;
}

QStringList Session::takeWarnings()
{
    return m_warnings->take();
}
