#pragma once
// What exporters return.

#include "Core/ExportApi.h"
#include "Host/ExportedFiles.h"

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>

#include <memory>
#include <utility>
#include <vector>

namespace Export
{

/// The result of an export of one file.
///
/// @param failedCount what was left out: rows, keys, points
/// @param failures a line each; empty ones are dropped, the others get the path in front
MARLO_EXPORT_API Korvane::ExportedFiles fileResult(QString const& path, QByteArray const& contents, int failedCount,
                                                   QStringList const& failures);

/// Adds the failures to the messages, in the same form.
MARLO_EXPORT_API void appendFailures(Korvane::ExportedFiles& result, QString const& path, QStringList const& failures);

/// Failures of one view after the other, with the name of the view.
using FailuresByView = std::vector<std::pair<QString, QStringList>>;

/// The failures of all views in one list: each once, and behind it the views that it is about
/// when there are several views.
MARLO_EXPORT_API QStringList failuresOfViews(FailuresByView const& failures);

/// The result of an export of shapes in one file.
/// @param failure for the reserved entry of errors; empty for none
MARLO_EXPORT_API std::shared_ptr<QMap<QString, QByteArray>> shapeResult(QString const& path, QByteArray const& contents,
                                                                        QString const& failure);

}
