#pragma once
// The lines that open the files of the blending plug-in.

#include <QString>

#include <utility>
#include <vector>

class KORV_Layer;
class KORV_ProjectManager;
class ZN_BaseClipInfo;

namespace Export
{
namespace MarloBlend
{

/// A key and its value.
using Field = std::pair<char const*, QString>;

/// The clip that a layer was tracked on; null when it is gone.
/// @param layer may be null
ZN_BaseClipInfo const* trackedClip(KORV_ProjectManager const& project, KORV_Layer const* layer);

/// From "Project Frame Offset" to "Comp Pixel Aspect Ratio".
///
/// @param clip null for one that is as the project: its size and pixels, no offset
/// @param doubleInterlacedHeight whether the height of interlaced material is that of the
///        full frame
std::vector<Field> fields(KORV_ProjectManager const& project, ZN_BaseClipInfo const* clip, bool doubleInterlacedHeight);

/// "<tab>KEY VALUE", without a line end.
QString line(Field const& field);

}
}
