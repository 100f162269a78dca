// `marlo-export formats`

#include "Commands.h"
#include "Console.h"
#include "FindFormat.h"
#include "FormatSheet.h"
#include "Record.h"

#include <algorithm>

namespace
{

/// A line for people; the columns are as wide as their widest text.
QString tableLine(FormatEntry const& entry, int keyWidth, int nameWidth)
{
    Export::DataFormatBase const& format = entry.format();
    QString const line = format.internalName().leftJustified(keyWidth) + QStringLiteral("  ") +
                         format.displayName().leftJustified(nameWidth) + QStringLiteral("  ") +
                         format.extension().leftJustified(11) + QStringLiteral("  ") + kindWord(entry.kind());
    return format.isLegacy() ? line + QStringLiteral(" (legacy)") : line;
}

}

ExitStatus runFormats(Options const& options, Console& console)
{
    std::vector<FormatEntry> const entries = formatsOfKind(options.kind);
    if (options.json)
    {
        auto list = nlohmann::ordered_json::array();
        for (FormatEntry const& entry : entries)
        {
            list.push_back(listedFormat(entry));
        }
        console.result(jsonBytes(list));
        return Success;
    }
    int keyWidth = 0;
    int nameWidth = 0;
    for (FormatEntry const& entry : entries)
    {
        keyWidth = std::max(keyWidth, entry.key().size());
        nameWidth = std::max(nameWidth, entry.format().displayName().size());
    }
    for (FormatEntry const& entry : entries)
    {
        console.result(tableLine(entry, keyWidth, nameWidth));
    }
    return Success;
}
