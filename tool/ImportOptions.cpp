#include "ImportOptions.h"

#include "OptionTypes.h"

void addCornerOptions(CLI::App* app, CornerImportChoices& corners)
{
    addText(app, "TABLE", "Text file: a frame number or a file name and eight numbers in each line",
            [&corners](QString const& path) { corners.table = path; })
        ->required();
    addText(app, "-o,--output", "Project file to write",
            [&corners](QString const& path) { corners.project = notEmpty("-o", path); })
        ->type_name("PROJECT")
        ->required();
    auto const takeSize = [&corners](QString const& text)
    {
        QSize const size = rasterSize(text);
        corners.import.width = size.width();
        corners.import.height = size.height();
    };
    addText(app, "--size", "Size of the footage in pixels", takeSize)->type_name("WxH")->required();
    addText(app, "--fps", "Frames per second; default: 24",
            [&corners](QString const& text) { corners.import.frameRate = frameRate(text); })
        ->type_name("R");
    addText(app, "--name", "Name of the layer; default: Layer 1",
            [&corners](QString const& name) { corners.import.layerName = notEmpty("--name", name); })
        ->type_name("LAYER");
    app->add_flag("--y-up", corners.import.yUp, "The table's y runs up from the bottom edge");
    addText(app, "--order", "Corners of a row: upper and lower, left and right; default: ul,ur,lr,ll",
            [&corners](QString const& text) { corners.import.order = cornerOrder(text); })
        ->type_name("ul,ur,lr,ll");
    app->add_flag("--overwrite", corners.overwrite, "Replace an existing project file");
}
