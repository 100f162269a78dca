#include "ImportOptions.h"

#include "ImportValues.h"

namespace
{

void addTarget(CLI::App* app, ImportTarget& target)
{
    addText(app, "-o,--output", "Project file to write",
            [&target](QString const& path) { target.project = notEmpty("-o", path); })
        ->type_name("PROJECT")
        ->required();
    app->add_flag("--overwrite", target.overwrite, "Replace an existing project file");
}

void addFrameRate(CLI::App* app, double& rate)
{
    addText(app, "--fps", "Frames per second, such as 25 or 30000/1001; default: 24",
            [&rate](QString const& text) { rate = frameRate(text); })
        ->type_name("R");
}

}

void addCornerOptions(CLI::App* app, CornerImportChoices& corners)
{
    addText(app, "TABLE", "Text file: a frame number or a file name and eight numbers in each line",
            [&corners](QString const& path) { corners.table = path; })
        ->required();
    addTarget(app, corners.target);
    auto const takeSize = [&corners](QString const& text)
    {
        QSize const size = rasterSize(text);
        corners.import.width = size.width();
        corners.import.height = size.height();
    };
    addText(app, "--size", "Size of the footage in pixels", takeSize)->type_name("WxH")->required();
    addFrameRate(app, corners.import.frameRate);
    addText(app, "--name", "Name of the layer; default: Layer 1",
            [&corners](QString const& name) { corners.import.layerName = notEmpty("--name", name); })
        ->type_name("LAYER");
    app->add_flag("--y-up", corners.import.yUp, "The table's y runs up from the bottom edge");
    addText(app, "--order", "Corners of a row: upper and lower, left and right; default: ul,ur,lr,ll",
            [&corners](QString const& text) { corners.import.order = cornerOrder(text); })
        ->type_name("ul,ur,lr,ll");
}

void addColmapOptions(CLI::App* app, ColmapImportChoices& colmap)
{
    MarloHost::ColmapImport& import = colmap.import;
    addText(app, "DIR", "Folder of a model, as text or binary, or of a COLMAP project",
            [&colmap](QString const& path) { colmap.folder = notEmpty("DIR", path); })
        ->required();
    addTarget(app, colmap.target);
    addFrameRate(app, import.frameRate);
    addText(app, "--origin", "Point of the model that becomes the origin; default: the model's, unless that is far off",
            [&import](QString const& text) { import.origin = scenePoint(text); })
        ->type_name("X,Y,Z");
    auto const takeScale = [&import](QString const& text)
    { import.scale = numberFrom("--scale", text, 1e-9, 1e9, "a factor from 1e-9 to 1e9"); };
    addText(app, "--scale", "Scene units to a unit of the model; default: 1", takeScale)->type_name("S");
    auto const takeTrack = [&import](QString const& text)
    {
        import.leastTrack = wholeNumber("--min-track", text);
        if (import.leastTrack < 1)
        {
            throw CLI::ValidationError("--min-track", "takes a number of images from 1 up");
        }
    };
    addText(app, "--min-track", "Leave out points that fewer images see", takeTrack)->type_name("N");
    auto const takeError = [&import](QString const& text)
    { import.mostError = numberFrom("--max-error", text, 0, 1e9, "a number of pixels from 0 up"); };
    addText(app, "--max-error", "Leave out points with a larger error, or an unknown one", takeError)->type_name("PX");
}
