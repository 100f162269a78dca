#pragma once
// What exports of shapes say of frames that weren't tracked.

#include "Host/Anm.h"

#include <QStringList>
#include <QVector>
#include <boost/shared_ptr.hpp>

#include <vector>

class KORV_Layer;
class KORV_ProjectManager;

namespace Export
{

/// A line for each frame whose shapes move by the tracking data of another frame, as exports of
/// tracks have it; with the layer where there are several, and with the views. Nothing of layers
/// without contours, and of those that have no tracking data in a view, which stand still in it.
QStringList standInFrames(KORV_ProjectManager const& project,
                          QVector<boost::shared_ptr<KORV_Layer const>> const& layers,
                          std::vector<Anm::View> const& views);

}
