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

QString rangeText(std::pair<int, int> const& range)
{
    return range.first == range.second ? QString::number(range.first)
                                       : QStringLiteral("%1-%2").arg(range.first).arg(range.second);
}

QString orderText(CornerImport const& import)
{
    static char const* const words[] = {"ll", "lr", "ul", "ur"};
    QStringList order;
    for (auto const corner : import.order)
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
    QStringList warnings;

    Json toJson() const
    {
        Json missing = Json::array();
        for (auto const& [first, last] : table.missingFrames())
        {
            missing.push_back({first, last});
        }
        return {{"project", jsonText(project)},
                {"status", "written"},
                {"frames", table.rows.size()},
                {"firstFrame", table.firstFrame},
                {"lastFrame", table.lastFrame},
                {"missing", missing},
                {"frameNumbers", table.hasFrameNumbers ? "table" : "counted"},
                {"axis", import.yUp ? "y up" : "y down"},
                {"order", jsonText(orderText(import))},
                {"warnings", jsonTexts(warnings)},
                {"reason", ""}};
    }

    QStringList lines() const
    {
        QStringList missing;
        for (std::pair<int, int> const& range : table.missingFrames())
        {
            missing += rangeText(range);
        }
        return {
            project,
            QStringLiteral("frames: %1 with corners, %2 to %3 (%4)")
                .arg(table.rows.size())
                .arg(table.firstFrame)
                .arg(table.lastFrame)
                .arg(table.hasFrameNumbers ? QStringLiteral("numbers of the table") : QStringLiteral("counted from 1")),
            QStringLiteral("missing: ") + (missing.isEmpty() ? QStringLiteral("none") : missing.join(", ")),
            QStringLiteral("axis: y %1 (%2); order of the corners: %3")
                .arg(import.yUp ? QStringLiteral("up") : QStringLiteral("down"),
                     import.yUp ? QStringLiteral("--y-up") : QStringLiteral("default; --y-up for the other way"),
                     orderText(import))};
    }
};

CornerTable readTable(QString const& path)
{
    try
    {
        return MarloHost::readCornerTableFile(path);
    }
    catch (KORV_BadFile const& error)
    {
        throw Failure(UnreadableInput, error.message());
    }
}

MarloHost::ProjectModel makeModel(CornerTable const& table, CornerImport const& import)
{
    try
    {
        return MarloHost::projectFromCorners(table, import);
    }
    catch (KORV_BadFile const& error)
    {
        throw Failure(UnreadableInput, error.message());
    }
}

void importCorners(Options const& options, Console& console)
{
    CornerImportChoices const& corners = options.corners;
    checkImportTarget(corners.target, console);
    CornerTable const table = readTable(corners.table);
    CornerImport import = corners.import;
    QString const baseName = QFileInfo(corners.table).completeBaseName();
    import.clipName = baseName.isEmpty() ? QStringLiteral("clip") : baseName;
    writeImportedProject(corners.target, MarloHost::writeProject(makeModel(table, import)), console);

    QString const warning = orientationWarning(table, import);
    QStringList const warnings = warning.isEmpty() ? QStringList() : QStringList(warning);
    ImportReport const report{table, import, corners.target.project, warnings};
    reportImport(options, warnings, report.toJson(), report.lines(), console);
}

}

ExitStatus runImportCorners(Options const& options, Console& console)
{
    importCorners(options, console);
    return Success;
}
