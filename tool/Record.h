#pragma once
// What an export came to, as people and scripts are told.

#include "Failure.h"
#include "Unheard.h"

#include <QString>
#include <QStringList>

#include <nlohmann/json.hpp>

#include <vector>

struct ExportRecord
{
    enum Status
    {
        Written,

        /// Not tried, as the project has nothing for the format, or only rehearsed.
        Skipped,
        Failed
    };

    struct File
    {
        QString path;
        qint64 bytes = 0;
    };

    QString format;
    Status status = Failed;
    std::vector<File> files;

    /// Frames and layers that failed, a line each; for camera formats what the user should
    /// know of points that were exported.
    QStringList messages;
    std::vector<Unheard> unheard;
    QStringList warnings;
    QStringList notices;
    int failedCount = 0;

    /// Why it was skipped or failed.
    QString reason;

    /// Whether `messages` are failures; not in the JSON.
    bool messagesAreFailures = true;

    /// Whether frames that stand in for others are no failures, and whether each message
    /// counts in `failedCount`; not in the JSON.
    bool acceptsGaps = false;
    bool countsMessages = false;

    /// What the program ends with for this export alone; not in the JSON.
    ExitStatus exitStatus = Refused;

    void fail(Failure const& failure);

    /// The failures that aren't accepted.
    bool hasFailedFrames() const;

    /// Takes the accepted ones out of `failedCount`.
    void acceptGaps();

    /// What to tell of choices without effect, and the other warnings.
    QStringList allWarnings() const;
    nlohmann::ordered_json toJson() const;

private:
    int acceptedGaps() const;
};

nlohmann::ordered_json toJson(std::vector<ExportRecord> const& records);

/// A text as JSON holds it.
std::string jsonText(QString const& text);
nlohmann::ordered_json jsonTexts(QStringList const& texts);

/// The bytes of a document, indented, with a line end. Text that isn't Unicode gets
/// replacement characters.
QByteArray jsonBytes(nlohmann::ordered_json const& document);
