#pragma once
// Pieces that the readers of plain text tables share.

#include <QByteArray>
#include <QString>

#include <optional>
#include <string_view>

namespace MarloHost
{

/// A piece of the text that is being read, which it must not outlive.
using Token = std::string_view;

inline bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\v' || c == '\f';
}

inline bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

QString textOf(Token token);

/// The token in quotes for an error text, which stays one short readable line whatever
/// the file holds.
QString quoted(Token token);

Token withoutSign(Token token);

/// The whole token as a decimal number. No hexadecimal, no infinity, no NaN, no locale.
std::optional<double> numberOf(Token token);

/// The lines of a text, whatever ends them: LF, CR LF or CR.
class TextLines
{
public:
    /// @param text must outlive the lines
    /// @param fileName stands in error texts
    /// @throws KORV_BadFile for UTF-16; a byte order mark of UTF-8 is passed over
    TextLines(QByteArray const& text, QString const& fileName);

    bool atEnd() const
    {
        return m_rest.empty();
    }

    /// The next line, without its end; empty at the end.
    Token take();

    /// Number of the line that was taken last, from 1.
    int number() const
    {
        return m_number;
    }

    /// Refuses the line that was taken last.
    /// @throws KORV_BadFile "FILE: line N: CAUSE"
    [[noreturn]] void fail(QString const& cause) const;

private:
    Token m_rest;
    QString m_fileName;
    int m_number = 0;
};

/// The bytes of a file.
/// @throws KORV_BadFile when it can't be opened or read, or is larger than `most`
QByteArray readWholeFile(QString const& path, qint64 most);

/// The bytes up to the end of what is piped into the program; errors as readWholeFile.
QByteArray readStandardInput(qint64 most);

}
