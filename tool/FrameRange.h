#pragma once
// `--frames A-B`: less of a project, before exporters see it.

#include "marlohost/ProjectModel.h"

#include <QStringList>

/// First and last frame, as shown.
struct FrameRange
{
    int first = 0;
    int last = 0;
};

/// "A-B", for messages.
QString frameRangeText(FrameRange const& range);

/// Cuts the layers to the range; what the layers are made of stays as it is. Layers without
/// a frame in it are taken out.
/// @return the names of those
/// @throws Failure as wrong usage when the project has no such frame
QStringList cutLayers(MarloHost::ProjectModel& project, FrameRange const& range);

/// Leaves the project no other frames than those of the range, for exporters that go through
/// all that it has. They keep the numbers that users see; keys outside stay, so that nothing
/// between them moves.
/// @throws as cutLayers()
void cutScene(MarloHost::ProjectModel& project, FrameRange const& range);
