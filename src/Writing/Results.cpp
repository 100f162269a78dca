#include "Writing/Results.h"

#include "Host/ShapeExporter.h"
#include "text/Names.h"

namespace Export
{

Korvane::ExportedFiles fileResult(QString const& path, QByteArray const& contents, int failedCount,
                                  QStringList const& failures)
{
    Korvane::ExportedFiles result;
    result.files.insert(path, contents);
    result.failedCount = failedCount;
    appendFailures(result, path, failures);
    return result;
}

void appendFailures(Korvane::ExportedFiles& result, QString const& path, QStringList const& failures)
{
    for (QString const& failure : failures)
    {
        if (!failure.isEmpty())
        {
            result.messages.append(Text::pathMessage(path, failure));
        }
    }
}

std::shared_ptr<QMap<QString, QByteArray>> shapeResult(QString const& path, QByteArray const& contents,
                                                       QString const& failure)
{
    auto files = std::make_shared<QMap<QString, QByteArray>>();
    files->insert(path, contents);
    if (!failure.isEmpty())
    {
        files->insert(Korvane::ShapeExporter::ERROR_FILENAME, failure.toUtf8());
    }
    return files;
}

}
