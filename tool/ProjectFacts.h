#pragma once
// What of a project's records warnings and refusals are about; exporters know it better,
// but don't tell.

#include "marlohost/ProjectModel.h"

#include <QSet>
#include <QString>
#include <QStringList>

#include <vector>

struct LayerFacts
{
    /// Of the contours that are switched on.
    QStringList contourNames;
    bool hasFeather = false;
    bool hasOpenContour = false;
    bool isInverted = false;
    bool subtracts = false;
    bool isInGroup = false;

    /// Name of the clip that the layer was tracked on, and whether its lens distorts.
    QString clip;
    bool hasLens = false;

    /// The clip has another size, offset, pixel aspect or other fields than the first one.
    bool isOnOtherClip = false;

    /// The clip is interlaced, and the layer shorter than it.
    bool hasFieldLifetime = false;

    /// Ids of the views with tracking data, and of those with a tracked mesh.
    QSet<int> trackedViews;
    QSet<int> meshViews;
};

struct ProjectFacts
{
    QStringList clipNames;
    int frameCount = 0;

    /// From the top of the stack.
    std::vector<LayerFacts> layers;

    /// Names in a solve and of what may carry its points: layers, groups, features, points,
    /// files.
    QStringList sceneNames;
};

ProjectFacts factsOf(MarloHost::ProjectModel const& project);
