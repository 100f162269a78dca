#include "ImportedProject.h"

#include "Console.h"
#include "Record.h"
#include "WriteProvider.h"
#include "text/PartFile.h"

#include <QDir>
#include <QFileInfo>

#include <cerrno>

QString rangesText(FrameRanges const& ranges)
{
    QStringList texts;
    for (auto const& [first, last] : ranges)
    {
        texts += first == last ? QString::number(first) : QStringLiteral("%1-%2").arg(first).arg(last);
    }
    return texts.isEmpty() ? QStringLiteral("none") : shortList(texts);
}

nlohmann::ordered_json jsonRanges(FrameRanges const& ranges)
{
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (auto const& [first, last] : ranges)
    {
        list.push_back({first, last});
    }
    return list;
}

QString shortList(QStringList const& list)
{
    constexpr int MOST = 20;
    QString const shown = list.mid(0, MOST).join(QStringLiteral(", "));
    return list.size() <= MOST ? shown : shown + QStringLiteral(" and %1 more").arg(list.size() - MOST);
}

void checkImportTarget(ImportTarget const& target, QStringList const& inputs, Console const& console)
{
    if (target.project == QLatin1String("-"))
    {
        throw usageError(QStringLiteral("import: -o needs the path of a project file"));
    }
    WritingChoices writing;
    writing.overwrite = target.overwrite;
    writing.inputs = inputs;
    checkTarget(target.project, writing, console);
}

void writeImportedProject(ImportTarget const& target, QByteArray const& bytes, Console& console)
{
    QFileInfo const file(target.project);
    bool const isOld = file.exists() && !file.isDir();
    if (isOld && !target.overwrite && !console.ask(target.project + QStringLiteral(" exists. Replace it?")))
    {
        throw Failure(Refused, QStringLiteral("nothing written; the old file stays"));
    }
    QDir().mkpath(file.absolutePath());
    Text::sweepPartFiles({target.project});
    bool const mayReplace = isOld || target.overwrite;
    if (!Text::writeWholeFile(target.project, bytes, mayReplace ? Text::Existing::Replace : Text::Existing::Keep))
    {
        QString const reason = qt_error_string(errno);
        throw Failure(Refused,
                      QStringLiteral("Could not write to file ") + target.project + QStringLiteral(": ") + reason);
    }
}

void reportImport(Options const& options, QStringList const& warnings, nlohmann::ordered_json const& record,
                  QStringList const& lines, Console& console)
{
    for (QString const& warning : warnings)
    {
        console.warning(warning);
    }
    if (options.json)
    {
        console.result(jsonBytes(record));
        return;
    }
    for (QString const& line : options.quiet ? QStringList() : lines)
    {
        console.result(line);
    }
}
