#pragma once
// Small texts that many exporters put together in the same way.

#include <QString>

namespace Text
{

/// The text with every blank replaced by "_", for programs whose names end at a
/// blank. Tabs and other white space stay.
QString blanksToUnderscores(QString text);

/// "PATH: MESSAGE", the line that tells of a failure in one file. Neither text is
/// searched for placeholders: one that holds "%1" stays as it is.
QString pathMessage(QString const& path, QString const& message);

}
