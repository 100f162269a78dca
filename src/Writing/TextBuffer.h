#pragma once

#include "Core/ExportApi.h"

#include <QByteArray>
#include <QString>

#include <cstring>

namespace Export
{

/// The text of a file while it is written: UTF-8 in one buffer, appended to in the order
/// of the document, so that the code reads like the file.
///
///     out << " to1 {" << General{x} << ' ' << General{y} << "}\n";
///
/// A file is one QByteArray, which holds two gigabytes at most: a text that would become
/// larger is refused, with the advice that the buffer was made with.
class MARLO_EXPORT_API TextBuffer
{
public:
    /// What a QByteArray of Qt 5 can hold, with room for its own record, in bytes.
    static constexpr qint64 LARGEST = 2147483647 - 64;

    /// @param advice a sentence that says how the user gets a smaller file; may be empty
    explicit TextBuffer(QString const& advice = QString());

    /// Makes room for so many bytes more. Capacity at least doubles, so that many small
    /// steps don't move the text each; beyond LARGEST there is no more room than that.
    void reserve(qint64 bytes);

    /// @param bytes that are still to come, at least
    /// @throws KORV_OperationFailed when the text would become larger than LARGEST
    void require(qint64 bytes) const
    {
        if (m_bytes.size() + bytes > LARGEST)
        {
            refuse();
        }
    }

    // Each of these throws KORV_OperationFailed when the text gets too large.

    TextBuffer& operator<<(char character)
    {
        require(1);
        m_bytes += character;
        return *this;
    }

    /// @param text UTF-8, ends with a zero
    TextBuffer& operator<<(char const* text)
    {
        std::size_t const length = std::strlen(text);
        require(static_cast<qint64>(length));
        m_bytes.append(text, static_cast<int>(length));
        return *this;
    }

    /// @param text UTF-8
    TextBuffer& operator<<(QByteArray const& text);
    TextBuffer& operator<<(QString const& text);

    /// Takes characters off the end.
    void chop(int bytes);

    qint64 size() const
    {
        return m_bytes.size();
    }

    /// The text; what holds it shares its memory with the buffer.
    QByteArray const& bytes() const
    {
        return m_bytes;
    }

    QString toString() const;

private:
    [[noreturn]] void refuse() const;

    friend MARLO_EXPORT_API TextBuffer& operator<<(TextBuffer& out, struct General number);
    friend MARLO_EXPORT_API TextBuffer& operator<<(TextBuffer& out, struct Fixed number);
    friend MARLO_EXPORT_API TextBuffer& operator<<(TextBuffer& out, struct Integer number);

    QByteArray m_bytes;
    QString m_advice;
};

/// Refuses a text before it is built.
/// @param bytes that it has at least
/// @param advice as of TextBuffer
/// @throws KORV_OperationFailed when that is more than TextBuffer::LARGEST
MARLO_EXPORT_API void requireTextSize(qint64 bytes, QString const& advice);

/// The number as `QString::number(value, 'g', 6)` prints it.
struct General
{
    double value;
};

/// The number as `QString::number(value, 'f', decimals)` prints it, behind as many blanks as
/// fill a column.
struct Fixed
{
    double value;
    int decimals;

    /// Of the column, in characters; a longer number is written as it is.
    int width = 0;
};

struct Integer
{
    long long value;
};

MARLO_EXPORT_API TextBuffer& operator<<(TextBuffer& out, General number);
MARLO_EXPORT_API TextBuffer& operator<<(TextBuffer& out, Fixed number);
MARLO_EXPORT_API TextBuffer& operator<<(TextBuffer& out, Integer number);

}
