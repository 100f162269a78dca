#pragma once
// The presets file of `batch` and `preset`.

#include "Core/Preset.h"

#include <QHash>
#include <QString>
#include <QStringList>

using Presets = QHash<QString, Export::Preset>;

/// @throws Failure as unreadable input
Presets readPresets(QString const& path);

/// Writes the file whole or leaves the old one as it was; makes its folder.
/// @throws Failure as a refusal
void writePresets(Presets const& presets, QString const& path);

/// The names in the order in which the file lists them.
QStringList namesOf(Presets const& presets);

/// @throws Failure as wrong usage, with the names there are, for one that isn't there
void checkName(Presets const& presets, QString const& name);
