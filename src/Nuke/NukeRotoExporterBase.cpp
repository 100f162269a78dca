// Roto shapes as a node for Nuke: the user pastes the text into the node graph, or opens
// the file.
//
//   Roto {
//    curves {AnimTree: "" {
//    Version: 1.1
//    RootNode: 1
//    Node: {
//     NodeName: "Root" {
//      ...
//     }
//     NumOfChildren: 1
//     Node: {
//      NodeName: "Layer" {        one for each layer and view, the lowest layer first
//       NodeType: 1
//       Transform2: ...           when its shapes move alike
//       ...
//      }
//      NumOfChildren: 1
//      Node: {                    a shape; NukeRotoShape.cpp
//      ...
//    }
//   }
//   }
//   name Roto_Layer
//   }

#include "Nuke/NukeRotoExporterBase.h"

#include "Host/Contour.h"
#include "Host/ExporterHelper.h"
#include "Host/KORV_ProjectManager.h"
#include "Writing/Results.h"
#include "Writing/Setup.h"
#include "Writing/Values.h"
#include "text/Names.h"

#include <QPointF>

#include <algorithm>

namespace Export
{

namespace
{

constexpr char ROOT_NODE[] =
    " Node: {\n"
    "  NodeName: \"Root\" {\n"
    "   NodeType: 1\n"
    "   NumOfAttributes: 10\n"
    "   \"vis\" S 0 1 \"opc\" S 0 1 \"mbo\" S 0 1 \"mb\" S 0 1 \"mbs\" S 0 0.5 \"fo\" S 0 1 \"fx\" S 0 0 \"fy\" S 0 0 "
    "\"ff\" S 0 1 \"ft\" S 0 0\n"
    "  }\n";

constexpr char LAYER_ATTRIBUTES[] =
    " \"opc\" S 0 1 \"mbo\" S 0 1 \"mb\" S 0 1 \"mbs\" S 0 0.5 \"fo\" S 0 1 \"fx\" S 0 0 \"fy\" S 0 0 \"ff\" S 0 1 "
    "\"ft\" S 0 0\n"
    "   }\n";

constexpr qint64 CURVES_PER_VERTEX = 12;

// Bytes of a key: at least ("" 0 0 0 1 0 1 258 0), and as a rule.
constexpr qint64 LEAST_KEY = 21;
constexpr qint64 USUAL_KEY = 44;

constexpr unsigned int OUTLINE_FLAGS = Korvane::ShapeInPixels | Korvane::ShapeWithBlur | Korvane::ShapeXSplinesToBezier;

/// How many keys the points of all contours have together.
qint64 pointKeyCount(Korvane::ExportedShape const& shape)
{
    qint64 count = 0;
    for (int contour = 0; contour < shape.numContours(); ++contour)
    {
        for (int part = 0; part < shape.numContourCC(contour); ++part)
        {
            Korvane::ExportedShape::Curves const& mask = shape.maskShape(contour, part);
            count += mask.isEmpty() ? 0 : qint64(mask.size()) * mask.first()->numSpans();
        }
    }
    return count;
}

/// The motion that all contours of a layer have in common; null where they differ.
std::vector<KORV_ExportHomography> const* commonMotion(Korvane::ExportedShape const& shape)
{
    std::vector<KORV_ExportHomography> const* common = nullptr;
    for (int contour = 0; contour < shape.numContours(); ++contour)
    {
        for (int part = 0; part < shape.numContourCC(contour); ++part)
        {
            std::vector<KORV_ExportHomography> const& motion = shape.transform(contour, part);
            if (!common)
            {
                common = &motion;
            }
            else if (common != &motion && *common != motion)
            {
                return nullptr;
            }
        }
    }
    return common;
}

bool isFinite(KORV_ExportHomography const& homography)
{
    return isWritable(homography.time) && areWritable(homography.m);
}

/// @param leftOut goes up by the number of homographies that aren't finite
std::vector<KORV_ExportHomography> finiteMotion(std::vector<KORV_ExportHomography> const& motion, unsigned int& leftOut)
{
    std::vector<KORV_ExportHomography> finite;
    finite.reserve(motion.size());
    std::copy_if(motion.begin(), motion.end(), std::back_inserter(finite), isFinite);
    leftOut += static_cast<unsigned int>(motion.size() - finite.size());
    return finite;
}

}

/// A layer in one view.
struct NukeRotoExporterBase::LayerNode
{
    boost::shared_ptr<KORV_Layer const> layer;
    Anm::View view;
    QString name;
};

NukeRotoExporterBase::NukeRotoExporterBase(bool withMatrix) : m_withMatrix(withMatrix)
{
}

NukeRotoExporterBase::NukeRotoExporterBase(bool withMatrix, std::uint64_t fileSeed, double classBias)
    : Obfuscate(fileSeed, classBias), m_withMatrix(withMatrix)
{
}

NukeRotoExporterBase::~NukeRotoExporterBase() = default;

std::shared_ptr<QMap<QString, QByteArray>> NukeRotoExporterBase::exportShape(KORV_ProjectManager& project,
                                                                             QString const& path,
                                                                             QList<unsigned int> const& layerIds,
                                                                             Options const& options) const
{
    TextBuffer text(sizeAdvice());
    unsigned int const leftOut = appendDocument(text, project, layerIds, options);
    return result(path, text.bytes(), leftOut);
}

std::shared_ptr<QMap<QString, QByteArray>> NukeRotoExporterBase::result(QString const& path, QByteArray const& text,
                                                                        unsigned int leftOut)
{
    QString const failure = QStringLiteral("%1 keyframes were left out, as their values aren't finite");
    return shapeResult(path, text, leftOut > 0 ? failure.arg(leftOut) : QString());
}

QString NukeRotoExporterBase::sizeAdvice()
{
    return QStringLiteral("Export fewer layers, or layers with a shorter range.");
}

QString NukeRotoExporterBase::getFormatVersion() const
{
    return QStringLiteral(" Version: 1.1\n");
}

QString NukeRotoExporterBase::getFormatRootNode() const
{
    return QStringLiteral(" RootNode: 1\n");
}

unsigned int NukeRotoExporterBase::appendDocument(TextBuffer& out, KORV_ProjectManager& project,
                                                  QList<unsigned int> const& layerIds, Options const& options) const
{
    if (!project.sm()->hasLayers())
    {
        return 0;
    }
    auto const layers = Korvane::ShapeExportHelper::getLayersToExport(project, options.layerExportMode, layerIds);
    std::vector<LayerNode> const nodes = plannedNodes(project, layers, options);

    out << getFormatName() << " {\n"
        << " curves {AnimTree: \"\" {\n"
        << getFormatVersion() << getFormatRootNode() << ROOT_NODE
        << "  NumOfChildren: " << Integer{static_cast<long long>(nodes.size())} << "\n";
    unsigned int leftOut = 0;
    for (LayerNode const& node : nodes)
    {
        KORV_Clip const* const clip = project.frameManager()->getClip(node.layer->getBaseClipID());
        leftOut += layerToStr(out, project, clip, *node.layer, node.view, node.name,
                              static_cast<unsigned int>(options.framesToExport), options.viewMode != 0);
    }
    out << " }\n"
        << "}\n"
        << "}\n";
    if (!layers.isEmpty())
    {
        out << "name Roto_" << Text::blanksToUnderscores(layers.first()->name()) << "\n";
    }
    out << "}\n";
    return leftOut;
}

// Refuses before anything is computed, as far as counts tell.
std::vector<NukeRotoExporterBase::LayerNode>
NukeRotoExporterBase::plannedNodes(KORV_ProjectManager const& project,
                                   QVector<boost::shared_ptr<KORV_Layer const>> const& layers,
                                   Options const& options) const
{
    std::vector<Anm::View> views = options.views;
    if (views.empty())
    {
        views.push_back(Anm::View::defaultView());
    }
    bool const isMultiView = !options.views.empty() && project.views()->viewCount() > 1;
    std::vector<LayerNode> nodes;
    qint64 size = 0;
    for (auto it = layers.crbegin(); it != layers.crend(); ++it)
    {
        KORV_Layer const& layer = **it;
        if ((options.layerExportMode == ZN::VisibleLayers && layer.isHidden(true)) ||
            !isLayerInProject(project, layer.numericID()))
        {
            continue;
        }
        for (Anm::View const& view : views)
        {
            QString const suffix = isMultiView ? QLatin1Char('.') + project.views()->name(view) : QString();
            nodes.push_back({*it, view, layer.name() + suffix});
            size += leastSize(project, nodes.back(), options);
            requireTextSize(size, sizeAdvice());
        }
    }
    return nodes;
}

/// Bytes that the node of a layer has at least.
qint64 NukeRotoExporterBase::leastSize(KORV_ProjectManager const& project, LayerNode const& node,
                                       Options const& options) const
{
    Korvane::TrackingExporterHelper helper;
    coverWholeLayer(helper, project, node.layer->numericID(), node.view, options.framesToExport);
    qint64 const keys = m_withMatrix ? std::min(helper.numFrames(), 2) : helper.numFrames();
    qint64 points = 0;
    for (boost::shared_ptr<Korvane::Contour const> const& contour : node.layer->activeContours())
    {
        points += static_cast<qint64>(contour->allPoints().size());
    }
    return keys > 1 ? points * CURVES_PER_VERTEX * keys * LEAST_KEY : 0;
}

unsigned int NukeRotoExporterBase::layerToStr(TextBuffer& out, KORV_ProjectManager const& project,
                                              KORV_Clip const* clip, KORV_Layer const& layer, Anm::View const& view,
                                              QString const& name, unsigned int framesToExport, bool viewMode) const
{
    Korvane::TrackingExporterHelper helper;
    coverWholeLayer(helper, project, layer.numericID(), view, static_cast<int>(framesToExport));
    Korvane::ExportedShape const shape(
        project, static_cast<int>(helper.firstFrame().value()), static_cast<int>(helper.lastFrame().value()), layer,
        view, OUTLINE_FLAGS | (m_withMatrix ? Korvane::ShapeMotionApart : 0U), 1.0, QPointF(0, 0), viewMode);
    qint64 const pointKeys = pointKeyCount(shape) * CURVES_PER_VERTEX;
    out.reserve(pointKeys * USUAL_KEY);

    unsigned int leftOut = 0;
    std::vector<KORV_ExportHomography> const* const common = commonMotion(shape);
    std::vector<KORV_ExportHomography> const layerMotion =
        common ? finiteMotion(*common, leftOut) : std::vector<KORV_ExportHomography>();
    out << "  Node: {\n"
        << "   NodeName: \"" << Text::blanksToUnderscores(name) << "\" {\n"
        << "    NodeType: 1\n";
    if (!layerMotion.empty())
    {
        out << "    ";
        getTransformBlock(out, layerMotion);
    }
    out << "    NumOfAttributes: 10\n"
        << "    \"vis\" S 0 " << (layer.isHidden(true) ? '0' : '1') << LAYER_ATTRIBUTES
        << "   NumOfChildren: " << Integer{shape.numShapes()} << "\n";

    Anm::View const defaultView = Anm::View::defaultView();
    auto const blend = static_cast<ZN_BlendMode>(layer.blendMode().value(defaultView));
    bool const isInverted = layer.invert().staticValue(defaultView);
    QList<boost::shared_ptr<Korvane::Contour const>> const& contours = layer.activeContours();
    for (int contour = 0; contour < contours.size(); ++contour)
    {
        for (int part = 0; part < shape.numContourCC(contour); ++part)
        {
            std::vector<KORV_ExportHomography> motion;
            if (!common)
            {
                motion = finiteMotion(shape.transform(contour, part), leftOut);
            }
            leftOut += shapeToStr(out, project, contours[contour]->name(), clip, view, shape.maskShape(contour, part),
                                  shape.blurShape(contour, part), motion, helper, blend, isInverted, layer.fillColour(),
                                  layer.overlayColour());
        }
    }
    out << "  }\n";
    return leftOut;
}

}
