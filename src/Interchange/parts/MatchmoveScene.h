#pragma once
// The solve of a project as a matchmove project in memory: what the exporters of
// matchmove projects and of Alembic archives have in common.

#include "Host/CameraSolveExporter.h"
#include "Host/CameraSolveHelper.h"
#include "Host/Rig3D.h"

#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <memory>

namespace Export
{

/// What a user chose for an export of a solve.
struct MatchmoveChoice
{
    KV::CameraSolveExporter::ObjectsToExport objects = KV::CameraSolveExporter::AllObjects;
    bool includeFeatures = true;

    /// Which camera stands for a scene that was solved in stereo.
    KestreliaLib::Config::StereoCamera stereoCamera = KestreliaLib::Config::RigCamera;
};

/// Camera, points, feature sets and models of a solve. The scene's pose isn't in it.
class MatchmoveScene
{
public:
    MatchmoveScene(KORV_ProjectManager& project, KV::ExportSpec const& spec, MatchmoveChoice const& choice);

    /// False when no project could be made, as without a view; then there is no setup.
    bool isValid() const;

    /// As it was set up: axes of the scene, angles in XYZ about moving axes, millimetres,
    /// the scene's pose apart.
    Korvane::CameraSolve::ExporterHelper& helper();
    Rig3D::KestreliaSetup& setup();
    KestreliaLib::Scene& scene();

    /// The scene's pose, for a node above everything.
    KestreliaLib::Pose scenePose() const;

    /// What the user must know, one line each.
    QStringList messages() const;

    /// Samples that were left out, as they have values that aren't finite.
    int failedCount() const;

private:
    void addModels(KORV_ProjectManager const& project);

    Korvane::CameraSolve::ExporterHelper m_helper;
    std::unique_ptr<Rig3D::KestreliaSetup> m_setup;
    QStringList m_messages;
};

}
