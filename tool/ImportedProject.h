#pragma once
// Where the commands below `import` put their project, and what they say of it.

#include "Options.h"

#include <nlohmann/json.hpp>

#include <utility>
#include <vector>

class Console;

/// Frames from and to, both included.
using FrameRanges = std::vector<std::pair<int, int>>;

/// "12-14, 20"; the first of many, "none" for none.
QString rangesText(FrameRanges const& ranges);

/// [[12, 14], [20, 20]], all of them.
nlohmann::ordered_json jsonRanges(FrameRanges const& ranges);

/// The first of a list that may be long, with commas between.
QString shortList(QStringList const& list);

/// Refuses a target that no project can be written to, before anything is read.
/// @param inputs files that the command reads
/// @throws Failure
void checkImportTarget(ImportTarget const& target, QStringList const& inputs, Console const& console);

/// @param bytes of the project file
/// @throws Failure when the user keeps an old file, or writing fails
void writeImportedProject(ImportTarget const& target, QByteArray const& bytes, Console& console);

/// Prints warnings, and then the record or, unless quiet, the lines.
void reportImport(Options const& options, QStringList const& warnings, nlohmann::ordered_json const& record,
                  QStringList const& lines, Console& console);
