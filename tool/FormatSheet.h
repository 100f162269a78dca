#pragma once
// What there is to know of one format.

#include "FindFormat.h"

#include <QStringList>

#include <nlohmann/json.hpp>

/// What the list of formats says of one.
nlohmann::ordered_json listedFormat(FormatEntry const& entry);

/// That, and what the format declares: what it follows, needs and holds, which characters of
/// names break it, the way into the target, and limits.
nlohmann::ordered_json wholeFormat(FormatEntry const& entry);

/// The same for people.
QStringList formatLines(FormatEntry const& entry);
