#pragma once
// stdout, which carries results and nothing else, and stderr, which carries the rest.

#include <QByteArray>
#include <QString>

class Console
{
public:
    /// @param isQuiet drops everything but results, warnings and errors
    explicit Console(bool isQuiet);
    ~Console();
    Console(Console const&) = delete;
    Console& operator=(Console const&) = delete;

    bool isQuiet() const;

    /// Whether somebody is there to answer a question.
    bool isInteractive() const;

    /// Writes to stdout.
    /// @throws Failure without words when the reader has gone away, with words when
    ///         writing fails otherwise
    void result(QByteArray const& bytes);
    void result(QString const& line);

    /// One line on stderr, behind the program's name.
    void error(QString const& text);
    void warning(QString const& text);

    /// The same, but not when quiet.
    void note(QString const& text);

    /// Asks on the terminal; anything but a yes is a no.
    bool ask(QString const& question);

    /// Shows on a terminal how much of the work is done, until other text is written.
    /// @param what is at work now
    void progress(int done, int total, QString const& what);
    void clearProgress();

private:
    void line(QString const& text);

    bool m_isQuiet;
    bool m_isInteractive;
    bool m_showsProgress = false;
};
