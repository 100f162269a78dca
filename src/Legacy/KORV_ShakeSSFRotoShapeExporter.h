#pragma once

#include "Core/ExportApi.h"
#include "Host/ExportedShape.h"
#include "Host/ShapeExporter.h"

#include <QCoreApplication>

#include <vector>

namespace Export
{

class TextBuffer;

/// Contours as a shape data file of Shake, with a key in each frame.
class MARLO_EXPORT_API KORV_ShakeSSFRotoShapeExporter : public Korvane::ShapeExporter
{
    Q_DECLARE_TR_FUNCTIONS(KORV_ShakeSSFRotoShapeExporter)

public:
    KORV_ShakeSSFRotoShapeExporter();
    ~KORV_ShakeSSFRotoShapeExporter() override;

    /// One text, under `path`, in the first of the views. All shapes have keys in the same
    /// frames, from the first of any layer to the last; where a value isn't finite the key
    /// before holds, and an error text says how many these are. The user is warned of what the
    /// file has no place for.
    ///
    /// @throws std::logic_error for a curve that isn't a Bezier curve
    /// @throws KORV_OperationFailed for a contour without any finite key, and for a text of
    ///         more than two gigabytes
    std::shared_ptr<QMap<QString, QByteArray>> exportShape(KORV_ProjectManager& project, QString const& path,
                                                           QList<unsigned int> const& layerIds,
                                                           Options const& options) const override;

private:
    /// A shape with all its keys.
    /// @return keys that hold the one before
    static int writeShape(TextBuffer& out, std::string const& name, Korvane::ExportedShape::Curves const& masks,
                          Korvane::ExportedShape::Curves const& blurs);
};

}
