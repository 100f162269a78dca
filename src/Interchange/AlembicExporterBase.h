#pragma once

#include "Core/ExportApi.h"
#include "Host/ExporterHelper.h"
#include "Host/TrackingExporter.h"

#include <string>

namespace ZN
{
namespace MeshTracking
{
class ParameterSet;
}
}

namespace Export
{

struct AlembicContents;

/// What writes a layer's tracked mesh as an Alembic archive (Ogawa): beside what a subclass
/// makes of the mesh it holds a camera, "marlo-camera", with the film back of the clip.
///
/// One unit is 100 pixels of the clip's raster, x to the right, y up, with the origin in the
/// lower left corner of the picture; z is 0. There is a sample for each frame of the layer, at
/// its shown number divided by the frame rate; fields are half a frame apart.
class MARLO_EXPORT_API AlembicExporterBase : public Korvane::TrackingExporter
{
public:
    AlembicExporterBase();
    ~AlembicExporterBase() override;

    /// The archive lies under `path`; that of a layer without a mesh holds the camera alone.
    /// Where a vertex has a value that isn't finite, it stays where it was the frame before,
    /// and is counted.
    ///
    /// @throws KORV_BadArgument when there is no such layer or its clip is gone
    /// @throws KORV_ExternalException with the library's words when it refuses something
    /// @throws KORV_OperationFailed when the file would be larger than one can be
    Korvane::ExportedFiles exportTracking(KORV_ProjectManager& project, QString const& path, unsigned int layerId,
                                          Anm::Context const& referenceFrame, Options const& options) const override;

protected:
    Korvane::TrackingExporterHelper const& helper() const;

private:
    /// Adds what there is of the mesh, a sample for each frame of the helper.
    ///
    /// @param name of the layer, UTF-8
    /// @param contents private to the library
    /// @return how many positions weren't finite
    virtual int exportGeometry(std::string const& name, ZN::MeshTracking::ParameterSet const& mesh,
                               AlembicContents& contents) const = 0;

    /// What a vertex takes in a frame at least, in bytes: its numbers.
    virtual qint64 bytesOfVertex() const = 0;

    /// The bytes of an archive with the camera and, where there is a mesh, what
    /// exportGeometry() makes of it. Failures and notices go to the result.
    QByteArray exportScene(std::string const& name, std::string const& cameraName,
                           ZN::MeshTracking::ParameterSet const* mesh, Korvane::ExportedFiles& result) const;

    mutable Korvane::TrackingExporterHelper m_helper;
};

}
