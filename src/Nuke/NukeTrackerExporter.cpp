// Nuke Tracker: the user pastes the text into the node graph. The tracks "track 1" to
// "track 4" of the Tracker4 node (NukeTrackerNode.cpp shows it) are the corners of the
// surface, counter-clockwise from the lower left.

#include "Nuke/NukeTrackerExporter.h"

#include "Nuke/parts/NukeTrackerNode.h"

namespace Export
{

NukeTrackerExporter::NukeTrackerExporter() = default;
NukeTrackerExporter::~NukeTrackerExporter() = default;

QString NukeTrackerExporter::exportSingleView(QString const& name, CornerPin const& pin) const
{
    TextBuffer out;
    appendTrackerNode(out, name, {pin.to1, pin.to2, pin.to3, pin.to4}, "track ");
    return out.toString();
}

}
