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
    MarloHost::CornerImport& import = corners.import;
    addText(app, "TABLE",
            "Text file, or - for standard input: a frame number or a file name and eight numbers in each line",
            [&corners](QString const& path) { corners.table = notEmpty("TABLE", path); })
        ->required();
    addTarget(app, corners.target);
    auto const takeSize = [&import](QString const& text)
    {
        QSize const size = rasterSize(text);
        import.width = size.width();
        import.height = size.height();
    };
    addText(app, "--size", "Size of the footage in pixels", takeSize)->type_name("WxH")->required();
    auto const takeAspect = [&import](QString const& text)
    { import.pixelAspect = numberFrom("--par", text, 0.01, 100, "a pixel aspect from 0.01 to 100"); };
    addText(app, "--par", "Width of a pixel divided by its height; default: 1", takeAspect)->type_name("P");
    addFrameRate(app, import.frameRate);
    auto const takeStart = [&corners](QString const& text)
    {
        constexpr int MAX_FRAME = 10'000'000;
        corners.start = wholeNumber("--start", text);
        if (*corners.start < -MAX_FRAME || *corners.start > MAX_FRAME)
        {
            throw CLI::ValidationError("--start", "takes a frame number from -10000000 to 10000000");
        }
    };
    addText(app, "--start", "Number of the first frame; default: the table's, or 1", takeStart)->type_name("N");
    addText(app, "--name", "Name of the layer; default: Layer1",
            [&import](QString const& name) { import.layerName = notEmpty("--name", name); })
        ->type_name("LAYER");
    app->add_flag("--y-up", import.yUp, "The table's y runs up from the bottom edge");
    app->add_flag("--pixel-centres", import.pixelCentres,
                  "The middle of the corner pixel is 0,0; default: its outer corner is, its middle 0.5,0.5");
    addText(app, "--order", "Corners of a row: upper and lower, left and right; default: the header's, or ul,ur,lr,ll",
            [&import](QString const& text) { import.order = cornerOrder(text); })
        ->type_name("ul,ur,lr,ll");
    addChoice(app, "--gaps", "Frames between rows hold the nearest corners, or go from one to the other; default: hold",
              Words<bool>{{"hold", false}, {"interpolate", true}}, import.interpolateGaps);
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
