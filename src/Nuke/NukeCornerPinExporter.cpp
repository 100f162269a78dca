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

#include "Nuke/parts/NukeTemplate.h"

namespace Export
{

namespace
{

// {width} and {height} are Nuke's own expressions: the pin fits what is connected.
constexpr char NODE[] = "CornerPin2D {\n"
                        "%1"
                        " from1 {0 0}\n"
                        " from2 {{width} 0}\n"
                        " from3 {{width} {height}}\n"
                        " from4 {0 {height}}\n"
                        " name CornerPin2D_%2\n"
                        "}\n";

QString knob(char const* name, NukePointCurve const& corner)
{
    QString point;
    point.reserve(static_cast<int>(corner.first.textLimit() + corner.second.textLimit() + 1));
    appendPoint(point, corner);
    NukeValueList list{QLatin1String(name)};
    list.append(point);
    return list.toString();
}

}

NukeCornerPinExporter::NukeCornerPinExporter() = default;
NukeCornerPinExporter::~NukeCornerPinExporter() = default;

QString NukeCornerPinExporter::exportSingleView(QString const& name, CornerPin const& pin) const
{
    QString node;
    appendFilled(node, NODE,
                 [&](int place)
                 {
                     node += place == 1 ? knob(" to1", pin.to1) + knob(" to2", pin.to2) + knob(" to3", pin.to3) +
                                              knob(" to4", pin.to4)
                                        : name;
                 });
    return node;
}

}
