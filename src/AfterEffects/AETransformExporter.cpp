// After Effects Transform Data: the user copies the text and pastes it onto a layer,
// whose Position, Scale and Rotation get the keyframes of the track.
//
//   Adobe After Effects 6.0 Keyframe Data
//
//   	Units Per Second	24
//   	Source Width	1920
//   	...
//
//   Position
//   	Frame	X pixels	Y pixels	Z pixels
//   	0	960	540	0
//
//   Scale
//   	Frame	X percent	Y percent	Z percent
//   	0	100	100	100
//
//   Rotation
//   	Frame	Degrees
//   	0	0
//
//   End of Keyframe Data

#include "AfterEffects/AETransformExporter.h"

#include "Host/KORV_ProjectManager.h"
#include "Host/ZN_ClipInfo.h"
#include "Writing/Results.h"
#include "Writing/Setup.h"

#include <cmath>

namespace Export
{

AETransformExporter::AETransformExporter() : m_positionColumns{"X pixels", "Y pixels", "Z pixels"}
{
}

AETransformExporter::~AETransformExporter() = default;

Korvane::ExportedFiles AETransformExporter::exportTracking(KORV_ProjectManager& project, QString const& path,
                                                           unsigned int layerId, Anm::Context const& referenceFrame,
                                                           Options const& options) const
{
    OptionsEx const optionsEx{options, false};
    setUpTrackingHelper(m_helper, project, layerId, referenceFrame.view(), options.framesToExport);
    prepareToExport(project, layerId, Anm::Context::Explicit(referenceFrame), options);

    AEExportBuilder builder = aeExportBuilder();
    writeHeader(builder, false);
    writeDataBlock(builder, optionsEx);
    builder.addExportFooter();
    return fileResult(path, builder.bytes(), static_cast<int>(builder.getErrorCount()), m_helper.failureMessages());
}

void AETransformExporter::prepareToExport(KORV_ProjectManager& project, unsigned int layerId,
                                          Anm::Context::Explicit const& referenceFrame, Options const& options) const
{
    m_helper.updateSurfacePoints(project, layerId, referenceFrame, options, nullptr);
    m_helper.buildTransformDataFromSurfaceMotion(false, true, static_cast<unsigned int>(referenceFrame.time().value()));
}

void AETransformExporter::writeHeader(AEExportBuilder& builder, bool doubleInterlacedHeight) const
{
    ZN_BaseClipInfo const& clip = *m_helper.baseClipInfo();
    bool const doubled = doubleInterlacedHeight && clip.bIsInterlaced();
    builder.addExportHeader(static_cast<float>(m_helper.projectManager()->frameRate()), clip.width(),
                            doubled ? clip.height() * 2 : clip.height(), clip.format().par());
}

float AETransformExporter::frameNumberToExport(int frame) const
{
    return static_cast<float>(frame) * m_helper.frameScale();
}

void AETransformExporter::writeDataBlock(AEExportBuilder& builder, OptionsEx const& options) const
{
    // Motion onto the footage itself turns about the middle of the picture, where a
    // layer has its anchor point anyway.
    if (options.exportAnchorPoint && options.trackingOption != ZN_TRACKING_OPTION_STABILIZED && !options.invert)
    {
        writeAnchorPoint(builder, false);
    }
    writePosition(builder);
    writeScale(builder);
    writeRotation(builder);
}

AEExportBuilder AETransformExporter::aeExportBuilder() const
{
    return AEExportBuilder(AEExportBuilder::AfterEffects);
}

void AETransformExporter::writeAnchorPoint(AEExportBuilder& builder, bool firstOnly) const
{
    builder.addParamHeader(QStringLiteral("Anchor Point"), m_positionColumns);
    writeAnchorPosition(builder, firstOnly, true, false, false);
}

void AETransformExporter::writePosition(AEExportBuilder& builder) const
{
    builder.addParamHeader(QStringLiteral("Position"), m_positionColumns);
    writeAnchorPosition(builder, false, true, false, false);
}

void AETransformExporter::writeScale(AEExportBuilder& builder) const
{
    builder.addParamHeader(QStringLiteral("Scale"), {"X percent", "Y percent", "Z percent"});
    QList<double> values{0, 0, 100};
    for (auto const& [frame, sample] : m_helper.transformSamples())
    {
        values[0] = sample.scale * 100;
        values[1] = values[0];
        builder.addValues(frameNumberToExport(frame), values);
    }
}

void AETransformExporter::writeRotation(AEExportBuilder& builder) const
{
    builder.addParamHeader(QStringLiteral("Rotation"), {"Degrees"});
    for (auto const& [frame, sample] : m_helper.transformSamples())
    {
        // After Effects turns clockwise.
        builder.addValue(frameNumberToExport(frame), sample.rotation * -180.0 / 3.141592653589793);
    }
}

void AETransformExporter::writeAnchorPosition(AEExportBuilder& builder, bool firstOnly, bool addZ, bool padFromZero,
                                              bool wholeFramesOnly) const
{
    std::map<int, Korvane::TransformSample> const& samples = m_helper.transformSamples();
    bool const fieldLines = wholeFramesOnly && m_helper.isInterlaced();
    bool isPadded = !padFromZero || samples.empty() || samples.begin()->first == 0;
    QList<double> values = addZ ? QList<double>{0, 0, 0} : QList<double>{0, 0};
    for (auto const& [frame, sample] : samples)
    {
        float const exported = frameNumberToExport(frame);
        if (!wholeFramesOnly || isWholeFrame(exported))
        {
            values[0] = sample.x;
            values[1] = fieldLines ? sample.y - m_helper.baseClipInfo()->height() : sample.y;
            for (float padded = 0; !isPadded && padded < exported; ++padded)
            {
                builder.addValues(padded, values);
            }
            isPadded = true;
            builder.addValues(exported, values);
        }
        if (firstOnly)
        {
            break;
        }
    }
}

Korvane::TrackingExporterHelper& AETransformExporter::helper() const
{
    return m_helper;
}

bool AETransformExporter::isWholeFrame(float exported)
{
    float whole;
    return std::modf(exported, &whole) == 0.0F;
}

}
