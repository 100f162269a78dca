// Corner pins as keyframe text, which the user pastes onto a layer. Behind the header
// of the document, and for the pins with motion blur behind Position, Rotation and
// Scale, there is a block for each corner:
//
//   Effects	ADBE Corner Pin #1	ADBE Corner Pin-0001
//   	Frame	X pixels	Y pixels
//   	0	100	980
//   	1	101	980.5
//
// in the order upper left, upper right, lower left, lower right, y down.

#include "AfterEffects/AECornerPinExporters.h"

#include "Host/KORV_ProjectManager.h"
#include "Host/Product.h"
#include "Host/ZN_ClipInfo.h"
#include "Writing/Frames.h"
#include "Writing/Results.h"
#include "Writing/Setup.h"

namespace Export
{

namespace
{

using Corners = Korvane::TrackingExporterTypes;

constexpr SurfaceCorner WRITING_ORDER[] = {Corners::UpperLeft, Corners::UpperRight, Corners::LowerLeft,
                                           Corners::LowerRight};

QString const& ADBE_CORNER_PIN_PREFIX()
{
    static QString const prefix = QStringLiteral("ADBE Corner Pin-000");
    return prefix;
}

QString const& CC_POWER_PIN_PREFIX()
{
    static QString const prefix = QStringLiteral("CC Power Pin-000");
    return prefix;
}

// Prefix and consecutive digits in writing order.
QMap<SurfaceCorner, QString> numberedNames(QString const& prefix, int first)
{
    QMap<SurfaceCorner, QString> names;
    for (SurfaceCorner const corner : WRITING_ORDER)
    {
        names.insert(corner, prefix + QString::number(first++));
    }
    return names;
}

QMap<SurfaceCorner, QString> topAndBottomNames()
{
    return {{Corners::UpperLeft, "Top Left"},
            {Corners::UpperRight, "Top Right"},
            {Corners::LowerLeft, "Bottom Left"},
            {Corners::LowerRight, "Bottom Right"}};
}

}

AECornerPinExporter::AECornerPinExporter() = default;
AECornerPinExporter::~AECornerPinExporter() = default;

Korvane::ExportedFiles AECornerPinExporter::exportTracking(KORV_ProjectManager& project, QString const& path,
                                                           unsigned int layerId, Anm::Context const& referenceFrame,
                                                           Options const& options) const
{
    setUpTrackingHelper(helper(), project, layerId, referenceFrame.view(), options.framesToExport);
    prepareToExport(project, layerId, Anm::Context::Explicit(referenceFrame), options);

    AEExportBuilder builder = aeExportBuilder();
    writeHeader(builder, false);
    writePosition(builder);
    writeRotation(builder);
    writeScale(builder);
    writeCornerPin(builder, false, false, options);
    builder.addExportFooter();
    return fileResult(path, builder.bytes(), static_cast<int>(builder.getErrorCount()), helper().failureMessages());
}

void AECornerPinExporter::prepareToExport(KORV_ProjectManager& project, unsigned int layerId,
                                          Anm::Context::Explicit const& referenceFrame, Options const& options) const
{
    AETransformExporter::prepareToExport(project, layerId, referenceFrame, options);
    helper().makeCornerPinDataRelative();
}

void AECornerPinExporter::writeCornerPin(AEExportBuilder& builder, bool padFromZero, bool wholeFramesOnly,
                                         Options const&) const
{
    builder.newEffect(effectName());
    QStringList const columns{"X pixels", "Y pixels"};
    QMap<SurfaceCorner, QString> const names = cornerNames();
    boost::shared_array<TXI::Pos2[5]> const points = helper().surfacePoints();
    int const first = static_cast<int>(helper().firstFrame().value());
    if (first == -1)
    {
        return;
    }
    builder.reserveRows(4 * (helper().numFrames() + (padFromZero ? first : 0)));
    QList<double> values{0, 0};
    for (SurfaceCorner const corner : WRITING_ORDER)
    {
        builder.addParamHeader(names.value(corner), columns);
        bool isPadded = !padFromZero || first == 0;
        forEachFrame(helper(),
                     [&](int row, int frame)
                     {
                         float const exported = frameNumberToExport(frame);
                         if (wholeFramesOnly && !isWholeFrame(exported))
                         {
                             return;
                         }
                         values[0] = points[row][corner].x;
                         values[1] = static_cast<double>(flippedY(frame, corner));
                         for (float padded = 0; !isPadded && padded < exported; ++padded)
                         {
                             builder.addValues(padded, values);
                         }
                         isPadded = true;
                         builder.addValues(exported, values);
                     });
    }
}

// y goes through a float and x doesn't; the target programs' projects in the field
// were made with these digits.
float AECornerPinExporter::flippedY(int frame, SurfaceCorner corner) const
{
    int const row = frame - static_cast<int>(helper().firstFrame().value());
    float const fullHeight = static_cast<float>(helper().baseClipInfo()->height()) * helper().heightScale();
    return static_cast<float>(static_cast<double>(fullHeight) - helper().surfacePoints()[row][corner].y);
}

QString AECornerPinExporter::effectName() const
{
    return QStringLiteral("ADBE Corner Pin");
}

QMap<SurfaceCorner, QString> AECornerPinExporter::cornerNames() const
{
    return numberedNames(ADBE_CORNER_PIN_PREFIX(), 1);
}

AELegacyCornerPinExporter::AELegacyCornerPinExporter() = default;
AELegacyCornerPinExporter::~AELegacyCornerPinExporter() = default;

QString AELegacyCornerPinExporter::effectName() const
{
    return QStringLiteral("Corner Pin");
}

QMap<SurfaceCorner, QString> AELegacyCornerPinExporter::cornerNames() const
{
    return {{Corners::UpperLeft, "Upper Left"},
            {Corners::UpperRight, "Upper Right"},
            {Corners::LowerLeft, "Lower Left"},
            {Corners::LowerRight, "Lower Right"}};
}

AESimpleCornerPinExporter::AESimpleCornerPinExporter(bool padFromZero, bool wholeFramesOnly)
    : m_padFromZero(padFromZero), m_wholeFramesOnly(wholeFramesOnly)
{
}

AESimpleCornerPinExporter::~AESimpleCornerPinExporter() = default;

Korvane::ExportedFiles AESimpleCornerPinExporter::exportTracking(KORV_ProjectManager& project, QString const& path,
                                                                 unsigned int layerId,
                                                                 Anm::Context const& referenceFrame,
                                                                 Options const& options) const
{
    setUpTrackingHelper(helper(), project, layerId, referenceFrame.view(), options.framesToExport);
    prepareToExport(project, layerId, Anm::Context::Explicit(referenceFrame), options);

    AEExportBuilder builder = aeExportBuilder();
    writeHeader(builder, m_wholeFramesOnly);
    writeCornerPin(builder, m_padFromZero, m_wholeFramesOnly, options);
    builder.addExportFooter();
    return fileResult(path, builder.bytes(), static_cast<int>(builder.getErrorCount()), helper().failureMessages());
}

void AESimpleCornerPinExporter::prepareToExport(KORV_ProjectManager& project, unsigned int layerId,
                                                Anm::Context::Explicit const& referenceFrame,
                                                Options const& options) const
{
    helper().updateSurfacePoints(project, layerId, referenceFrame, options, nullptr);
}

AEPowerPinExporter::AEPowerPinExporter() : AESimpleCornerPinExporter(false, false)
{
}

AEPowerPinExporter::~AEPowerPinExporter() = default;

QString AEPowerPinExporter::effectName() const
{
    return QStringLiteral("CC Power Pin");
}

QMap<SurfaceCorner, QString> AEPowerPinExporter::cornerNames() const
{
    // The effect's first parameter isn't a corner.
    return numberedNames(CC_POWER_PIN_PREFIX(), 2);
}

KORV_VNTCenterPointExporter::KORV_VNTCenterPointExporter() = default;
KORV_VNTCenterPointExporter::~KORV_VNTCenterPointExporter() = default;

void KORV_VNTCenterPointExporter::writeHeader(AEExportBuilder& builder, bool) const
{
    AETransformExporter::writeHeader(builder, true);
}

void KORV_VNTCenterPointExporter::writeDataBlock(AEExportBuilder& builder, OptionsEx const&) const
{
    builder.newEffect(QStringLiteral("VNT Match Move"));
    builder.addParamHeader(QStringLiteral("Tracker Center KF"), {"X pixels", "Y pixels"});
    writeAnchorPosition(builder, false, false, true, true);
}

VNTCornerPinExporter::VNTCornerPinExporter() : AESimpleCornerPinExporter(true, true)
{
}

VNTCornerPinExporter::~VNTCornerPinExporter() = default;

QString VNTCornerPinExporter::effectName() const
{
    return QStringLiteral("VNT Corner Pin");
}

QMap<SurfaceCorner, QString> VNTCornerPinExporter::cornerNames() const
{
    // The program tells the four blocks apart by their order.
    QString const name = QStringLiteral("Tracker Center KF");
    return {{Corners::UpperLeft, name},
            {Corners::UpperRight, name},
            {Corners::LowerLeft, name},
            {Corners::LowerRight, name}};
}

ScratchCornerPinExporter::ScratchCornerPinExporter() = default;
ScratchCornerPinExporter::~ScratchCornerPinExporter() = default;

AEExportBuilder ScratchCornerPinExporter::aeExportBuilder() const
{
    return AEExportBuilder(AEExportBuilder::Scratch);
}

QString ScratchCornerPinExporter::effectName() const
{
    return QStringLiteral("SCRATCH Corner Pin");
}

QMap<SurfaceCorner, QString> ScratchCornerPinExporter::cornerNames() const
{
    return topAndBottomNames();
}

GlimmersetCornerPinExporter::GlimmersetCornerPinExporter() : AESimpleCornerPinExporter(false, false)
{
}

GlimmersetCornerPinExporter::~GlimmersetCornerPinExporter() = default;

float GlimmersetCornerPinExporter::frameNumberToExport(int frame) const
{
    float const exported = AESimpleCornerPinExporter::frameNumberToExport(frame);
    if (!Product::isPlugin())
    {
        return exported;
    }
    return exported - static_cast<float>(helper().projectManager()->projProps().trimInPoint());
}

QString GlimmersetCornerPinExporter::effectName() const
{
    return QStringLiteral("CC Power Pin");
}

QMap<SurfaceCorner, QString> GlimmersetCornerPinExporter::cornerNames() const
{
    return topAndBottomNames();
}

}
