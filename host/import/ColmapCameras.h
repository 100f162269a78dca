#pragma once
// The camera models of COLMAP.

#include "marlohost/ColmapModel.h"

#include <cstddef>
#include <vector>

namespace MarloHost
{

/// A camera model that a project's lens follows, by the name that it has in texts and the
/// number that it has in binary files.
struct ColmapCameraForm
{
    using Place = void (*)(ColmapModel::Camera&, double);

    char const* name;
    int number;

    /// Where the parameters go, in their order; null for one that has to be 0.
    std::vector<Place> places;
};

/// @return null for a model that isn't followed
ColmapCameraForm const* colmapCameraForm(QByteArray const& name);
ColmapCameraForm const* colmapCameraForm(int number);

/// Why a camera model is refused, and the way out.
QString refusalOfCameraForm(QByteArray const& name);
QString refusalOfCameraForm(int number);

}
