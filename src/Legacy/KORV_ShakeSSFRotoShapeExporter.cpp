// Shake shape data: the user loads the file into a RotoShape node.
//
//   shake_shape_data 4.0
//   motion_blur 0
//   shutter_timing 0.5
//   shutter_offset 0.0
//   num_shapes 1
//   shape_name Left eye
//   parent_name
//   closed 1
//   visible 1
//   locked 0
//   tangents 1
//   edge_shape 1
//   num_vertices 3
//   num_key_times 240
//   key_time 1001
//   center_x 725.0000
//   center_y 500.0625
//   color_r 1.0
//   ...
//   vertex_data 650.0000 400.0000 630.0000 400.0000 670.5000 400.0000 640.0000 ...
//
// and so on for each key and each shape. A vertex has twelve numbers, all in the one line of
// its key: the point, the handle that arrives there and the one that leaves, and the same of
// the edge (the feather). All of them are positions in pixels, y up. Programs that read such
// files know no exponents, so decimals are fixed: four hold what a float of 2000 px has.

#include "Legacy/KORV_ShakeSSFRotoShapeExporter.h"

#include "Host/ExporterHelper.h"
#include "Host/KORV_Layer.h"
#include "Host/KORV_ProjectManager.h"
#include "Writing/Results.h"
#include "Writing/Setup.h"
#include "Writing/TextBuffer.h"
#include "Writing/ThrowHelpers.h"
#include "Writing/Values.h"

#include <QPointF>

#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>

namespace Export
{

namespace
{

using Layers = QVector<boost::shared_ptr<KORV_Layer const>>;
using Curves = Korvane::ExportedShape::Curves;

constexpr char DOCUMENT_HEAD[] = "shake_shape_data 4.0\n"
                                 "motion_blur 0\n"
                                 "shutter_timing 0.5\n"
                                 "shutter_offset 0.0\n";
constexpr char SHAPE_SWITCHES[] = "parent_name \n"
                                  "closed 1\n"
                                  "visible 1\n"
                                  "locked 0\n"
                                  "tangents 1\n"
                                  "edge_shape 1\n";
constexpr char KEY_COLOUR[] = "\ncolor_r 1.0"
                              "\ncolor_g 1.0"
                              "\ncolor_b 1.0"
                              "\ncolor_a 1.0"
                              "\nvertex_data";

constexpr int DECIMALS = 4;
constexpr int NUMBERS_PER_VERTEX = 12;

// Bytes of a number with its blank, at least and as a rule.
constexpr qint64 LEAST_NUMBER = 7;
constexpr qint64 USUAL_NUMBER = 10;
constexpr qint64 KEY_LENGTH = 130;

constexpr unsigned int OUTLINE_FLAGS = Korvane::ShapeInPixels | Korvane::ShapeAsBezier | Korvane::ShapeWithBlur;

QString sizeAdvice()
{
    return QStringLiteral("Export fewer layers, or layers with a shorter range.");
}

Layers layersToExport(KORV_ProjectManager const& project, QList<unsigned int> const& layerIds,
                      Korvane::ShapeExporter::Options const& options)
{
    Layers layers = Korvane::ShapeExportHelper::getLayersToExport(project, options.layerExportMode, layerIds);
    auto const isLeftOut = [&](boost::shared_ptr<KORV_Layer const> const& layer)
    {
        return (options.layerExportMode == ZN::VisibleLayers && layer->isHidden(true)) ||
               !isLayerInProject(project, layer->numericID());
    };
    layers.erase(std::remove_if(layers.begin(), layers.end(), isLeftOut), layers.end());
    return layers;
}

/// Host frames, both included.
struct Range
{
    int first = 2147483647;
    int last = -1;
};

/// From the first frame of any layer to the last one.
Range commonRange(KORV_ProjectManager const& project, Layers const& layers, Anm::View const& view, int framesToExport)
{
    Range range;
    Korvane::TrackingExporterHelper helper;
    for (boost::shared_ptr<KORV_Layer const> const& layer : layers)
    {
        coverWholeLayer(helper, project, layer->numericID(), view, framesToExport);
        range.first = std::min(range.first, static_cast<int>(helper.firstFrame().value()));
        range.last = std::max(range.last, static_cast<int>(helper.lastFrame().value()));
    }
    return range;
}

// Refuses before anything is computed.
void requireSize(Layers const& layers, Range const& range)
{
    qint64 points = 0;
    for (boost::shared_ptr<KORV_Layer const> const& layer : layers)
    {
        for (boost::shared_ptr<Korvane::Contour const> const& contour : layer->activeContours())
        {
            points += static_cast<qint64>(contour->allPoints().size());
        }
    }
    requireTextSize(points * NUMBERS_PER_VERTEX * LEAST_NUMBER * (qint64(range.last) - range.first + 1), sizeAdvice());
}

/// The twelve numbers of a vertex: x and y of six positions.
using Vertex = std::array<float, NUMBERS_PER_VERTEX>;

void putVertex(Vertex& vertex, std::size_t at, Korvane::ExportBezierCurve const& curve, std::size_t index)
{
    auto const count = static_cast<std::size_t>(curve.numSpans());
    Mtx_Vector2 const& point = curve[index].start;
    Mtx_Vector2 const& arrives = curve[(index + count - 1) % count].control2;
    Mtx_Vector2 const& leaves = curve[index].control1;
    for (double const number :
         {point.x, point.y, point.x + arrives.x, point.y + arrives.y, point.x + leaves.x, point.y + leaves.y})
    {
        vertex[at++] = static_cast<float>(number);
    }
}

std::vector<Vertex> verticesOf(Korvane::ExportBezierCurve const& mask, Korvane::ExportBezierCurve const& blur)
{
    std::vector<Vertex> vertices(static_cast<std::size_t>(mask.numSpans()));
    for (std::size_t i = 0; i < vertices.size(); ++i)
    {
        putVertex(vertices[i], 0, mask, i);
        putVertex(vertices[i], NUMBERS_PER_VERTEX / 2, blur, i);
    }
    return vertices;
}

bool areFinite(std::vector<Vertex> const& vertices)
{
    return std::all_of(vertices.begin(), vertices.end(), [](Vertex const& vertex) { return areWritable(vertex); });
}

/// The middle of the box of all points.
std::array<float, 2> centreOf(std::vector<Vertex> const& vertices)
{
    std::array<float, 2> least = {vertices.front()[0], vertices.front()[1]};
    std::array<float, 2> most = least;
    for (Vertex const& vertex : vertices)
    {
        for (std::size_t i = 0; i < vertex.size(); ++i)
        {
            least[i % 2] = std::min(least[i % 2], vertex[i]);
            most[i % 2] = std::max(most[i % 2], vertex[i]);
        }
    }
    return {(least[0] + most[0]) / 2, (least[1] + most[1]) / 2};
}

// What rounds to zero has no sign.
Fixed number(float value)
{
    constexpr double HALF_OF_LAST_DECIMAL = 0.5e-4;
    double const exact = static_cast<double>(value);
    return {std::abs(exact) < HALF_OF_LAST_DECIMAL ? 0 : exact, DECIMALS};
}

void writeKey(TextBuffer& out, double time, std::vector<Vertex> const& vertices)
{
    std::array<float, 2> const centre = centreOf(vertices);
    out << "key_time " << Fixed{time, time == std::floor(time) ? 0 : 1} << "\ncenter_x " << number(centre[0])
        << "\ncenter_y " << number(centre[1]) << KEY_COLOUR;
    for (Vertex const& vertex : vertices)
    {
        for (float const value : vertex)
        {
            out << ' ' << number(value);
        }
    }
    out << '\n';
}

}

KORV_ShakeSSFRotoShapeExporter::KORV_ShakeSSFRotoShapeExporter() = default;
KORV_ShakeSSFRotoShapeExporter::~KORV_ShakeSSFRotoShapeExporter() = default;

std::shared_ptr<QMap<QString, QByteArray>>
KORV_ShakeSSFRotoShapeExporter::exportShape(KORV_ProjectManager& project, QString const& path,
                                            QList<unsigned int> const& layerIds, Options const& options) const
{
    Anm::View const view = options.views.empty() ? Anm::View::defaultView() : options.views.front();
    Layers const layers = layersToExport(project, layerIds, options);
    Range const range = commonRange(project, layers, view, options.framesToExport);
    requireSize(layers, range);

    std::vector<Korvane::ExportedShape> shapes;
    int shapeCount = 0;
    for (boost::shared_ptr<KORV_Layer const> const& layer : layers)
    {
        shapes.emplace_back(project, range.first, range.last, *layer, view, OUTLINE_FLAGS, 1.0, QPointF(0, 0),
                            options.viewMode != 0);
        shapeCount += shapes.back().numShapes();
    }
    TextBuffer out(sizeAdvice());
    out << DOCUMENT_HEAD << "num_shapes " << Integer{shapeCount} << '\n';
    int held = 0;
    for (Korvane::ExportedShape const& shape : shapes)
    {
        for (int contour = 0; contour < shape.numContours(); ++contour)
        {
            for (int part = 0; part < shape.numContourCC(contour); ++part)
            {
                held += writeShape(out, shape.maskName(contour, part), shape.maskShape(contour, part),
                                   shape.blurShape(contour, part));
            }
        }
    }
    QString const failure = QStringLiteral("%1 keys hold the one before, as their values aren't finite");
    return shapeResult(path, out.bytes(), held > 0 ? failure.arg(held) : QString());
}

int KORV_ShakeSSFRotoShapeExporter::writeShape(TextBuffer& out, std::string const& name, Curves const& masks,
                                               Curves const& blurs)
{
    auto const bezier = [](boost::shared_ptr<Korvane::ExportCurveBase> const& curve)
    {
        auto const* const asBezier = dynamic_cast<Korvane::ExportBezierCurve const*>(curve.get());
        if (!asBezier)
        {
            throw std::logic_error(tr("X-Splines are not supported").toStdString());
        }
        return asBezier;
    };
    auto const verticesAt = [&](int key) { return verticesOf(*bezier(masks[key]), *bezier(blurs[key])); };
    auto const fail = [&](QString const& message)
    {
        throwOperationFailed("ShakeSSFRotoShapeExporter", __LINE__, QStringLiteral("writeShape"),
                             message.arg(QString::fromStdString(name)));
    };

    int const count = masks.isEmpty() ? 0 : masks.first()->numSpans();
    auto const isOdd = [&](auto const& curve) { return curve->numSpans() != count; };
    if (count == 0 || blurs.size() != masks.size() || std::any_of(masks.begin(), masks.end(), isOdd) ||
        std::any_of(blurs.begin(), blurs.end(), isOdd))
    {
        fail(QStringLiteral("The keys of the shape \"%1\" differ in their vertices"));
    }
    int firstFinite = 0;
    while (firstFinite < masks.size() && !areFinite(verticesAt(firstFinite)))
    {
        ++firstFinite;
    }
    if (firstFinite == masks.size())
    {
        fail(QStringLiteral("The shape \"%1\" has no outline with finite values"));
    }

    out.reserve(masks.size() * (count * NUMBERS_PER_VERTEX * USUAL_NUMBER + KEY_LENGTH));
    out << "shape_name " << QByteArray::fromStdString(name) << '\n'
        << SHAPE_SWITCHES << "num_vertices " << Integer{count} << "\nnum_key_times " << Integer{masks.size()} << '\n';
    int heldCount = 0;
    std::vector<Vertex> held = verticesAt(firstFinite);
    for (int key = 0; key < masks.size(); ++key)
    {
        std::vector<Vertex> vertices = verticesAt(key);
        bool const isFinite = areFinite(vertices);
        heldCount += isFinite ? 0 : 1;
        held = isFinite ? std::move(vertices) : held;
        writeKey(out, masks[key]->time, held);
    }
    return heldCount;
}

}
