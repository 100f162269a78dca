#pragma once
// How the program ends, and the one exception that says so.

#include <QString>

#include <exception>

/// What scripts see; the numbers are fixed.
enum ExitStatus
{
    Success = 0,

    /// Refused or failed; the reason is on stderr.
    Refused = 1,
    WrongUsage = 2,

    /// A project, preset, table or model file can't be read.
    UnreadableInput = 3,

    /// Written, but some frames failed.
    SomeFramesFailed = 4,

    /// What a shell reports of a program that an interrupt ended.
    Interrupted = 130
};

/// Ends a command with a status and words for the user.
class Failure : public std::exception
{
public:
    Failure(ExitStatus status, QString const& text);

    ExitStatus status() const;

    /// May have several lines; empty when nothing needs to be said.
    QString const& text() const;
    char const* what() const noexcept override;

private:
    ExitStatus m_status;
    QString m_text;
};

/// A failure of the command line's own making.
Failure usageError(QString const& text);

/// The exception that is being handled, as a failure. To be called in a handler.
Failure currentFailure();

/// The text in one line: runs of line ends and blanks around them become one blank.
/// Other control characters, which a terminal would obey, are replaced.
QString oneLine(QString const& text);

/// Names in double quotes with commas between, for a message.
QString quotedList(QStringList const& names);
