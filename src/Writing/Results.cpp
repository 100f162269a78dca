#include "Writing/Results.h"

#include "Host/ShapeExporter.h"
#include "text/Names.h"

#include <QHash>

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

QStringList failuresOfViews(FailuresByView const& failures)
{
    if (failures.size() == 1)
    {
        return failures.front().second;
    }
    QStringList order;
    QHash<QString, QStringList> viewsByFailure;
    for (auto const& [view, ofView] : failures)
    {
        for (QString const& failure : ofView)
        {
            QStringList& views = viewsByFailure[failure];
            order += views.isEmpty() ? QStringList(failure) : QStringList();
            views += views.contains(view) ? QStringList() : QStringList(view);
        }
    }
    QStringList told;
    for (QString const& failure : order)
    {
        QStringList const& views = viewsByFailure[failure];
        QString const word = views.size() == 1 ? QStringLiteral("view") : QStringLiteral("views");
        told += failure + QStringLiteral(" (in ") + word + QStringLiteral(" \"") +
                views.join(QStringLiteral("\", \"")) + QStringLiteral("\")");
    }
    return told;
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
