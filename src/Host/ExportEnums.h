#pragma once
// Choices that cross the seam between host and library. The numbers are fixed;
// presets store the words. The type is fixed as well, so that a number that isn't
// in the list can be told and refused.

/// Which motion of a layer is exported.
enum ZN_TRACKING_OPTION : int
{
    ZN_TRACKING_OPTION_BASIC = 0,
    ZN_TRACKING_OPTION_ADJUSTED = 1,
    ZN_TRACKING_OPTION_OFFSET = 2,
    ZN_TRACKING_OPTION_STABILIZED = 3
};

namespace ZN
{

/// Which layers are exported.
enum LayerExportMode : int
{
    SelectedLayer = 0,
    VisibleLayers = 1,
    AllLayers = 2,
    SpecifiedLayer = 3
};

}
