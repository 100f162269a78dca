// From a COLMAP model to a project.

#include "ColmapParts.h"
#include "FrameRanges.h"

namespace MarloHost
{

ColmapProject projectFromColmap(ColmapModel const& model, ColmapImport const& import)
{
    ColmapProject result;
    ColmapFrames const frames = framesOfColmap(model);
    std::vector<ColmapShot> const& shots = frames.shots;
    result.numbering = frames.numbering;
    result.warnings = frames.warnings;
    result.firstImage = shots.front().image->name;
    result.lastImage = shots.back().image->name;
    result.isSequence = frames.footage.has_value();

    ClipModel clip;
    clip.name = import.clipName;
    clip.frameCount = shots.back().frame + 1;
    clip.frameOffset = frames.firstNumber;
    clip.footage = frames.footage.value_or(FootageModel());
    int const offset = clip.frameOffset;
    result.missing = missingRanges(shots, offset, offset + clip.frameCount - 1,
                                   [=](ColmapShot const& shot) { return shot.frame + offset; });
    takeColmapCameras(model, shots, clip, result);
    takeColmapScene(model, shots, import, result);

    result.project.frameRate = import.frameRate;
    result.project.clips.push_back(clip);
    return result;
}

}
