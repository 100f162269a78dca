#pragma once
// Corner pins in the keyframe text of After Effects, and the targets that read the
// same text with effects and corner names of their own.

#include "AfterEffects/AETransformExporter.h"

#include <QMap>

namespace Export
{

using SurfaceCorner = Korvane::TrackingExporterTypes::SurfaceCorner;

/// After Effects Corner Pin with Motion Blur: Position, Rotation and Scale carry the
/// similarity part of the motion, so that motion blur sees it; the pin holds what is
/// left.
class MARLO_EXPORT_API AECornerPinExporter : public AETransformExporter
{
public:
    AECornerPinExporter();
    ~AECornerPinExporter() override;

    Korvane::ExportedFiles exportTracking(KORV_ProjectManager& project, QString const& path, unsigned int layerId,
                                          Anm::Context const& referenceFrame, Options const& options) const override;

protected:
    void prepareToExport(KORV_ProjectManager& project, unsigned int layerId,
                         Anm::Context::Explicit const& referenceFrame, Options const& options) const override;

    /// The effect as the target program calls it.
    virtual QString effectName() const;

    /// The effect's parameters for the corners.
    virtual QMap<SurfaceCorner, QString> cornerNames() const;

    /// A block per corner; none when there is nothing to export.
    ///
    /// @param padFromZero whether the first row is repeated from frame 0 on
    /// @param wholeFramesOnly whether every other field of interlaced material is
    ///        left out
    void writeCornerPin(AEExportBuilder& builder, bool padFromZero, bool wholeFramesOnly, Options const& options) const;

private:
    float flippedY(int frame, SurfaceCorner corner) const;
};

/// After Effects CS3 Corner Pin.
class MARLO_EXPORT_API AELegacyCornerPinExporter : public AECornerPinExporter
{
public:
    AELegacyCornerPinExporter();
    ~AELegacyCornerPinExporter() override;

protected:
    QString effectName() const override;
    QMap<SurfaceCorner, QString> cornerNames() const override;
};

/// After Effects Corner Pin: the corners where they are in the picture, alone.
class MARLO_EXPORT_API AESimpleCornerPinExporter : public AECornerPinExporter
{
public:
    AESimpleCornerPinExporter(bool padFromZero, bool wholeFramesOnly);
    ~AESimpleCornerPinExporter() override;

    Korvane::ExportedFiles exportTracking(KORV_ProjectManager& project, QString const& path, unsigned int layerId,
                                          Anm::Context const& referenceFrame, Options const& options) const override;

protected:
    void prepareToExport(KORV_ProjectManager& project, unsigned int layerId,
                         Anm::Context::Explicit const& referenceFrame, Options const& options) const override;

private:
    bool m_padFromZero;
    bool m_wholeFramesOnly;
};

/// After Effects CC Power Pin.
class MARLO_EXPORT_API AEPowerPinExporter : public AESimpleCornerPinExporter
{
public:
    AEPowerPinExporter();
    ~AEPowerPinExporter() override;

protected:
    QString effectName() const override;
    QMap<SurfaceCorner, QString> cornerNames() const override;
};

/// Vantarium Center Point: the anchor alone, on whole frames, from frame 0.
class MARLO_EXPORT_API KORV_VNTCenterPointExporter : public AETransformExporter
{
public:
    KORV_VNTCenterPointExporter();
    ~KORV_VNTCenterPointExporter() override;

protected:
    void writeHeader(AEExportBuilder& builder, bool doubleInterlacedHeight) const override;
    void writeDataBlock(AEExportBuilder& builder, OptionsEx const& options) const override;
};

/// Vantarium Corner Pin: whole frames, from frame 0.
class MARLO_EXPORT_API VNTCornerPinExporter : public AESimpleCornerPinExporter
{
public:
    VNTCornerPinExporter();
    ~VNTCornerPinExporter() override;

protected:
    QString effectName() const override;
    QMap<SurfaceCorner, QString> cornerNames() const override;
};

/// SCRATCH Corner Pin.
class MARLO_EXPORT_API ScratchCornerPinExporter : public AECornerPinExporter
{
public:
    ScratchCornerPinExporter();
    ~ScratchCornerPinExporter() override;

private:
    AEExportBuilder aeExportBuilder() const override;
    QString effectName() const override;
    QMap<SurfaceCorner, QString> cornerNames() const override;
};

/// Glimmerset Corner Pin. Inside a plug-in host frames count from the trim point.
class MARLO_EXPORT_API GlimmersetCornerPinExporter : public AESimpleCornerPinExporter
{
public:
    GlimmersetCornerPinExporter();
    ~GlimmersetCornerPinExporter() override;

protected:
    float frameNumberToExport(int frame) const override;
    QString effectName() const override;
    QMap<SurfaceCorner, QString> cornerNames() const override;
};

}
