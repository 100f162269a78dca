#pragma once
// Solved projects for tests: a camera that turns about all axes, and what is around it.

#include "ProjectBuilder.h"

#include "Host/CameraSolveHelper.h"

/// Ten frames of 1920 x 1080, 36 mm film back, with a solve.
class SolveBuilder : public ProjectBuilder
{
public:
    explicit SolveBuilder(int frameCount = 10) : ProjectBuilder(frameCount)
    {
        model.solve.emplace();
    }

    MarloHost::SolveModel& solve()
    {
        return *model.solve;
    }

    /// A layer with these solved points, three numbers each.
    SolveBuilder& addPoints(QString const& layerName, std::vector<double> const& positions)
    {
        addLayer(layerName);
        layer().surfacePoints.emplace();
        layer().surfacePoints->positions = positions;
        return *this;
    }

    SolveBuilder& addFeatures(QString const& name, std::vector<double> const& positions,
                              QString const& layerName = QString())
    {
        MarloHost::FeatureSetModel features;
        features.name = name;
        features.layer = layerName;
        features.points.positions = positions;
        solve().features.push_back(features);
        return *this;
    }

    /// A camera at z 10 that turns about all three axes and zooms from 30 to 60 mm.
    SolveBuilder& turnCamera()
    {
        MarloHost::CameraModel& camera = solve().camera;
        int const last = clip().frameCount - 1;
        camera.pose = {{0, last}, {0, 1, 10, 2, -1, 8}, {10, -20, 35, -15, 25, 60}, {}};
        camera.focalLength = {30, {0, last}, {30, 60}};
        return *this;
    }

    /// A scene that is moved, turned about all axes and scaled.
    SolveBuilder& poseScene()
    {
        solve().scene = {{}, {3, -2, 5}, {20, 40, -70}, {2.5}};
        return *this;
    }

    /// A group that moves with a layer in it that moves as well and has one point.
    SolveBuilder& addMovingChain()
    {
        model.groups.push_back({"car", "", false, false, true, {{0, 10}, {0, 0, 0, 10, 0, 0}, {}, {1, 3}}});
        addPoints("door", {1, 0, 0});
        layer().group = "car";
        layer().moving = true;
        layer().pose = {{0, 10}, {0, 0, 0, 0, 0, 4}, {0, 0, 0, 0, 0, 90}, {}};
        return *this;
    }
};

/// A helper over a project, with all objects taken unless something else is said.
struct SolveHelper
{
    explicit SolveHelper(SolveBuilder const& builder, bool selectedOnly = false, bool visibleOnly = false,
                         Korvane::CameraSolve::ExporterHelper::LayerChoice const& layers = KV::Layers::FilterByPoints())
        : project(builder.make())
    {
        helper.initialise(*project, Anm::View::defaultView(), layers, 2147483647, selectedOnly, visibleOnly, true,
                          nullptr);
    }

    ZN::Scene3DParameterSet const& scene() const
    {
        return project->scene3DParameters();
    }

    Korvane::CameraSolve::CameraAnimData camera() const
    {
        return helper.cameraAnimData(*scene().cameraParameters(0));
    }

    void setLayer(unsigned int id, bool worldSpace)
    {
        helper.setCurrentLayer(project->sm()->findLayer(id, false), Anm::Context::invalid(), worldSpace);
    }

    boost::shared_ptr<KORV_ProjectManager> project;
    Korvane::CameraSolve::ExporterHelper helper;
};
