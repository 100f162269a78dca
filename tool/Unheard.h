#pragma once
// Choices of the user that change nothing in what a format writes.

#include "FindFormat.h"

#include <QString>
#include <QStringList>

#include <vector>

/// A warning about a choice; the formats that it is about stand between the two texts.
struct Unheard
{
    QString before;
    QString after;

    QString text(QString const& formats) const
    {
        return before + formats + after;
    }
    bool operator==(Unheard const& other) const
    {
        return before == other.before && after == other.after;
    }
};

/// The options that don't concern a format, each with what to do instead.
/// @param given as the user writes them
std::vector<Unheard> optionsWithoutEffect(FormatEntry const& format, QStringList const& given);

/// One line for each warning, however many formats it is about.
/// @param unheard a list for each of `formats`
QStringList unheardByMany(std::vector<FormatEntry> const& formats, std::vector<std::vector<Unheard>> const& unheard);
