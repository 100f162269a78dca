#pragma once
// Which frames the images of a model are, by their names.

#include "marlohost/ColmapModel.h"

namespace MarloHost
{

/// An image at its host frame.
struct ColmapShot
{
    ColmapModel::Image const* image;
    int frame;
};

struct ColmapFrames
{
    /// Ascending by frame, from frame 0.
    std::vector<ColmapShot> shots;
    ColmapProject::Numbering numbering = ColmapProject::ByPlace;

    /// What the first frame is shown with.
    int firstNumber = 0;

    /// The images as a sequence of files, where their names are one.
    std::optional<FootageModel> footage;
    QStringList warnings;
};

/// The number of an image is the run of digits that changes from name to name, the last one
/// where several do; a single image has the last one of its file name. Names that are alike but
/// for the number are a run. Where the numbers of all runs ascend from name to name they are the
/// frames; else each run follows on the one before, and without numbers each image on the image
/// before.
///
/// @param model must outlive the frames
ColmapFrames framesOfColmap(ColmapModel const& model);

}
