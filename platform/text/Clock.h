#pragma once
// The one clock of everything that is written.

#include <QDateTime>

namespace Text
{

/// The moment that exported files carry as their date, in UTC.
///
/// It is the current time, unless the environment variable SOURCE_DATE_EPOCH pins
/// it so that an export can be repeated byte for byte. The variable holds seconds
/// since 1970-01-01 00:00:00 UTC as decimal digits and nothing else, up to the end
/// of the year 9999. A value of any other form is ignored.
///
/// Turn it into text through QLocale::c(): day and month names of a file must not
/// depend on who exports it.
QDateTime exportTime();

}
