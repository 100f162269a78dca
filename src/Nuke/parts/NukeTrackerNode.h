#pragma once

#include "Nuke/NukeCurve.h"

namespace Export
{

/// Appends a Tracker4 node.
///
/// @param name what the node's name ends in
/// @param trackName what stands in front of a track's number, from 1, in its name
void appendTrackerNode(TextBuffer& out, QString const& name, QVector<NukePointCurve> const& tracks,
                       char const* trackName);

}
