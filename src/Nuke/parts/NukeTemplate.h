#pragma once

#include <QString>

#include <cstring>

namespace Export
{

/// Appends a pattern whose places are "%1" to "%9", all in one step: what stands in for
/// a place is never searched for places, so a name may hold anything.
///
/// @param appendArgument called with a place's number, appends to `out`
template <typename AppendArgument>
void appendFilled(QString& out, char const* pattern, AppendArgument const& appendArgument)
{
    while (char const* const place = std::strchr(pattern, '%'))
    {
        out += QLatin1String(pattern, static_cast<int>(place - pattern));
        appendArgument(place[1] - '0');
        pattern = place + 2;
    }
    out += QLatin1String(pattern);
}

}
