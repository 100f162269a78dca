#include "ImportedProject.h"

#include "Console.h"
#include "Record.h"
#include "WriteProvider.h"
#include "text/PartFile.h"

#include <QDir>
#include <QFileInfo>

void checkImportTarget(ImportTarget const& target, Console const& console)
{
    if (target.project == QLatin1String("-"))
    {
        throw usageError(QStringLiteral("import: -o needs the path of a project file"));
    }
    refuseExisting(target.project, target.overwrite, console);
}

void writeImportedProject(ImportTarget const& target, QByteArray const& bytes, Console& console)
{
    QFileInfo const file(target.project);
    bool const mustAsk = file.exists() && !file.isDir() && !target.overwrite;
    if (mustAsk && !console.ask(target.project + QStringLiteral(" exists. Replace it?")))
    {
        throw Failure(Refused, QStringLiteral("nothing written; the old file stays"));
    }
    QDir().mkpath(file.absolutePath());
    if (!Text::writeWholeFile(target.project, bytes))
    {
        throw Failure(Refused, QStringLiteral("Could not write to file ") + target.project);
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
