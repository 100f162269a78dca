#pragma once
// The lines of a project file, one value after the other.

#include "kestrelia/KstText.h"

#include <QByteArray>
#include <QString>

#include <optional>
#include <string>
#include <string_view>

namespace KestreliaLib
{

/// Walks over the lines of a text that have a record or a property. Each of the functions
/// that read throws FileError with file and line for what it can't read.
class KstLines
{
public:
    /// @param text must outlive this
    KstLines(QByteArray const& text, QString const& fileName);

    /// Goes to the next line that isn't empty or a comment, and takes its word. False at the
    /// end of the file.
    bool next();

    std::string_view word() const
    {
        return m_word;
    }

    // The next value of the line.

    int integer(int least, int most);
    int frame();
    unsigned int id();

    /// A frame; none for what is at rest.
    std::optional<int> time();
    double number();
    std::string name();
    std::string_view token();

    bool atEndOfLine() const
    {
        return m_rest.empty();
    }

    /// Refuses more values.
    void endLine() const;

    /// @throws FileError "FILE: line N: CAUSE"
    [[noreturn]] void fail(QString const& cause) const;
    [[noreturn]] void fail(char const* cause) const;

    /// Refuses the line for its word.
    [[noreturn]] void failWord() const;

private:
    void skipBlanks();
    char escaped();

    std::string_view m_text;
    QString m_fileName;
    std::string_view m_word;

    /// What is left of the line, without blanks in front and behind.
    std::string_view m_rest;
    int m_number = 0;
};

}
