#pragma once

#include "Nuke/NukeTrackingExporterBase.h"

namespace Export
{

/// What moves the four corners of a layer's surface.
class MARLO_EXPORT_API NukeCornerExporterBase : public NukeTrackingExporterBase
{
public:
    /// The corners as CornerPin2D counts them: counter-clockwise from the lower left.
    struct CornerPin
    {
        NukePointCurve to1;
        NukePointCurve to2;
        NukePointCurve to3;
        NukePointCurve to4;
    };

    NukeCornerExporterBase();
    ~NukeCornerExporterBase() override;

    /// @param curves to1 to to4; any other number stands for corners without keys
    QString exportSingleView(QString const& name, QVector<NukePointCurve> const& curves) const override;

    virtual QString exportSingleView(QString const& name, CornerPin const& pin) const = 0;

protected:
    QVector<NukePointCurve> createCurves() const override;

private:
    CornerPin createCornerPin() const;
};

}
