#pragma once
// The answers that the library gets when it asks the user during an export.

#include "Core/ExportFunctions.h"
#include "Options.h"
#include "Record.h"

#include <QMap>

class Console;

class WriteProvider : public Export::ExportMessageBoxProvider
{
public:
    /// @param record gets messages, notices and the files that were written
    WriteProvider(WritingChoices const& writing, ExportRecord& record, Console& console);

    /// Takes the failures into the record. True, which writes nothing, when the export
    /// is to end here: a dry run, output for stdout, failures with --strict.
    /// @throws Failure when a file exists and may not be replaced
    bool confirmFailures(Korvane::ExportedFiles const& result) override;
    void showNotices(std::vector<ExportNotice> const& notices) override;
    QString askSavePath(Export::ExportFileInfo const& fileInfo, QString const& directory,
                        QString const& suggestedPath) override;
    bool confirmWrite(QString const& path) override;

    /// After the library has returned: the last file, too, was written.
    void finish();

    /// What the export gave, before anything was written.
    QMap<QString, QByteArray> const& files() const;

    /// Whether --strict ended the export.
    bool hasAbandoned() const;

private:
    WritingChoices const& m_writing;
    ExportRecord& m_record;
    Console& m_console;
    QMap<QString, QByteArray> m_files;

    /// A file that the library is about to write; written once it asks for the next.
    QString m_pending;
    bool m_hasAbandoned = false;
};

/// Refuses a path that starts from a working folder that was removed.
/// @throws Failure
void checkWorkingFolder(QString const& path);

/// Refuses a target that is one of the files that the command reads, by whatever path, and
/// one that exists, unless it may be replaced or there is somebody to ask; and what
/// checkWorkingFolder() refuses.
/// @throws Failure
void checkTarget(QString const& path, WritingChoices const& writing, Console const& console);
