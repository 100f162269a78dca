#pragma once
// The options of the commands below `import`.

#include "Options.h"

namespace CLI
{
class App;
}

/// @param corners gets what the command line says; must outlive the parsing
void addCornerOptions(CLI::App* app, CornerImportChoices& corners);

/// @param colmap gets what the command line says; must outlive the parsing
void addColmapOptions(CLI::App* app, ColmapImportChoices& colmap);
