// Masks for Premiere: the user copies, selects a clip and pastes. What the clipboard carries is
// a track item with a clip that there isn't, and on it a Black & White filter with a mask for
// each contour:
//
//   <PremiereData Version="3">
//     <VideoFilterComponentClipboardItem ObjectRef="0"/>
//     <VideoClipTrackItem ObjectID="0" ...>
//     ...
//     <VideoFilterComponent ObjectID="9" ...>      a mask: its parameters, its name
//     ...
//     <ArbVideoComponentParam ObjectID="17" ...>   its outline: "ticks,base64;" for each key
//
// Outlines are fractions of the picture, y from 1 at the top to 0. Times are seconds of the
// clip, in ticks.

#include "Premiere/PremiereShapeExporter.h"

#include "Host/ExportedShape.h"
#include "Host/ExporterHelper.h"
#include "Host/Fnd.h"
#include "Host/KORV_Clip.h"
#include "Host/KORV_Layer.h"
#include "Host/KORV_ProjectManager.h"
#include "Host/MessageBox.h"
#include "Host/PluginHost.h"
#include "Host/ZN_ClipInfo.h"
#include "Premiere/document/XmlBuilder.h"
#include "Writing/Results.h"
#include "Writing/Setup.h"
#include "Writing/ThrowHelpers.h"

#include <QCoreApplication>
#include <QMimeData>

#include <cmath>
#include <stdexcept>

namespace Export::Premiere
{

namespace
{

constexpr char CLIPBOARD_TYPE[] = "PProAE/Exchange/VideoComponent";

/// A layer while it is exported, with the numbers that place its frames on the clip.
struct ExporterHelper : Korvane::TrackingExporterHelper
{
    double projectStart = 0;
    double clipOffset = 0;

    /// 0 when the project isn't trimmed.
    double trimIn = 0;

    /// Frames per second.
    double clipRate = 0;

    double interlacedFactor() const
    {
        return isInterlaced() ? 0.5 : 1.0;
    }

    /// What is added to host frames of the range, and to shown frames of keys. In a trimmed
    /// project both are minus its start, so that the two lie apart by the clip's offset; the
    /// program has always been given them so.
    double rangeBase() const
    {
        return (trimIn == 0 ? projectStart - clipOffset : -trimIn) * interlacedFactor();
    }

    double keyBase() const
    {
        return (trimIn == 0 ? -clipOffset : -trimIn) * interlacedFactor();
    }
};

[[noreturn]] void throwLayerHasNoClip(KORV_Layer const& layer)
{
    constexpr int LINE = 89;
    throwOperationFailed("Premiere\\PremiereShapeExporter", LINE,
                         QStringLiteral("No clip associated with layer \"%1\"").arg(layer.name()),
                         QCoreApplication::translate("Korvane::TrackingExporterHelper", "No clip for layer."));
}

ExporterHelper helperOf(KORV_ProjectManager& project, KORV_Layer const& layer, Anm::View const& view,
                        int framesToExport)
{
    ExporterHelper helper;
    coverWholeLayer(helper, project, layer.numericID(), view, framesToExport);
    KORV_Clip const* const clip = project.fm()->getClip(layer.trackingInputClipID(true, false, true));
    if (!clip)
    {
        throwLayerHasNoClip(layer);
    }
    helper.setClip(*clip);
    helper.clipRate = static_cast<double>(clip->info().frameRate());
    helper.trimIn = project.projProps().trimInPoint();
    helper.projectStart = project.projProps().start();
    helper.clipOffset = helper.baseClipOffset();
    return helper;
}

/// A key's outline; null when it is no area.
/// @param isFinite becomes false when a number of it can't be written; then it is null, too
boost::shared_ptr<Mask::Shape> shapeOf(Korvane::ExportBezierCurve const& curve, ExporterHelper const& helper,
                                       bool& isFinite)
{
    int const count = curve.numSpans();
    if (count < 2)
    {
        return {};
    }
    float const sx = 1.0F / static_cast<float>(helper.baseClipInfo()->width());
    float const sy = 1.0F / static_cast<float>(helper.baseClipInfo()->height()) * (helper.isInterlaced() ? 0.5F : 1.0F);
    auto const fraction = [sx, sy](Mtx_Vector2 const& vertex, Mtx_Vector2 const& handle) -> Mask::Coord {
        return {static_cast<float>(vertex.x + handle.x) * sx, 1 - static_cast<float>(vertex.y + handle.y) * sy};
    };

    auto shape = boost::make_shared<Mask::Shape>(Mask::PenShape);
    for (int i = 0; i < count; ++i)
    {
        Sabrel::BezierSpan const& span = curve[static_cast<std::size_t>(i)];
        Sabrel::BezierSpan const& before = curve[static_cast<std::size_t>((count - 1 + i) % count)];
        Mask::Point const point(fraction(span.start, {0, 0}), fraction(span.start, before.control2),
                                fraction(span.start, span.control1));
        for (Mask::Coord const& coord : {point.vertex, point.inHandle, point.outHandle})
        {
            isFinite = isFinite && std::isfinite(coord.x) && std::isfinite(coord.y);
        }
        *shape << point;
    }
    return isFinite ? shape : nullptr;
}

/// Adds a mask for the keys of an outline.
/// @return keys that were left out
int addMask(IMaskContainer& masks, QString const& name, Korvane::ExportedShape::Curves const& curves,
            ExporterHelper const& helper, bool isInverted)
{
    if (curves.isEmpty())
    {
        return 0;
    }
    boost::shared_ptr<IMask> const mask = masks.addMask();
    mask->setName(name);
    mask->setInverted(isInverted);
    double const base = helper.rangeBase();
    mask->setRange((base + helper.firstFrame().value()) / helper.clipRate,
                   (base + helper.lastFrame().value()) / helper.clipRate, 1.0 / helper.clipRate);
    int leftOut = 0;
    for (auto const& curve : curves)
    {
        auto const* const bezier = dynamic_cast<Korvane::ExportBezierCurve const*>(curve.get());
        if (!bezier)
        {
            throw std::logic_error(ShapeExporter::tr("X-Splines are not supported").toStdString());
        }
        bool isFinite = true;
        if (boost::shared_ptr<Mask::Shape> const shape = shapeOf(*bezier, helper, isFinite))
        {
            mask->addKey((helper.keyBase() + curve->time) / helper.clipRate, shape);
        }
        leftOut += isFinite ? 0 : 1;
    }
    return leftOut;
}

/// @return keys that were left out
int addLayer(IMaskContainer& masks, KORV_ProjectManager& project, KORV_Layer const& layer, ExporterHelper const& helper)
{
    constexpr double BLUR_SCALE = 2.0;
    Korvane::ExportedShape shape(project, static_cast<int>(helper.firstFrame().value()),
                                 static_cast<int>(helper.lastFrame().value()), layer, helper.view(),
                                 Korvane::ShapeInPixels | Korvane::ShapeAsBezier | Korvane::ShapeYDown, BLUR_SCALE,
                                 QPointF(0, 0), true);
    shape.convertAllShapesToClockwise();
    bool const isInverted = layer.invert().staticValue(helper.view());
    if (shape.numShapes() == 1)
    {
        return addMask(masks, layer.name(), shape.maskShape(0, 0), helper, isInverted);
    }
    int leftOut = 0;
    for (int contour = 0; contour < shape.numContours(); ++contour)
    {
        QString const name = QStringLiteral("%1 - %2").arg(layer.name(), layer.activeContours()[contour]->name());
        for (int part = 0; part < shape.numContourCC(contour); ++part)
        {
            leftOut += addMask(masks, name, shape.maskShape(contour, part), helper, isInverted);
        }
    }
    return leftOut;
}

void warnOfTrim(KORV_ProjectManager& project, QStringList const& layers)
{
    KORV_MessageBox(&project.callbacks())
        .warning(
            "Premiere exporter",
            QStringLiteral("The project is trimmed and its clip has an offset: masks of \"%1\" are switched on and off "
                           "away from their keys, by that offset. Move the opacity keys in Premiere.")
                .arg(layers.join(QStringLiteral("\", \"")))
                .toStdString(),
            KORV_MESSAGEBOX_OK);
}

}

ShapeExporter::ShapeExporter() = default;
ShapeExporter::~ShapeExporter() = default;

std::shared_ptr<QMap<QString, QByteArray>> ShapeExporter::exportShape(KORV_ProjectManager& project, QString const& path,
                                                                      QList<unsigned int> const& layerIds,
                                                                      Options const& options) const
{
    Anm::View const view = options.views.empty() ? Anm::View::defaultView() : options.views.front();
    XmlBuilder const builder(m_environment ? m_environment : defaultEnvironment());
    int leftOut = 0;
    QStringList apart;
    for (auto const& layer : Korvane::ShapeExportHelper::getLayersToExport(project, options.layerExportMode, layerIds))
    {
        if (!isLayerInProject(project, layer->numericID()))
        {
            continue;
        }
        ExporterHelper const helper = helperOf(project, *layer, view, options.framesToExport);
        leftOut += addLayer(builder.masks(), project, *layer, helper);
        apart += helper.trimIn != 0 && helper.clipOffset != 0 ? QStringList(layer->name()) : QStringList();
    }
    if (!apart.isEmpty())
    {
        warnOfTrim(project, apart);
    }
    QString text;
    builder.toString(text);
    QString const failure = QStringLiteral("%1 keyframes were left out, as their values aren't finite");
    return shapeResult(path, text.toUtf8(), leftOut > 0 ? failure.arg(leftOut) : QString());
}

void ShapeExporter::copyToClipboard(Fnd::IClipboard& clipboard, QString const& text, bool) const
{
    auto data = std::make_unique<QMimeData>();
    data->setData(QString::fromLatin1(CLIPBOARD_TYPE), text.toUtf8());
    clipboard.setMimeData(data.release());
}

void ShapeExporter::setEnvironment(std::shared_ptr<ExportEnvironment> const& environment)
{
    m_environment = environment;
}

}
