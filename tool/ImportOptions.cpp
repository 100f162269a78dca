#include "ImportOptions.h"

#include "OptionTypes.h"

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
    addText(app, "--fps", "Frames per second; default: 24", [&rate](QString const& text) { rate = frameRate(text); })
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
    addText(app, "DIR", "Folder of a model as text: cameras.txt, images.txt and points3D.txt",
            [&colmap](QString const& path) { colmap.folder = notEmpty("DIR", path); })
        ->required();
    addTarget(app, colmap.target);
    addFrameRate(app, colmap.import.frameRate);
}
