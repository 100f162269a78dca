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

#include "Nuke/parts/NukeTemplate.h"
#include "text/NumberText.h"

#include <algorithm>

namespace Export
{

namespace
{

// The third number of the head counts the rows; the columns are enable, name, x and y
// of the track and of its offset.
constexpr char NODE[] = "Tracker4 {\n"
                        "inputs 0\n"
                        "tracks { { 1 6 %1 } \n"
                        "{ { 5 1 20 enable e 1 } \n"
                        "{ 3 1 75 name name 1 } \n"
                        "{ 2 1 58 track_x track_x 1 } \n"
                        "{ 2 1 58 track_y track_y 1 } \n"
                        "{ 2 1 63 offset_x offset_x 1 } \n"
                        "{ 2 1 63 offset_y offset_y 1 } \n"
                        "} \n"
                        "{ \n"
                        "%2"
                        "} \n"
                        "}\n"
                        "name Tracker_%3\n"
                        "}\n";

constexpr char ROW[] = "{ {curve K x1 1} \"%1\" %2 {curve K x1 0} {curve K x1 0} } \n";

// For the whole node, in one buffer; no more than Qt has in one text.
int roomFor(QString const& name, QVector<NukePointCurve> const& tracks)
{
    constexpr long long NUMBER = 16;
    long long room = static_cast<long long>(sizeof NODE) + NUMBER + name.size();
    for (NukePointCurve const& track : tracks)
    {
        room += static_cast<long long>(sizeof ROW) + NUMBER + track.first.textLimit() + track.second.textLimit();
    }
    return static_cast<int>(std::min(room, (2147483647LL - 64) / 2));
}

}

QString trackerNode(QString const& name, QVector<NukePointCurve> const& tracks, char const* trackName)
{
    QString node;
    node.reserve(roomFor(name, tracks));
    auto const appendRow = [&](int row)
    {
        appendFilled(node, ROW,
                     [&](int place)
                     {
                         if (place == 1)
                         {
                             node += QLatin1String(trackName);
                             Text::appendInteger(node, row + 1);
                         }
                         else
                         {
                             appendPoint(node, tracks[row]);
                         }
                     });
    };
    appendFilled(node, NODE,
                 [&](int place)
                 {
                     switch (place)
                     {
                     case 1:
                         Text::appendInteger(node, tracks.size());
                         break;
                     case 2:
                         for (int row = 0; row < tracks.size(); ++row)
                         {
                             appendRow(row);
                         }
                         break;
                     default:
                         node += name;
                     }
                 });
    return node;
}

}
