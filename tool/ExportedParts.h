#pragma once
// What of a project one export of a format is made of, and what of it the format's text
// can't hold.

#include "FindFormat.h"
#include "Host/Anm.h"
#include "Selection.h"

#include <QStringList>

#include <vector>

class KORV_Layer;
class Session;

struct ExportedParts
{
    /// From the top of the stack; none for camera and lens formats.
    std::vector<KORV_Layer const*> layers;
    std::vector<Anm::View> views;
};

/// The parts of a choice, whose layer and view must be the current ones.
ExportedParts partsOf(Session& session, FormatEntry const& format, LayerChoice const& layers, ViewChoice const& views);

/// @throws Failure as a refusal that names the first name, its characters and the way out
///         when a name would leave its field in the format's text
void refuseUnsafeNames(Session& session, FormatEntry const& format, ExportedParts const& parts);

/// The same for one name.
/// @param what it is the name of, in front of it in the refusal
void refuseUnsafeName(FormatEntry const& format, QString const& what, QString const& name);

/// A line for each thing that the parts have and the format doesn't hold.
QStringList lossesOf(Session& session, FormatEntry const& format, ExportedParts const& parts);
