#pragma once
// The commands of the program. Each gives the exit status; what ends it early is
// thrown as Failure or any other exception.

#include "Failure.h"
#include "Options.h"

class Console;

ExitStatus runFormats(Options const& options, Console& console);
ExitStatus runInfo(Options const& options, Console& console);
ExitStatus runExportCommand(Options const& options, Console& console);
ExitStatus runAll(Options const& options, Console& console);
ExitStatus runBatch(Options const& options, Console& console);
ExitStatus runPresetList(Options const& options, Console& console);
ExitStatus runPresetAdd(Options const& options, Console& console);
ExitStatus runPresetRemove(Options const& options, Console& console);
ExitStatus runImportCorners(Options const& options, Console& console);
ExitStatus runImportColmap(Options const& options, Console& console);
