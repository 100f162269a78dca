#pragma once

#include "Core/ExportApi.h"
#include "Host/ShapeExporter.h"

namespace Export
{

/// After Effects Mask Data: roto contours as keyframe text for the importer plug-in, an
/// effect for each mask.
class MARLO_EXPORT_API MarloShapeAEExporter : public Korvane::ShapeExporter
{
public:
    /// The parameter that carries the colour of the layer.
    static constexpr char SHAPE_COLOUR_NAME[] = "Shape colour";

    MarloShapeAEExporter();
    ~MarloShapeAEExporter() override;
    MarloShapeAEExporter(MarloShapeAEExporter const& other);
    MarloShapeAEExporter& operator=(MarloShapeAEExporter const& other);

    /// One text, under `path`, of the first view of the options. Layers without a frame in
    /// the project are left out, and so are rows with values that aren't finite.
    ///
    /// @throws KORV_BadArgument for a layer whose clip is gone
    std::shared_ptr<QMap<QString, QByteArray>> exportShape(KORV_ProjectManager& project, QString const& path,
                                                           QList<unsigned int> const& layerIds,
                                                           Options const& options) const override;
};

}
