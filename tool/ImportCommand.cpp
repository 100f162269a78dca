// `marlo-export import corners`

#include "Commands.h"
#include "Console.h"
#include "Host/KORV_Exception.h"
#include "Record.h"
#include "WriteProvider.h"
#include "marlohost/CornerTable.h"
#include "marlohost/ProjectFile.h"
#include "text/PartFile.h"

#include <QDir>
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
    QString warning;

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
                {"warnings", jsonTexts(warning.isEmpty() ? QStringList() : QStringList(warning))},
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

void writeProjectFile(CornerImportChoices const& corners, QByteArray const& bytes, Console& console)
{
    QFileInfo const target(corners.project);
    bool const mustAsk = target.exists() && !target.isDir() && !corners.overwrite;
    if (mustAsk && !console.ask(corners.project + QStringLiteral(" exists. Replace it?")))
    {
        throw Failure(Refused, QStringLiteral("nothing written; the old file stays"));
    }
    QDir().mkpath(target.absolutePath());
    if (!Text::writeWholeFile(corners.project, bytes))
    {
        throw Failure(Refused, QStringLiteral("Could not write to file ") + corners.project);
    }
}

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
    if (corners.project == QLatin1String("-"))
    {
        throw usageError(QStringLiteral("import: -o needs the path of a project file"));
    }
    refuseExisting(corners.project, corners.overwrite, console);
    CornerTable const table = readTable(corners.table);
    CornerImport import = corners.import;
    QString const baseName = QFileInfo(corners.table).completeBaseName();
    import.clipName = baseName.isEmpty() ? QStringLiteral("clip") : baseName;
    writeProjectFile(corners, MarloHost::writeProject(makeModel(table, import)), console);

    ImportReport const report{table, import, corners.project, orientationWarning(table, import)};
    if (!report.warning.isEmpty())
    {
        console.warning(report.warning);
    }
    if (options.json)
    {
        console.result(jsonBytes(report.toJson()));
        return;
    }
    for (QString const& line : options.quiet ? QStringList() : report.lines())
    {
        console.result(line);
    }
}

}

ExitStatus runImportCorners(Options const& options, Console& console)
{
    importCorners(options, console);
    return Success;
}
