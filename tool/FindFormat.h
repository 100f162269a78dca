#pragma once
// The offered formats as the command line names them.

#include "Core/FormatList.h"

#include <optional>

using Export::FormatEntry;
using Export::kindWord;
using Kind = Export::FormatKind;

/// The offered formats of a kind, in the order of the one list.
/// @param kindWord empty for all kinds
std::vector<FormatEntry> formatsOfKind(QString const& kindWord);

/// The format of that key, if there is one.
std::optional<FormatEntry> formatByKey(QString const& key);

/// The format of that key.
/// @throws Failure as wrong usage that suggests the keys nearest to it
FormatEntry findFormat(QString const& key);
