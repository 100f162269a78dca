#pragma once
// Words that the tables of formats share.

#include "Core/DataFormat.h"

namespace Export::FormatTable
{

constexpr bool CURRENT = false;
constexpr bool LEGACY = true;

constexpr SaveOptions CLIPBOARD_ONLY(SaveToClipboard);
constexpr SaveOptions FILE_ONLY(SaveToFile);
constexpr SaveOptions BOTH(QFlag(SaveToClipboard | SaveToFile));

/// The categories of a format that is in one or in none.
inline QSet<QString> categorySet(QString const& category)
{
    return category.isEmpty() ? QSet<QString>() : QSet<QString>{category};
}

}
