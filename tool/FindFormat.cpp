#include "FindFormat.h"

#include "Failure.h"

#include <QStringList>

#include <algorithm>
#include <numeric>

namespace
{

constexpr int MOST_SUGGESTIONS = 5;

/// Characters to insert, remove or replace to make one text of the other (Levenshtein).
int editDistance(QString const& a, QString const& b)
{
    std::vector<int> row(static_cast<std::size_t>(b.size()) + 1);
    std::iota(row.begin(), row.end(), 0);
    for (int i = 0; i < a.size(); ++i)
    {
        int diagonal = row[0];
        row[0] = i + 1;
        for (std::size_t j = 0; j < static_cast<std::size_t>(b.size()); ++j)
        {
            int const replaced = diagonal + (a[i] == b[static_cast<int>(j)] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
        }
    }
    return row.back();
}

/// Keys that the text is a part of, and keys that it is a slip of the pen away from.
QStringList nearestKeys(QString const& text)
{
    int const farthest = std::max(2, text.size() / 3);
    std::vector<std::pair<int, QString>> near;
    for (FormatEntry const& entry : Export::offeredFormats())
    {
        int const distance = editDistance(text.toLower(), entry.key());
        if (distance <= farthest)
        {
            near.emplace_back(distance, entry.key());
        }
        else if (!text.isEmpty() && entry.key().contains(text, Qt::CaseInsensitive))
        {
            near.emplace_back(farthest + distance, entry.key());
        }
    }
    std::stable_sort(near.begin(), near.end(), [](auto const& a, auto const& b) { return a.first < b.first; });
    QStringList keys;
    for (std::size_t i = 0; i < near.size() && i < MOST_SUGGESTIONS; ++i)
    {
        keys += near[i].second;
    }
    return keys;
}

}

std::vector<FormatEntry> formatsOfKind(QString const& word)
{
    std::vector<FormatEntry> entries = Export::offeredFormats();
    entries.erase(std::remove_if(entries.begin(), entries.end(),
                                 [&](FormatEntry const& entry)
                                 { return !word.isEmpty() && kindWord(entry.kind()) != word; }),
                  entries.end());
    return entries;
}

std::optional<FormatEntry> formatByKey(QString const& key)
{
    for (FormatEntry const& entry : Export::offeredFormats())
    {
        if (entry.key() == key)
        {
            return entry;
        }
    }
    return std::nullopt;
}

FormatEntry findFormat(QString const& key)
{
    if (std::optional<FormatEntry> const entry = formatByKey(key))
    {
        return *entry;
    }
    QStringList const near = nearestKeys(key);
    throw usageError(QStringLiteral("there is no format \"") + key + QLatin1Char('"') +
                     (near.isEmpty() ? QString() : QStringLiteral("; nearest: ") + near.join(QStringLiteral(", "))) +
                     QStringLiteral(" (marlo-export formats lists all)"));
}
