#pragma once
// The reference host's record behind a matchmove project, and the parts that fill it.

#include "Host/CameraSolveHelper.h"
#include "Host/KORV_Layer.h"
#include "Host/Rig3D.h"
#include "KestreliaPoses.h"

#include <QHash>

#include <optional>

struct Rig3D::KestreliaSetup::Data
{
    using Helper = Korvane::CameraSolve::ExporterHelper;

    KestreliaLib::Scene scene;
    KestreliaLib::Config config;
    bool isValid = false;

    /// Host frames of the shot and what makes them its own.
    int first = 0;
    int last = -1;
    int offset = 0;
    MarloHost::SampleFilling filling{0, -1, 0};

    /// Objects by the text id of the layer that they are.
    QHash<QString, unsigned int> objects;
    unsigned int nextTracker = 1;
    QStringList failures;
    QStringList clashes;

    KestreliaLib::Shot& shot()
    {
        return scene.shots.front();
    }

    /// The object that a layer is; 0 for none.
    unsigned int objectOf(QString const& textId) const
    {
        return objects.value(textId, 0);
    }

    void addObject(Korvane::LayerBase const& layer, Helper const& helper);
    void addCamera(Helper const& helper, ZN::Scene3DParameterSet const& parameters);

    /// Adds the helper's current points and meshes.
    void addPoints(Helper const& helper, QString const& name, unsigned int object);
    void addPointMeshes(Helper const& helper, QString const& name, unsigned int object);
    unsigned int addGroup(QString const& name);
    KestreliaLib::Tracker& addTracker(QString const& name, unsigned int group);
    void nameUniquely();
};
