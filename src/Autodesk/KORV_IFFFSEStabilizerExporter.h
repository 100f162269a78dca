#pragma once

#include "Host/ExporterHelper.h"
#include "Host/TrackingExporter.h"

#include "Core/ExportApi.h"

#include <array>

namespace Export
{

class TextBuffer;
class TrackerSamples;

/// A stabilizer setup of four trackers, one on each corner of the surface.
class MARLO_EXPORT_API KORV_IFFFSEStabilizerExporter : public Korvane::TrackingExporter
{
public:
    KORV_IFFFSEStabilizerExporter();
    ~KORV_IFFFSEStabilizerExporter() override;

    /// Shifts count from the reference frame, or from the frame of the layer that is nearest to
    /// it. A key with a value that isn't finite is left out and counted.
    /// @throws KORV_BadArgument when there is no such layer or its clip is gone
    Korvane::ExportedFiles exportTracking(KORV_ProjectManager& project, QString const& path, unsigned int layerId,
                                          Anm::Context const& referenceFrame, Options const& options) const override;

protected:
    static constexpr int TRACKERS = 4;

    /// The corner that a tracker is on, by the tracker's index.
    using Corners = std::array<Korvane::TrackingExporterTypes::SurfaceCorner, TRACKERS>;

    explicit KORV_IFFFSEStabilizerExporter(Corners const& corners);

    /// Lines of the head that are the same in every setup.
    virtual QString headerConsts() const;
    virtual QString trackerName(int index) const;

    /// The line with the version of the file format.
    virtual QString version() const;

private:
    void appendHeader(TextBuffer& out, float referenceFrame) const;

    /// @return keys that were left out
    int appendPoints(TextBuffer& out, TrackerSamples const& samples, int referenceSample) const;

    mutable Korvane::TrackingExporterHelper m_helper;
    Corners m_corners;
};

/// The same as version 6.0, whose trackers are named by column and row.
class MARLO_EXPORT_API KORV_IFFFSEStabilizerExporterFlame2014 : public KORV_IFFFSEStabilizerExporter
{
public:
    KORV_IFFFSEStabilizerExporterFlame2014();
    ~KORV_IFFFSEStabilizerExporterFlame2014() override;

protected:
    QString headerConsts() const override;
    QString trackerName(int index) const override;
    QString version() const override;
};

}
