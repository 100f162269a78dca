#include "ExportedParts.h"

#include "Failure.h"
#include "Host/KORV_Layer.h"
#include "Host/KORV_ProjectManager.h"
#include "Host/ShapeExporter.h"
#include "Session.h"

#include <functional>

namespace
{

using Layers = std::vector<KORV_Layer const*>;

QString listed(QStringList names)
{
    constexpr int MOST_NAMES = 5;
    names.removeDuplicates();
    QString const list = quotedList(names.mid(0, MOST_NAMES));
    return names.size() <= MOST_NAMES ? list : list + QStringLiteral(" and %1 more").arg(names.size() - MOST_NAMES);
}

/// The layers of which something is true.
QStringList namesOf(Session& session, Layers const& layers, std::function<bool(LayerFacts const&)> const& isTrue)
{
    QStringList names;
    for (KORV_Layer const* layer : layers)
    {
        names += isTrue(session.facts(*layer)) ? QStringList(layer->name()) : QStringList();
    }
    return names;
}

}

ExportedParts partsOf(Session& session, FormatEntry const& format, LayerChoice const& layers, ViewChoice const& views)
{
    ExportedParts parts;
    bool const takesViews = format.traits().honours.testFlag(Export::HonoursViews);
    parts.views = takesViews ? views.views : std::vector<Anm::View>{views.view};
    ZN::LayerExportMode const mode = layers.selection.mode;
    bool const takesLayers = format.traits().honours.testFlag(Export::HonoursLayers) && mode != ZN::SpecifiedLayer;
    if (format.kind() == Kind::Tracking && takesLayers)
    {
        parts.layers = session.layers(mode);
    }
    if (format.kind() == Kind::Tracking && parts.layers.empty() && layers.current)
    {
        parts.layers = {layers.current};
    }
    if (format.kind() == Kind::Shape)
    {
        KORV_ProjectManager const& project = session.project();
        for (auto const& layer : Korvane::ShapeExportHelper::getLayersToExport(
                 project, layers.selection.mode, {project.toolManager()->currentLayerID()}))
        {
            parts.layers.push_back(layer.get());
        }
    }
    return parts;
}

void refuseUnsafeName(FormatEntry const& format, QString const& what, QString const& name)
{
    QString const breaking = QString::fromUtf8(format.traits().breaksField);
    QStringList found;
    for (QChar const c : name)
    {
        found += breaking.contains(c) && !found.contains(c) ? QStringList(c) : QStringList();
    }
    if (!found.isEmpty())
    {
        throw Failure(Refused, format.key() + QStringLiteral(": the name of ") + what + QStringLiteral(" holds ") +
                                   found.join(QLatin1Char(' ')) +
                                   QStringLiteral(", which would end its field in the text; rename it, or write it "
                                                  "anyhow with --unsafe-names"));
    }
}

void refuseUnsafeNames(Session& session, FormatEntry const& format, ExportedParts const& parts)
{
    auto const quoted = [](QString const& name) { return QLatin1Char('"') + name + QLatin1Char('"'); };
    for (KORV_Layer const* layer : parts.layers)
    {
        QString const what = QStringLiteral("layer ") + quoted(layer->name());
        refuseUnsafeName(format, what, layer->name());
        for (QString const& contour : format.kind() == Kind::Shape ? session.facts(*layer).contourNames : QStringList())
        {
            refuseUnsafeName(format, QStringLiteral("contour ") + quoted(contour) + QStringLiteral(" of ") + what,
                             contour);
        }
    }
    for (QString const& name : format.kind() == Kind::Camera ? session.sceneNames() : QStringList())
    {
        refuseUnsafeName(format, quoted(name) + QStringLiteral(" in the solve"), name);
    }
    Anm::Views const& views = *session.project().views();
    for (Anm::View const& view : views.viewCount() > 1 ? parts.views : std::vector<Anm::View>())
    {
        refuseUnsafeName(format, QStringLiteral("view ") + quoted(views.name(view)), views.name(view));
    }
}

QStringList lossesOf(Session& session, FormatEntry const& format, ExportedParts const& parts)
{
    if (format.kind() != Kind::Shape)
    {
        return {};
    }
    Layers hidden;
    std::copy_if(parts.layers.begin(), parts.layers.end(), std::back_inserter(hidden),
                 [](KORV_Layer const* layer) { return layer->isHidden(true); });
    struct
    {
        Export::FormatHold flag;
        Layers const& layers;
        std::function<bool(LayerFacts const&)> isLost;
        char const* before;
        char const* after;
    } const losses[] = {
        {Export::HoldsFeather, parts.layers, [](LayerFacts const& f) { return f.hasFeather; },
         "holds no feather: layers ", " come with hard edges"},
        {Export::HoldsHidden, hidden, [](LayerFacts const&) { return true; },
         "doesn't hold that layers are hidden: ", " will show"},
        {Export::HoldsGroups, parts.layers, [](LayerFacts const& f) { return f.isInGroup; }, "holds no groups: layers ",
         " come without theirs"},
        {Export::HoldsSecondClips, parts.layers, [](LayerFacts const& f) { return f.isOnOtherClip; },
         "holds one clip: layers ", " are on a clip of another size or time; fit them to it in the target"},
        {Export::HoldsFieldLifetimes, parts.layers, [](LayerFacts const& f) { return f.hasFieldLifetime; },
         "counts the lifetimes of interlaced layers in fields and their keys in frames: set the lifetimes of ",
         " in the target"},
    };
    QStringList lines;
    for (auto const& loss : losses)
    {
        QStringList const names = namesOf(session, loss.layers, loss.isLost);
        if (!format.traits().holds.testFlag(loss.flag) && !names.isEmpty())
        {
            lines += format.key() + QLatin1Char(' ') + QLatin1String(loss.before) + listed(names) +
                     QLatin1String(loss.after);
        }
    }
    return lines;
}
