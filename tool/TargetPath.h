#pragma once
// From `-o` to the path of a file.

#include <QString>

#include <optional>

/// What stands in `-o` for the name of a layer.
inline constexpr QLatin1String LAYER_PLACEHOLDER("{layer}", 7);

/// The name as a file name without extension: slashes, leading dots and control
/// characters become "_", and a long name is cut between characters so that an
/// extension and what a format appends still fit.
QString safeFileName(QString const& name);

/// Whether `output` names a folder: it exists as one, or ends in a slash.
bool isFolder(QString const& output);

/// The path of an export.
///
/// @param output what `-o` says; unset for the current folder
/// @param suggestion file name without extension, for a folder
/// @param extension with its point, or empty; appended where the path lacks it
QString targetPath(std::optional<QString> const& output, QString const& suggestion, QString const& extension);
