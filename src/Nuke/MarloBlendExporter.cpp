// Shapes for MarloBlend, which reads the file:
//
//   MarloBlend shape data
//   	Version 1
//   	Project Frame Offset 1001
//   	...
//   MarloBlendShape {
//    curves {AnimTree: "" {
//    Node: {
//    ...                       as Nuke roto shapes, without Version and RootNode

#include "Nuke/MarloBlendExporter.h"

#include "Host/KORV_ProjectManager.h"
#include "Nuke/parts/MarloBlendHeader.h"

namespace Export
{

namespace
{

// The key of the scrambling. Numbers have five significant digits, or all those in front
// of the point: with scales from 1000 on vertices come back to 0.0005 pixels.
constexpr double BIAS = -262144.5;
constexpr std::uint64_t SCALE_STEPS = 97;
constexpr double SMALLEST_SCALE = 1009.625;

double scaleOf(std::uint64_t seed)
{
    return static_cast<double>(seed % SCALE_STEPS) + SMALLEST_SCALE;
}

void writeHeader(TextBuffer& out, KORV_ProjectManager const& project, KORV_Layer const* layer)
{
    out << "MarloBlend shape data\n"
        << "\tVersion 1\n";
    for (MarloBlend::Field const& field : MarloBlend::fields(project, MarloBlend::trackedClip(project, layer), true))
    {
        out << MarloBlend::line(field) << '\n';
    }
}

}

MarloBlendExporter::MarloBlendExporter(bool withMatrix) : MarloBlendExporter(withMatrix, 0)
{
}

MarloBlendExporter::MarloBlendExporter(bool withMatrix, std::uint64_t fileSeed)
    : NukeRotoExporterBase(withMatrix, fileSeed, BIAS)
{
}

MarloBlendExporter::~MarloBlendExporter() = default;

std::shared_ptr<QMap<QString, QByteArray>> MarloBlendExporter::exportShape(KORV_ProjectManager& project,
                                                                           QString const& path,
                                                                           QList<unsigned int> const& layerIds,
                                                                           Options const& options) const
{
    auto const layers = Korvane::ShapeExportHelper::getLayersToExport(project, options.layerExportMode, layerIds);
    TextBuffer text(sizeAdvice());
    writeHeader(text, project, layers.isEmpty() ? nullptr : layers.first().get());
    MarloBlendExporter const keyed(m_withMatrix, seedOf(text.bytes()));
    unsigned int const leftOut = keyed.appendDocument(text, project, layerIds, options);
    return result(path, text.bytes(), leftOut);
}

QString MarloBlendExporter::getFormatName() const
{
    return QStringLiteral("MarloBlendShape");
}

QString MarloBlendExporter::getFormatVersion() const
{
    return QString();
}

QString MarloBlendExporter::getFormatRootNode() const
{
    return QString();
}

double MarloBlendExporter::obfuscate(double value) const
{
    return scaleOf(seed) * value + bias;
}

std::uint64_t MarloBlendExporter::seedOf(QByteArray const& header)
{
    std::uint64_t hash = 14695981039346656037U;
    for (char const byte : header)
    {
        hash = (hash ^ static_cast<unsigned char>(byte)) * 1099511628211U;
    }
    return hash;
}

double MarloBlendExporter::plainValue(double written, std::uint64_t seed)
{
    return (written - BIAS) / scaleOf(seed);
}

}
