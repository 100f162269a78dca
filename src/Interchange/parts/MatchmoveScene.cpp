#include "Interchange/parts/MatchmoveScene.h"

#include "Host/KORV_ProjectManager.h"

#include <QFileInfo>

namespace Export
{

namespace
{

/// The one that a project takes its numbers from.
constexpr unsigned int CLIP_OF_PROJECT = 1;

Anm::Context contextAt(int frame)
{
    return Anm::Context(Anm::Time::fromInt(frame), Anm::View::defaultView(), Anm::ProxyScale::Full);
}

}

MatchmoveScene::MatchmoveScene(KORV_ProjectManager& project, KV::ExportSpec const& spec, MatchmoveChoice const& choice)
{
    KORV_Clip const* const clip = project.parameterManager()->getClip(CLIP_OF_PROJECT);
    if (spec.views.empty() || !clip)
    {
        return;
    }
    m_helper.initialise(project, spec.views.front(), spec.layers, spec.framesToExport,
                        choice.objects == KV::CameraSolveExporter::SelectedObjects,
                        choice.objects == KV::CameraSolveExporter::VisibleObjects, choice.includeFeatures, nullptr);
    Rig3D::KestreliaSetup::applyHelperSettings(m_helper);
    KestreliaLib::Config config;
    config.stereoCamera = choice.stereoCamera;
    Rig3D::KestreliaSetup::updateConfig(config, project.scene3DParameters());
    Anm::ContextRange const range(contextAt(0), contextAt(project.frameCount() - 1));
    m_setup = std::make_unique<Rig3D::KestreliaSetup>(*clip, range, config, project.frameRate(),
                                                      static_cast<double>(project.frameOffset()));
    if (!m_setup->isValid())
    {
        return;
    }
    noteStereo(spec, choice, config);
    m_setup->initMovingObjectIds(project, m_helper);
    m_setup->addSolveData(m_helper, project, choice.includeFeatures);
    addModels(project);

    KV::NullAccuracySource accuracy;
    accuracy.processNulls(m_helper.layerIDsToExport(), &project, spec.views);
    if (QString const warning = accuracy.warnInaccurateNulls(); !warning.isEmpty())
    {
        m_messages += warning;
    }
}

void MatchmoveScene::noteStereo(KV::ExportSpec const& spec, MatchmoveChoice const& choice,
                                KestreliaLib::Config const& config)
{
    if (!config.isStereo)
    {
        return;
    }
    if (choice.stereoCamera == KestreliaLib::Config::RigCamera)
    {
        m_messages += tr("The camera is the one between the eyes of the stereo rig, which no picture was taken with.");
    }
    else if (spec.views.size() > 1)
    {
        m_messages += tr("The file holds the camera of one eye, that of the first view.");
    }
}

void MatchmoveScene::addModels(KORV_ProjectManager const& project)
{
    for (auto const& asset : m_helper.fileAssetsToExport())
    {
        ZN::AssetMeshes const read = ZN::readAssetMeshes(*asset, project);
        if (!read.failure.isEmpty())
        {
            m_messages += tr("A model isn't exported: %1").arg(read.failure);
            continue;
        }
        m_setup->addModel(m_helper.collectPointData(asset->points(), true, true), read.meshes,
                          QFileInfo(asset->path()).completeBaseName(), asset->parentID());
    }
}

bool MatchmoveScene::isValid() const
{
    return m_setup && m_setup->isValid();
}

Korvane::CameraSolve::ExporterHelper& MatchmoveScene::helper()
{
    return m_helper;
}

Rig3D::KestreliaSetup& MatchmoveScene::setup()
{
    return *m_setup;
}

KestreliaLib::Scene& MatchmoveScene::scene()
{
    return m_setup->scene();
}

KestreliaLib::Pose MatchmoveScene::scenePose() const
{
    Korvane::CameraSolve::KeyframePRS const pose = m_helper.sceneTransformForExport();
    return Rig3D::toKestreliaPose(pose.position, pose.rotation, pose.scale);
}

QStringList MatchmoveScene::messages() const
{
    return m_setup ? m_messages + m_setup->failureMessages() : m_messages;
}

int MatchmoveScene::failedCount() const
{
    return m_setup ? m_setup->failedCount() : 0;
}

}
