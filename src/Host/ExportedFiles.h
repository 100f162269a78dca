#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>

#include <vector>

/// Something to tell the user after a successful write.
struct ExportNotice
{
    /// A setting that keeps the notice from being shown again.
    QString settingsKey;
    QString title;
    QString text;
};

namespace Korvane
{

/// What every exporter gives back. Exporters don't touch the disk.
struct ExportedFiles
{
    /// Failures of single frames or layers, each "path: message".
    QStringList messages;
    std::vector<ExportNotice> notices;

    /// File path (or a placeholder for the clipboard) to content, in path order.
    QMap<QString, QByteArray> files;

    /// How many frames or items could not be exported.
    int failedCount = 0;
};

}
