#include "text/Clock.h"

#include <QByteArray>

#include <algorithm>
#include <optional>

namespace Text
{
namespace
{

/// 9999-12-31 23:59:59, the last second whose year has four digits.
constexpr long long lastSecond = 253402300799;

std::optional<long long> secondsOf(QByteArray const& text)
{
    bool const isDecimal =
        !text.isEmpty() && std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
    bool fits = false;
    long long const seconds = text.toLongLong(&fits);
    if (!isDecimal || !fits || seconds > lastSecond)
        return std::nullopt;
    return seconds;
}

}

QDateTime exportTime()
{
    if (auto const seconds = secondsOf(qgetenv("SOURCE_DATE_EPOCH")))
        return QDateTime::fromSecsSinceEpoch(*seconds, Qt::UTC);
    return QDateTime::currentDateTimeUtc();
}

}
