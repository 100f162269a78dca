#pragma once
// Where the commands below `import` put their project, and what they say of it.

#include "Options.h"

#include <nlohmann/json.hpp>

class Console;

/// Refuses a target that no project can be written to, before anything is read.
/// @throws Failure
void checkImportTarget(ImportTarget const& target, Console const& console);

/// @param bytes of the project file
/// @throws Failure when the user keeps an old file, or writing fails
void writeImportedProject(ImportTarget const& target, QByteArray const& bytes, Console& console);

/// Prints warnings, and then the record or, unless quiet, the lines.
void reportImport(Options const& options, QStringList const& warnings, nlohmann::ordered_json const& record,
                  QStringList const& lines, Console& console);
