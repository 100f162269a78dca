// Masks for After Effects: the user copies the text and pastes it with "Paste Marlo Mask"
// of the importer plug-in's Edit menu. There is an effect for each mask:
//
//   Adobe After Effects 6.0 Keyframe Data
//   ...
//
//
//   Effects	marlo shape #1	Shape data
//   	Frame
//   	0	bezier;closed;0.25,0.5,...       docs/outline-text.md
//   	23	bezier;closed;0.26,0.5,...
//
//   Effects	marlo shape #1	Translation X
//   	Frame
//   	0	0
//   	1	0.0125
//
// and so on. A sparse outline has the contour's own keys, and the eight numbers of the
// planar motion carry it from one to the next; a baked one has a key for each frame, and
// the motion is the identity.

#include "AfterEffects/MarloShapeAEExporter.h"

#include "AfterEffects/AEExportBuilder.h"
#include "Host/ExporterHelper.h"
#include "Host/KORV_Clip.h"
#include "Host/KORV_Layer.h"
#include "Host/KORV_ProjectManager.h"
#include "Host/PluginHost.h"
#include "Host/ZN_ClipInfo.h"
#include "Writing/Frames.h"
#include "Writing/Results.h"
#include "Writing/Setup.h"
#include "text/NumberText.h"

#include <QRect>

#include <cmath>
#include <utility>

namespace Export
{

namespace
{

using HomographyMap = Korvane::Contour::HomographyMap;
using Components = QVector<Korvane::HomographyComponents>;

/// What the importer plug-in calls the blend modes of a mask.
enum MaskMode
{
    AddMask = 1,
    SubtractMask = 2,
    IntersectMask = 3
};

struct MotionBlock
{
    char const* name;
    double Korvane::HomographyComponents::*component;
};

constexpr MotionBlock MOTION_BLOCKS[] = {
    {"Translation X", &Korvane::HomographyComponents::translationX},
    {"Translation Y", &Korvane::HomographyComponents::translationY},
    {"Scale", &Korvane::HomographyComponents::scale},
    {"Rotation", &Korvane::HomographyComponents::rotation},
    {"Shear X", &Korvane::HomographyComponents::shearX},
    {"Shear Y", &Korvane::HomographyComponents::shearY},
    {"Perspective X", &Korvane::HomographyComponents::perspectiveX},
    {"Perspective Y", &Korvane::HomographyComponents::perspectiveY},
};

KORV_Clip const& clipOf(KORV_ProjectManager const& project, KORV_Layer const& layer, unsigned int clipId)
{
    KORV_Clip const* const clip = project.pGetParameterManager()->getClip(clipId);
    if (!clip)
    {
        throwNoClip(layer.name());
    }
    return *clip;
}

/// A layer while its masks are written.
struct MaskLayer
{
    KORV_ProjectManager const& project;
    KORV_Layer const& layer;
    Anm::View view;
    Korvane::ExporterHelperBase helper{true};
    boost::shared_ptr<HomographyMap> motion;

    /// Host frames, both included.
    int first;
    int last;

    /// The host frame that is frame 0 of the document.
    int base;

    MaskLayer(KORV_ProjectManager const& ofProject, KORV_Layer const& ofLayer, Anm::View const& inView,
              int framesToExport)
        : project(ofProject), layer(ofLayer), view(inView)
    {
        coverWholeLayer(helper, project, layer.numericID(), view, framesToExport);
        helper.setClip(clipOf(project, layer, layer.trackingInputClipID(true, false, true)));
        motion = Korvane::ShapeExportHelper::buildHomogMap(project, layer, view);
        first = static_cast<int>(helper.firstFrame().value());
        last = static_cast<int>(helper.lastFrame().value());
        base = static_cast<int>(project.playbackInPoint(false));
    }

    ZN_BaseClipInfo const& clip() const
    {
        return *helper.baseClipInfo();
    }

    float exported(int frame) const
    {
        return static_cast<float>(frame - base);
    }
};

Anm::Context contextAt(int frame, Anm::View const& view)
{
    return Anm::Context(Anm::Time::fromInt(frame), view, Anm::ProxyScale::Full);
}

// Unlike in the pins, the rate of interlaced material is that of its fields.
void writeHeader(AEExportBuilder& builder, KORV_ProjectManager const& project, KORV_Layer const& layer)
{
    ZN_BaseClipInfo const& clip = clipOf(project, layer, layer.getBaseClipID()).info();
    unsigned int const factor = clip.bIsInterlaced() ? 2 : 1;
    unsigned int width = clip.width();
    unsigned int height = clip.height() * factor;
    if (Korvane::PluginHost const* const host = project.pluginHost())
    {
        width = static_cast<unsigned int>(host->compositionSize().width());
        height = static_cast<unsigned int>(host->compositionSize().height());
    }
    builder.addExportHeader(static_cast<float>(project.frameRate() * factor), width, height, clip.format().par());
    builder.addLine(QString());
}

/// Whether a point is near enough to the picture for the importer to carry it.
bool isWithinReach(double x, double y)
{
    constexpr QRect REACH(-30000, -30000, 60000, 60000);
    constexpr double INT_LIMIT = 2e9;
    return std::abs(x) < INT_LIMIT && std::abs(y) < INT_LIMIT &&
           REACH.contains(static_cast<int>(x), static_cast<int>(y));
}

bool isSparse(MaskLayer const& masks, Korvane::Contour const& contour, ZN::TrackCache& cache)
{
    if (contour.eGetType() == ZN_CONTOUR_XSPLINE)
    {
        return false;
    }
    for (int frame = masks.first; frame <= masks.last; ++frame)
    {
        Anm::Context const context = contextAt(frame, masks.view);
        for (boost::shared_ptr<Korvane::ControlPoint const> const& point : contour.allPoints())
        {
            double x = 0;
            double y = 0;
            bool usable = false;
            contour.vGetControlPointXY(*point, context, false, false, x, y, usable, &cache);
            if (!usable || !isWithinReach(x, y))
            {
                return false;
            }
        }
    }
    return true;
}

std::set<Anm::Context> keyContexts(MaskLayer const& masks, bool sparse)
{
    if (sparse)
    {
        Anm::View const view = Anm::View::defaultView();
        return {contextAt(masks.first, view), contextAt(masks.last, view)};
    }
    std::set<Anm::Context> contexts;
    forEachFrame(masks.helper, [&](int, int frame) { contexts.insert(contexts.end(), contextAt(frame, masks.view)); });
    return contexts;
}

Korvane::ContourPieces piecesOf(MaskLayer const& masks, Korvane::Contour const& contour)
{
    if (contour.exportsWhole())
    {
        return {};
    }
    ZN_BaseClipInfo const& clip = masks.clip();
    return contour.splitForExport(Anm::Context(masks.helper.inPoint(), masks.view),
                                  Anm::Context(masks.helper.outPoint(), masks.view), clip.width(), clip.height());
}

/// The motion that is left for the importer, from the first exported frame on.
Components motionComponents(MaskLayer const& masks, bool sparse)
{
    // The list counts frames from 0; on long clips those before the layer would fill memory.
    auto motion = boost::shared_ptr<HomographyMap>(new HomographyMap);
    for (int frame = masks.first; frame <= masks.last; ++frame)
    {
        Korvane::Contour::HomographyWithCamera atFrame = masks.motion->value(contextAt(frame, masks.view));
        if (!sparse)
        {
            atFrame.homography = Sabrel::Matrix33();
        }
        motion->insert(motion->constEnd(), contextAt(frame - masks.first, masks.view), atFrame);
    }
    return Korvane::ShapeExportHelper::buildComponentsList(motion, static_cast<unsigned int>(motion->size()));
}

/// A contour as it is written.
struct Mask
{
    Korvane::Contour const& contour;
    bool isSparse;
    Korvane::ContourPieces pieces;
    Components motion;
};

Mask maskOf(MaskLayer const& masks, Korvane::Contour const& contour, ZN::TrackCache& cache)
{
    bool const sparse = isSparse(masks, contour, cache);
    return {contour, sparse, piecesOf(masks, contour), motionComponents(masks, sparse)};
}

/// Whether all numbers of an outline text are finite. Its words have neither "nan" nor
/// "inf" in them.
bool isFiniteOutline(QString const& text)
{
    return !text.contains(QLatin1String("nan")) && !text.contains(QLatin1String("inf"));
}

void writeOutline(AEExportBuilder& builder, MaskLayer const& masks, Mask const& mask, int piece)
{
    QMap<Anm::Context, QString> const texts =
        mask.contour.getShapeKeyframesAsStrings(&masks.project, masks.clip().format().size(), *masks.motion, masks.view,
                                                keyContexts(masks, mask.isSparse), mask.pieces, piece);
    builder.addParamHeader(QStringLiteral("Shape data"), {});
    for (auto it = texts.begin(); it != texts.end(); ++it)
    {
        int const frame = static_cast<int>(it.key().time().value());
        if (frame >= masks.first && frame <= masks.last && isFiniteOutline(it.value()))
        {
            builder.addValue(masks.exported(frame), it.value());
        }
    }
}

void writeMotion(AEExportBuilder& builder, MaskLayer const& masks, Components const& components)
{
    for (MotionBlock const& block : MOTION_BLOCKS)
    {
        builder.addParamHeader(QString::fromLatin1(block.name), {});
        forEachFrame(masks.helper, [&](int, int frame)
                     { builder.addValue(masks.exported(frame), components[frame - masks.first].*block.component); });
    }
}

MaskMode maskMode(KORV_Layer const& layer, int effect)
{
    if (layer.blendMode().value(Anm::View::defaultView()) == ZN_BLEND_SUBTRACT)
    {
        return SubtractMask;
    }
    return effect == 1 ? IntersectMask : AddMask;
}

// On from the layer's in point to its out point; keys next to them make the step.
void writeOpacity(AEExportBuilder& builder, MaskLayer const& masks)
{
    int const in = static_cast<int>(masks.helper.inPoint().value()) - masks.base;
    int const out = static_cast<int>(masks.helper.outPoint().value()) - masks.base;
    builder.addParamHeader(QStringLiteral("Opacity"), {});
    if (in != 0)
    {
        builder.addValue(0, 0.0);
        if (in > 1)
        {
            builder.addValue(static_cast<float>(in - 1), 0.0);
        }
    }
    else if (out == masks.last - masks.first)
    {
        builder.addStaticValue(QStringLiteral("100"));
        return;
    }
    builder.addValue(static_cast<float>(in), 100.0);
    builder.addValue(static_cast<float>(out), 100.0);
    if (out + 1 < static_cast<int>(masks.clip().length(masks.view)))
    {
        builder.addValue(static_cast<float>(out + 1), 0.0);
    }
}

void writeStatic(AEExportBuilder& builder, char const* name, QString const& value, QStringList const& columns = {})
{
    builder.addParamHeader(QString::fromLatin1(name), columns);
    builder.addStaticValue(value);
}

void writeShape(AEExportBuilder& builder, MaskLayer const& masks, Mask const& mask, int piece)
{
    KORV_Layer const& layer = masks.layer;
    builder.newEffect(QStringLiteral("marlo shape"));
    writeOutline(builder, masks, mask, piece);
    writeMotion(builder, masks, mask.motion);
    writeStatic(builder, "Blend mode", QString::number(maskMode(layer, builder.getEffectID())));
    writeStatic(builder, "Invert", layer.invert().staticValue(Anm::View::defaultView()) ? "1" : "0");
    writeOpacity(builder, masks);
    writeStatic(builder, "Layer name", layer.name());
    ZN::FilmType const& film = masks.clip().filmType();
    writeStatic(builder, "Film-back width", Text::generalText(film.filmBackWidth()));
    writeStatic(builder, "Film-back height", Text::generalText(film.filmBackHeight()));
    QColor const colour = layer.colour();
    writeStatic(
        builder, MarloShapeAEExporter::SHAPE_COLOUR_NAME,
        QStringLiteral("%1\t%2\t%3\t%4").arg(colour.alpha()).arg(colour.red()).arg(colour.green()).arg(colour.blue()),
        {"alpha", "red", "green", "blue"});
}

}

MarloShapeAEExporter::MarloShapeAEExporter() = default;
MarloShapeAEExporter::~MarloShapeAEExporter() = default;
MarloShapeAEExporter::MarloShapeAEExporter(MarloShapeAEExporter const& other) = default;
MarloShapeAEExporter& MarloShapeAEExporter::operator=(MarloShapeAEExporter const& other) = default;

std::shared_ptr<QMap<QString, QByteArray>> MarloShapeAEExporter::exportShape(KORV_ProjectManager& project,
                                                                             QString const& path,
                                                                             QList<unsigned int> const& layerIds,
                                                                             Options const& options) const
{
    Anm::View const view = options.views.empty() ? Anm::View::defaultView() : options.views.front();
    ZN::TrackCache cache;
    AEExportBuilder builder(AEExportBuilder::AfterEffects);
    bool hasHeader = false;
    for (auto const& layer : Korvane::ShapeExportHelper::getLayersToExport(project, options.layerExportMode, layerIds))
    {
        if (!isLayerInProject(project, layer->numericID()))
        {
            continue;
        }
        MaskLayer const masks(project, *layer, view, options.framesToExport);
        for (boost::shared_ptr<Korvane::Contour const> const& contour : layer->activeContours())
        {
            if (!std::exchange(hasHeader, true))
            {
                writeHeader(builder, project, contour->parentLayer());
            }
            Mask const mask = maskOf(masks, *contour, cache);
            for (int piece = 0; piece < mask.pieces.count; ++piece)
            {
                writeShape(builder, masks, mask, piece);
            }
        }
    }
    builder.addExportFooter();
    return shapeResult(path, builder.bytes(), QString());
}

}
