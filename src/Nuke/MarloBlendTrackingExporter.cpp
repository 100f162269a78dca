// Tracking data for MarloBlend, which reads the file:
//
//   MarloBlend tracking data
//   	Project Frame Offset 1001
//   	...
//   	Layer Name Wall
//
//   Position
//   ...                        as After Effects Corner Pin with Motion Blur

#include "Nuke/MarloBlendTrackingExporter.h"

#include "Host/KORV_Layer.h"
#include "Host/KORV_ProjectManager.h"
#include "Nuke/parts/MarloBlendHeader.h"
#include "Writing/Results.h"
#include "Writing/Setup.h"
#include "Writing/ThrowHelpers.h"

#include <stdexcept>

namespace Export
{

namespace
{

/// A builder whose document opens with the heading alone.
class BlendBuilder final : public AEExportBuilder
{
public:
    BlendBuilder() : AEExportBuilder(AfterEffects)
    {
    }

    void addExportHeader(float, unsigned int, unsigned int, double) override
    {
        addLine(QStringLiteral("MarloBlend tracking data"));
    }
};

}

MarloBlendTrackingExporter::MarloBlendTrackingExporter() = default;
MarloBlendTrackingExporter::~MarloBlendTrackingExporter() = default;

Korvane::ExportedFiles MarloBlendTrackingExporter::exportTracking(KORV_ProjectManager& project, QString const& path,
                                                                  unsigned int layerId,
                                                                  Anm::Context const& referenceFrame,
                                                                  Options const& options) const
{
    switch (trySetUpTrackingHelper(helper(), project, layerId, referenceFrame.view(), options.framesToExport))
    {
    case Missing::Layer:
        throwBadArgument(QStringLiteral("No selected layer"));
    case Missing::Clip:
        throw std::logic_error("Incorrect Clip");
    case Missing::Nothing:
        break;
    }
    prepareToExport(project, layerId, Anm::Context::Explicit(referenceFrame), options);

    BlendBuilder builder;
    writeMarloBlenHeader(builder, true, layerId);
    writePosition(builder);
    writeRotation(builder);
    writeScale(builder);
    writeCornerPin(builder, false, false, options);
    builder.addExportFooter();
    return fileResult(path, builder.bytes(), static_cast<int>(builder.getErrorCount()), helper().failureMessages());
}

void MarloBlendTrackingExporter::writeMarloBlenHeader(AEExportBuilder& builder, bool doubleInterlacedHeight,
                                                      unsigned int layerId) const
{
    KORV_ProjectManager const& project = *helper().projectManager();
    writeHeader(builder, doubleInterlacedHeight);
    for (MarloBlend::Field const& field : MarloBlend::fields(project, helper().baseClipInfo(), doubleInterlacedHeight))
    {
        builder.addLine(MarloBlend::line(field));
    }
    KORV_Layer const* const layer = project.pGetSelectionManager()->layerFromNumericID(layerId, false);
    builder.addLine(MarloBlend::line({"Layer Name", layer->name()}));
}

}
