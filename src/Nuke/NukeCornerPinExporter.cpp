// Nuke Corner Pin: the user pastes the text into the node graph, or opens the file as a
// script, and connects the picture that goes onto the surface. Flowbox reads the same.
//
//   CornerPin2D {
//    to1 {{curve x1001 600 x1002 601.5} {curve x1001 300 x1002 300.25}}
//    ...
//    from1 {0 0}
//    ...
//    name CornerPin2D_Poster
//   }
//
// Frames are those that the host shows, y is up.

#include "Nuke/NukeCornerPinExporter.h"

namespace Export
{

NukeCornerPinExporter::NukeCornerPinExporter() = default;
NukeCornerPinExporter::~NukeCornerPinExporter() = default;

QString NukeCornerPinExporter::exportSingleView(QString const& name, CornerPin const& pin) const
{
    TextBuffer out;
    auto const writeCorner = [&out](char const* knob, NukePointCurve const& corner)
    {
        out << ' ' << knob << " {";
        appendPoint(out, corner);
        out << "}\n";
    };
    out << "CornerPin2D {\n";
    writeCorner("to1", pin.to1);
    writeCorner("to2", pin.to2);
    writeCorner("to3", pin.to3);
    writeCorner("to4", pin.to4);
    // {width} and {height} are Nuke's own expressions: the pin fits what is connected.
    out << " from1 {0 0}\n"
           " from2 {{width} 0}\n"
           " from3 {{width} {height}}\n"
           " from4 {0 {height}}\n"
        << " name CornerPin2D_" << name << "\n"
        << "}\n";
    return out.toString();
}

}
