#pragma once
// What `--option KEY=VALUE` may set for a format.

#include "FindFormat.h"

#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <vector>

struct FormatOption
{
    enum Type
    {
        Bool,
        Choice,
        Integer,
        Text
    };

    /// A plain word that is never translated.
    QString key;
    Type type = Text;

    /// A bool, an int or a QString, as the type says; invalid where the exporter
    /// chooses by itself when nothing was said.
    QVariant defaultValue;

    /// Of a Choice.
    QStringList choices;

    /// "bool", "choice", "integer" or "text".
    QString typeWord() const;
};

/// The options of a format in the order in which it declares them.
std::vector<FormatOption> optionsOf(FormatEntry const& format);

/// Those of the assignments whose key the format has.
QStringList assignmentsOf(FormatEntry const& format, QStringList const& assignments);

/// The values of all options of a format that have one: what was given, else the default.
///
/// @param assignments KEY=VALUE; of a key that stands twice the last counts
/// @throws Failure as wrong usage for an unknown key or a bad value
QMap<QString, QVariant> optionValues(FormatEntry const& format, QStringList const& assignments);
