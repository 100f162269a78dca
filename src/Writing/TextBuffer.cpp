#include "Writing/TextBuffer.h"

#include "Writing/ThrowHelpers.h"
#include "text/NumberText.h"

#include <algorithm>

namespace Export
{

namespace
{

/// Of the longest number: 309 digits in front of the point, sign, point and decimals.
constexpr qint64 LONGEST_NUMBER = 330;

[[noreturn]] void throwTooLarge(QString const& advice)
{
    QString const failure = QStringLiteral("The text needs more than the 2 GB that one file can hold.");
    throwOperationFailed("TextBuffer", __LINE__, QStringLiteral("throwTooLarge"),
                         advice.isEmpty() ? failure : failure + QLatin1Char(' ') + advice);
}

}

void requireTextSize(qint64 bytes, QString const& advice)
{
    if (bytes > TextBuffer::LARGEST)
    {
        throwTooLarge(advice);
    }
}

TextBuffer::TextBuffer(QString const& advice) : m_advice(advice)
{
}

void TextBuffer::reserve(qint64 bytes)
{
    qint64 const wanted = m_bytes.size() + bytes;
    qint64 const capacity = m_bytes.capacity();
    if (wanted > capacity)
    {
        m_bytes.reserve(static_cast<int>(std::min(LARGEST, std::max(wanted, 2 * capacity))));
    }
}

void TextBuffer::refuse() const
{
    throwTooLarge(m_advice);
}

TextBuffer& TextBuffer::operator<<(QByteArray const& text)
{
    require(text.size());
    m_bytes += text;
    return *this;
}

TextBuffer& TextBuffer::operator<<(QString const& text)
{
    return *this << text.toUtf8();
}

void TextBuffer::chop(int bytes)
{
    m_bytes.chop(bytes);
}

QString TextBuffer::toString() const
{
    return QString::fromUtf8(m_bytes);
}

TextBuffer& operator<<(TextBuffer& out, General number)
{
    out.require(LONGEST_NUMBER);
    Text::appendGeneral(out.m_bytes, number.value);
    return out;
}

TextBuffer& operator<<(TextBuffer& out, Fixed number)
{
    out.require(LONGEST_NUMBER);
    int const start = out.m_bytes.size();
    Text::appendFixed(out.m_bytes, number.value, number.decimals);
    int const blanks = number.width - (out.m_bytes.size() - start);
    if (blanks > 0)
    {
        out.m_bytes.insert(start, blanks, ' ');
    }
    return out;
}

TextBuffer& operator<<(TextBuffer& out, Integer number)
{
    out.require(LONGEST_NUMBER);
    Text::appendInteger(out.m_bytes, number.value);
    return out;
}

}
