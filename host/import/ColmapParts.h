#pragma once
// The parts of a model's project, each from one side of the model. All may throw
// KORV_BadFile.

#include "ColmapFrames.h"
#include "marlohost/ColmapModel.h"

namespace MarloHost
{

/// What is reported and what isn't: the bound in pixels that exports are held to.
constexpr double COLMAP_VISIBLE_PIXELS = 0.05;

/// Width of the film back that focal lengths in millimetres are for.
constexpr double COLMAP_FILM_WIDTH = FilmBackModel().width;

/// A number of the camera for each image; keyed where it changes.
template <typename Value>
KeyedNumber overShots(ColmapModel const& model, std::vector<ColmapShot> const& shots, Value const& value)
{
    auto const at = [&](std::size_t i) { return value(model.cameras[shots[i].image->camera]); };
    std::size_t const count = shots.size();
    KeyedNumber number;
    number.value = at(0);
    bool isKeyed = false;
    for (std::size_t i = 0; i < count; ++i)
    {
        // Inside of a run of equal numbers a key says nothing.
        double const here = at(i);
        isKeyed = isKeyed || here != number.value;
        if (i == 0 || i + 1 == count || here != at(i - 1) || here != at(i + 1))
        {
            number.frames.push_back(shots[i].frame);
            number.values.push_back(here);
        }
    }
    return isKeyed ? number : KeyedNumber{number.value, {}, {}};
}

/// Raster, pixel aspect and lens of the clip, and what is to be told of them.
void takeColmapCameras(ColmapModel const& model, std::vector<ColmapShot> const& shots, ClipModel& clip,
                       ColmapProject& result);

/// The camera's path and the points.
void takeColmapScene(ColmapModel const& model, std::vector<ColmapShot> const& shots, ColmapImport const& import,
                     ColmapProject& result);

}
