// `marlo-export import corners`

#include "Commands.h"
#include "Console.h"
#include "Host/KORV_Exception.h"
#include "ImportedProject.h"
#include "Record.h"
#include "marlohost/CornerTable.h"
#include "marlohost/ProjectFile.h"

#include <QFileInfo>

namespace
{

using Json = nlohmann::ordered_json;
using MarloHost::CornerImport;
using MarloHost::CornerTable;

QString orderText(CornerTable const& table, CornerImport const& import)
{
    static char const* const words[] = {"ll", "lr", "ul", "ur"};
    QStringList order;
    for (auto const corner : MarloHost::cornerOrder(table, import))
    {
        order += QLatin1String(words[corner]);
    }
    return order.join(QLatin1Char(','));
}

/// What the way in which the corners lie says against axes and order.
QString orientationWarning(CornerTable const& table, CornerImport const& import)
{
    MarloHost::CornerOrientations const found = MarloHost::cornerOrientations(table, import);
    int const total = static_cast<int>(table.rows.size());
    if (found.notConvex > 0)
    {
        return QStringLiteral("in %1 of %2 frames the outline of the corners crosses itself or bends inward, which a "
                              "plane that is seen never does")
            .arg(found.notConvex)
            .arg(total);
    }
    if (2 * found.counterClockwise > total)
    {
        return QStringLiteral("in %1 of %2 frames the surface looks mirrored; does y run %3, or is the order of the "
                              "corners another one (--order)?")
            .arg(found.counterClockwise)
            .arg(total)
            .arg(import.yUp ? QStringLiteral("down (no --y-up)") : QStringLiteral("up (--y-up)"));
    }
    return QString();
}

struct ImportReport
{
    CornerTable const& table;
    CornerImport const& import;
    QString project;
    bool isRenumbered;
    QStringList warnings;

    Json toJson() const
    {
        return {{"project", jsonText(project)},
                {"status", "written"},
                {"frames", table.rows.size()},
                {"firstFrame", table.firstFrame},
                {"lastFrame", table.lastFrame},
                {"missing", jsonRanges(table.missingFrames())},
                {"gaps", import.interpolateGaps ? "interpolate" : "hold"},
                {"frameNumbers", table.hasFrameNumbers ? "table" : "counted"},
                {"axis", import.yUp ? "y up" : "y down"},
                {"pixels", import.pixelCentres ? "centres" : "edges"},
                {"order", jsonText(orderText(table, import))},
                {"ignoredColumns", jsonTexts(table.ignoredColumns)},
                {"warnings", jsonTexts(warnings)},
                {"reason", ""}};
    }

    QStringList lines() const
    {
        FrameRanges const missing = table.missingFrames();
        bool const isFilled = import.interpolateGaps && !missing.empty();
        QStringList lines{
            project,
            QStringLiteral("frames: %1 with corners, %2 to %3 (%4)")
                .arg(table.rows.size())
                .arg(table.firstFrame)
                .arg(table.lastFrame)
                .arg(numbersText()),
            QStringLiteral("missing: ") + rangesText(missing) +
                (isFilled ? QStringLiteral(" (interpolated where corners lie on both sides)") : QString()),
            QStringLiteral("axis: y %1 (%2); order of the corners: %3")
                .arg(import.yUp ? QStringLiteral("up") : QStringLiteral("down"),
                     import.yUp ? QStringLiteral("--y-up") : QStringLiteral("default; --y-up for the other way"),
                     orderText(table, import)),
            QStringLiteral("pixels: 0,0 is the ") +
                (import.pixelCentres ? QStringLiteral("middle of the corner pixel (--pixel-centres)")
                                     : QStringLiteral("outer corner of the corner pixel (default; --pixel-centres for "
                                                      "its middle)"))};
        if (!table.ignoredColumns.isEmpty())
        {
            lines += QStringLiteral("ignored columns: ") + shortList(table.ignoredColumns);
        }
        return lines;
    }

    QString numbersText() const
    {
        if (isRenumbered)
        {
            return QStringLiteral("counted from --start");
        }
        return table.hasFrameNumbers ? QStringLiteral("numbers of the table") : QStringLiteral("counted from 1");
    }
};

void importCorners(Options const& options, Console& console)
{
    CornerImportChoices const& corners = options.corners;
    bool const isPiped = corners.table == QLatin1String("-");
    checkImportTarget(corners.target, isPiped ? QStringList() : QStringList(corners.table), console);
    CornerTable table = MarloHost::readCornerTableFile(corners.table);
    if (corners.start)
    {
        table.startAt(*corners.start);
    }
    CornerImport import = corners.import;
    QString const baseName = QFileInfo(corners.table).completeBaseName();
    import.clipName = baseName.isEmpty() || isPiped ? QStringLiteral("clip") : baseName;
    QByteArray const project = MarloHost::writeProject(MarloHost::projectFromCorners(table, import));
    writeImportedProject(corners.target, project, console);

    QString const warning = orientationWarning(table, import);
    QStringList const warnings = warning.isEmpty() ? QStringList() : QStringList(warning);
    ImportReport const report{table, import, corners.target.project, corners.start.has_value(), warnings};
    reportImport(options, warnings, report.toJson(), report.lines(), console);
}

}

ExitStatus runImportCorners(Options const& options, Console& console)
{
    try
    {
        importCorners(options, console);
    }
    catch (KORV_BadFile const& error)
    {
        throw Failure(UnreadableInput, error.message());
    }
    return Success;
}
