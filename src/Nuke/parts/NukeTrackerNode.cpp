// The Tracker4 node of Nuke 7 and later: a table with a head and a row for each track.
//
//   Tracker4 {
//   inputs 0
//   tracks { { 1 6 2 }
//   { { 5 1 20 enable e 1 }
//   ...
//   }
//   {
//   { {curve K x1 1} "track 1" {curve x1001 600} {curve x1001 300} {curve K x1 0} {curve K x1 0} }
//   ...
//   }
//   }
//   name Tracker_Poster
//   }
//
// with a blank ahead of the ends of the lines of the table.

#include "Nuke/parts/NukeTrackerNode.h"

namespace Export
{

namespace
{

// With its track's number and what stands around it, beside its curves.
constexpr qint64 AROUND_ROW = 96;

void reserveFor(TextBuffer& out, QVector<NukePointCurve> const& tracks)
{
    constexpr qint64 AROUND_ROWS = 512;
    qint64 room = AROUND_ROWS;
    for (NukePointCurve const& track : tracks)
    {
        room += AROUND_ROW + track.first.textLimit() + track.second.textLimit();
    }
    out.reserve(room);
}

}

void appendTrackerNode(TextBuffer& out, QString const& name, QVector<NukePointCurve> const& tracks,
                       char const* trackName)
{
    reserveFor(out, tracks);
    // The third number of the head counts the rows; the columns are enable, name, x and y
    // of the track and of its offset.
    out << "Tracker4 {\n"
        << "inputs 0\n"
        << "tracks { { 1 6 " << Integer{tracks.size()} << " } \n"
        << "{ { 5 1 20 enable e 1 } \n"
           "{ 3 1 75 name name 1 } \n"
           "{ 2 1 58 track_x track_x 1 } \n"
           "{ 2 1 58 track_y track_y 1 } \n"
           "{ 2 1 63 offset_x offset_x 1 } \n"
           "{ 2 1 63 offset_y offset_y 1 } \n"
           "} \n"
           "{ \n";
    for (int row = 0; row < tracks.size(); ++row)
    {
        out << "{ {curve K x1 1} \"" << trackName << Integer{row + 1} << "\" ";
        appendPoint(out, tracks[row]);
        out << " {curve K x1 0} {curve K x1 0} } \n";
    }
    out << "} \n"
        << "}\n"
        << "name Tracker_" << name << "\n"
        << "}\n";
}

}
