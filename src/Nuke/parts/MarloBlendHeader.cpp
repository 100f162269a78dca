#include "Nuke/parts/MarloBlendHeader.h"

#include "Host/KORV_Clip.h"
#include "Host/KORV_Layer.h"
#include "Host/KORV_ProjectManager.h"
#include "Host/ZN_ClipInfo.h"
#include "text/NumberText.h"

namespace Export
{
namespace MarloBlend
{

namespace
{

/// What the header says of a clip.
struct Source
{
    int frameOffset;
    unsigned int width;
    unsigned int height;
    double pixelAspect;
};

Source sourceOf(ZN_BaseClipInfo const& clip, bool doubleInterlacedHeight)
{
    unsigned int const factor = doubleInterlacedHeight && clip.bIsInterlaced() ? 2 : 1;
    return {clip.baseClipOffset(), clip.width(), clip.height() * factor, clip.format().par()};
}

Source sourceOf(ProjectProperties const& project)
{
    QSize const size = project.size();
    return {0, static_cast<unsigned int>(size.width()), static_cast<unsigned int>(size.height()), project.par()};
}

}

ZN_BaseClipInfo const* trackedClip(KORV_ProjectManager const& project, KORV_Layer const* layer)
{
    if (!layer)
    {
        return nullptr;
    }
    KORV_Clip const* const clip = project.frameManager()->getClip(layer->trackingInputClipID(true, false, true));
    return clip ? &clip->info() : nullptr;
}

std::vector<Field> fields(KORV_ProjectManager const& project, ZN_BaseClipInfo const* clip, bool doubleInterlacedHeight)
{
    Source const source = clip ? sourceOf(*clip, doubleInterlacedHeight) : sourceOf(project.projProps());
    return {{"Project Frame Offset", QString::number(project.frameOffset())},
            {"Project In Point", QString::number(project.playbackInPoint(false))},
            {"Source Frame Offset", QString::number(source.frameOffset)},
            {"Units Per Second", Text::generalText(project.frameRate())},
            {"Source Width", QString::number(source.width)},
            {"Source Height", QString::number(source.height)},
            {"Source Pixel Aspect Ratio", Text::generalText(source.pixelAspect)},
            {"Comp Pixel Aspect Ratio", Text::generalText(project.projProps().par())}};
}

QString line(Field const& field)
{
    return QLatin1Char('\t') + QLatin1String(field.first) + QLatin1Char(' ') + field.second;
}

}
}
