#pragma once

#include "AfterEffects/AEExportBuilder.h"
#include "Host/ExporterHelper.h"
#include "Host/TrackingExporter.h"

namespace Export
{

/// Position, Scale and Rotation of a layer as After Effects keyframes; also the
/// base of the corner pins that share the keyframe text.
class MARLO_EXPORT_API AETransformExporter : public Korvane::TrackingExporter
{
public:
    AETransformExporter();
    ~AETransformExporter() override;

    /// The text lies under `path`. Rows with values that aren't finite are left
    /// out and counted.
    /// @throws KORV_BadArgument when there is no such layer
    Korvane::ExportedFiles exportTracking(KORV_ProjectManager& project, QString const& path, unsigned int layerId,
                                          Anm::Context const& referenceFrame, Options const& options) const override;

protected:
    struct OptionsEx : Options
    {
        /// Whether "Anchor Point" stands ahead of the other blocks.
        bool exportAnchorPoint = false;
    };

    /// Fills the helper, which is set up already.
    virtual void prepareToExport(KORV_ProjectManager& project, unsigned int layerId,
                                 Anm::Context::Explicit const& referenceFrame, Options const& options) const;

    /// @param doubleInterlacedHeight whether interlaced material has the height of
    ///        the full frame instead of the field
    virtual void writeHeader(AEExportBuilder& builder, bool doubleInterlacedHeight) const;

    /// The number in the frame column for a host frame.
    virtual float frameNumberToExport(int frame) const;

    virtual void writeDataBlock(AEExportBuilder& builder, OptionsEx const& options) const;
    virtual AEExportBuilder aeExportBuilder() const;

    // The blocks. `firstOnly` writes the first sample alone.
    void writeAnchorPoint(AEExportBuilder& builder, bool firstOnly) const;
    void writePosition(AEExportBuilder& builder) const;
    void writeRotation(AEExportBuilder& builder) const;
    void writeScale(AEExportBuilder& builder) const;

    /// Rows of the anchor's position, for a block that the caller has opened.
    ///
    /// @param addZ whether a z of 0 follows
    /// @param padFromZero whether the first row is repeated from frame 0 on
    /// @param wholeFramesOnly whether every other field of interlaced material is
    ///        left out
    void writeAnchorPosition(AEExportBuilder& builder, bool firstOnly, bool addZ, bool padFromZero,
                             bool wholeFramesOnly) const;

    Korvane::TrackingExporterHelper& helper() const;

    /// Whether a number of the frame column has no fraction.
    static bool isWholeFrame(float exported);

private:
    mutable Korvane::TrackingExporterHelper m_helper;
    QStringList m_positionColumns;
};

}
