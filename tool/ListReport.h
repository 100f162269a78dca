#pragma once
// What commands with many exports tell about them.

#include "Record.h"

#include <vector>

class Console;
struct Options;

/// Tells people about one export of many, and why it was skipped.
/// @param source where the export was asked for, for the reason; may be empty
void reportOneOfMany(ExportRecord record, QString const& source, Options const& options, Console& console);

/// Ends the list: the JSON on stdout, or how many were written, skipped and failed on
/// stderr.
/// @return what the program ends with: a failure outweighs frames that failed
ExitStatus concludeMany(std::vector<ExportRecord> const& records, Options const& options, Console& console);
