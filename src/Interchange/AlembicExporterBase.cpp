// Alembic 2D mesh data and vertex transforms: any program that imports Alembic reads them.
//
//   /marlo-camera         a camera at rest in the origin: film back of the clip
//   /Poster               what a subclass makes of the mesh of the layer "Poster"
//
// The camera is where the mesh is, in the plane z = 0, and so doesn't see it. Its focal length
// is as long as its film back is wide: moved to the middle of the picture, at (w/200, h/200),
// and back by the picture's width, w/100, it sees the mesh as it lies in the picture.

#include "Interchange/AlembicExporterBase.h"

#include "Host/KORV_Layer.h"
#include "Host/KORV_ProjectManager.h"
#include "Host/MeshTracking.h"
#include "Host/ZN_ClipInfo.h"
#include "Interchange/parts/AlembicArchive.h"
#include "Writing/Results.h"
#include "Writing/Setup.h"

namespace Export
{

namespace
{

constexpr char CAMERA_NAME[] = "marlo-camera";

constexpr double MILLIMETRES_PER_CENTIMETRE = 10.0;

/// Scene units: a tenth of a pixel and a thousand pictures of 4K.
constexpr double NEAREST = 0.001;
constexpr double FARTHEST = 100000.0;

Alembic::AbcGeom::CameraSample cameraOf(ZN_BaseClipInfo const& clip)
{
    ZN::FilmType const& film = clip.filmType();
    Alembic::AbcGeom::CameraSample sample;
    sample.setHorizontalAperture(film.filmBackWidth() / MILLIMETRES_PER_CENTIMETRE);
    sample.setVerticalAperture(film.filmBackHeight() / MILLIMETRES_PER_CENTIMETRE);
    sample.setFocalLength(film.filmBackWidth());
    sample.setNearClippingPlane(NEAREST);
    sample.setFarClippingPlane(FARTHEST);
    return sample;
}

}

AlembicExporterBase::AlembicExporterBase() = default;
AlembicExporterBase::~AlembicExporterBase() = default;

Korvane::ExportedFiles AlembicExporterBase::exportTracking(KORV_ProjectManager& project, QString const& path,
                                                           unsigned int layerId, Anm::Context const& referenceFrame,
                                                           Options const& options) const
{
    setUpTrackingHelper(m_helper, project, layerId, referenceFrame.view(), options.framesToExport);
    KORV_Layer const& layer = *project.sm()->layerFromNumericID(layerId, false);
    Korvane::ExportedFiles result;
    result.files.insert(path, exportScene(layer.name().toStdString(), CAMERA_NAME, layer.trackMesh().get(), result));
    return result;
}

QByteArray AlembicExporterBase::exportScene(std::string const& name, std::string const& cameraName,
                                            ZN::MeshTracking::ParameterSet const* mesh,
                                            Korvane::ExportedFiles& result) const
{
    auto const fill = [&](AlembicContents& contents)
    {
        Alembic::AbcGeom::OCamera camera(contents.top, contents.names.claimOwn(QString::fromStdString(cameraName)),
                                         contents.timeSampling);
        camera.getSchema().set(cameraOf(*m_helper.baseClipInfo()));
        if (mesh && m_helper.firstFrame().value() >= 0)
        {
            result.failedCount = exportGeometry(name, *mesh, contents);
        }
        if (!contents.names.renamed().isEmpty())
        {
            result.notices.push_back(
                {QStringLiteral("DontShowAlembicNamesInfoMsg"), QStringLiteral("Alembic"), contents.names.renamed()});
        }
    };
    qint64 const vertices = mesh ? static_cast<qint64>(mesh->vertices().size()) : 0;
    return writeAlembic(alembicTime(m_helper, static_cast<int>(m_helper.firstFrame().value())),
                        vertices * m_helper.numFrames() * bytesOfVertex(), fill);
}

Korvane::TrackingExporterHelper const& AlembicExporterBase::helper() const
{
    return m_helper;
}

}
