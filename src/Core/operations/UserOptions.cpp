#include "Core/UserOptions.h"

#include <QMap>
#include <QVariant>

namespace Export
{

namespace
{

QMap<QString, QVariant> optionMap(std::any const& customData)
{
    auto const* map = std::any_cast<QMap<QString, QVariant>>(&customData);
    return map ? *map : QMap<QString, QVariant>();
}

}

std::optional<QString> LayerSelection::specifiedLayer() const
{
    return mode == ZN::SpecifiedLayer ? std::optional<QString>(layerName) : std::nullopt;
}

bool operator==(LayerSelection const& left, LayerSelection const& right)
{
    return left.mode == right.mode && left.specifiedLayer() == right.specifiedLayer();
}

bool operator!=(LayerSelection const& left, LayerSelection const& right)
{
    return !(left == right);
}

bool operator==(UserTrackingOptions const& left, UserTrackingOptions const& right)
{
    return left.trackingOption == right.trackingOption && left.invert == right.invert &&
           left.undistort == right.undistort && left.referenceFrame == right.referenceFrame &&
           left.layerSelection == right.layerSelection && left.viewsToExport == right.viewsToExport;
}

bool operator!=(UserTrackingOptions const& left, UserTrackingOptions const& right)
{
    return !(left == right);
}

bool operator==(UserShapeOptions const& left, UserShapeOptions const& right)
{
    return left.layerSelection == right.layerSelection && left.viewsToExport == right.viewsToExport;
}

bool operator!=(UserShapeOptions const& left, UserShapeOptions const& right)
{
    return !(left == right);
}

bool operator==(UserCameraSolveOptions const& left, UserCameraSolveOptions const& right)
{
    return optionMap(left.customData) == optionMap(right.customData) && left.objectsToExport == right.objectsToExport;
}

bool operator!=(UserCameraSolveOptions const& left, UserCameraSolveOptions const& right)
{
    return !(left == right);
}

}
