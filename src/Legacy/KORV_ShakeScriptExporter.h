#pragma once

#include "Core/ExportApi.h"
#include "Host/ExporterHelper.h"
#include "Host/TrackingExporter.h"

#include <QByteArray>
#include <QList>

class ZN_ClipInfo;

namespace Export
{

class TextBuffer;

/// Three nodes of a Shake script that follow the corners of the surface: a corner pin, a
/// match move and a stabilizer.
class MARLO_EXPORT_API KORV_ShakeScriptExporter : public Korvane::TrackingExporter
{
public:
    KORV_ShakeScriptExporter();
    ~KORV_ShakeScriptExporter() override;

    /// The script lies under `path`; it is about the view of `referenceFrame`. Keys with
    /// values that aren't finite are left out of all nodes; each is counted once.
    /// @throws KORV_BadArgument when there is no such layer, or its clip is gone
    /// @throws KORV_OperationFailed when the text is larger than one file can hold
    Korvane::ExportedFiles exportTracking(KORV_ProjectManager& project, QString const& path, unsigned int layerId,
                                          Anm::Context const& referenceFrame, Options const& options) const override;

private:
    enum class ShakeScriptAxis
    {
        X,
        Y
    };

    /// x and y of each point, going around, as curves that are left open.
    using Curves = QList<QByteArray>;

    // What the helper, which is set up, has to say of the clip and the points. Names are
    // those of nodes without the word of their kind, reference frames are host frames.
    void preHeader(TextBuffer& out, ZN_ClipInfo const& clip) const;
    static void cornerPinScript(TextBuffer& out, QString const& name, Curves const& curves);
    static void matchMoveScript(TextBuffer& out, QString const& name, Curves const& curves);
    void stabilizeScript(TextBuffer& out, QString const& name, Curves const& curves, Options const& options,
                         int referenceFrame) const;
    void stabilizeScriptFooter(TextBuffer& out, int referenceFrame) const;

    /// @param areTracks whether the points are tracks, of which the first two have switches
    static void writeAllPoints(TextBuffer& out, Curves const& curves, bool areTracks);
    Curves pointCurves() const;

    /// One coordinate of a point as a curve, which is left open.
    void writePoints(TextBuffer& out, int point, ShakeScriptAxis axis) const;

    /// The number that the clip shows for a host frame.
    void writeFrame(TextBuffer& out, int frame) const;

    /// Points that the curves leave out.
    int countUnwritable() const;

    static QString sizeAdvice();

    mutable Korvane::TrackingExporterHelper m_helper;
};

}
