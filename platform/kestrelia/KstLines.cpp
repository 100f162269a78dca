#include "kestrelia/KstLines.h"

#include "kestrelia/ProjectFile.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace KestreliaLib
{

namespace
{

bool isBlank(char c)
{
    return c == ' ' || c == '\t';
}

// A piece of the file for an error text, which stays one short line whatever it holds.
QString quoted(std::string_view piece)
{
    constexpr std::size_t MOST_BYTES = 160;
    constexpr int MOST_CHARACTERS = 40;
    QString text = QString::fromUtf8(piece.data(), static_cast<int>(std::min(piece.size(), MOST_BYTES)));
    if (text.size() > MOST_CHARACTERS)
    {
        text = text.left(MOST_CHARACTERS) + QStringLiteral("...");
    }
    for (QChar& c : text)
    {
        c = c.isPrint() ? c : QChar(QChar::ReplacementCharacter);
    }
    return QLatin1Char('"') + text + QLatin1Char('"');
}

int hexDigit(char c)
{
    constexpr std::string_view DIGITS = "0123456789abcdef";
    std::size_t const digit = DIGITS.find(c >= 'A' && c <= 'F' ? static_cast<char>(c - 'A' + 'a') : c);
    return digit == std::string_view::npos ? -1 : static_cast<int>(digit);
}

bool isUtf8(std::string_view bytes)
{
    // What isn't UTF-8 becomes a replacement character, and doesn't come back.
    auto const size = static_cast<int>(bytes.size());
    QByteArray const back = QString::fromUtf8(bytes.data(), size).toUtf8();
    return std::string_view(back.constData(), static_cast<std::size_t>(back.size())) == bytes;
}

}

KstLines::KstLines(QByteArray const& text, QString const& fileName)
    : m_text(text.constData(), static_cast<std::size_t>(text.size())), m_fileName(fileName)
{
    constexpr std::string_view BYTE_ORDER_MARK = "\xEF\xBB\xBF";
    if (m_text.substr(0, BYTE_ORDER_MARK.size()) == BYTE_ORDER_MARK)
    {
        m_text.remove_prefix(BYTE_ORDER_MARK.size());
    }
}

bool KstLines::next()
{
    while (!m_text.empty())
    {
        ++m_number;
        std::size_t const length = std::min(m_text.find('\n'), m_text.size());
        m_rest = m_text.substr(0, length);
        m_text.remove_prefix(std::min(length + 1, m_text.size()));
        if (!m_rest.empty() && m_rest.back() == '\r')
        {
            m_rest.remove_suffix(1);
        }
        while (!m_rest.empty() && isBlank(m_rest.back()))
        {
            m_rest.remove_suffix(1);
        }
        skipBlanks();
        if (!m_rest.empty() && m_rest.front() != '#')
        {
            m_word = token();
            return true;
        }
    }
    m_word = m_rest = {};
    return false;
}

void KstLines::skipBlanks()
{
    while (!m_rest.empty() && isBlank(m_rest.front()))
    {
        m_rest.remove_prefix(1);
    }
}

std::string_view KstLines::token()
{
    if (m_rest.empty())
    {
        fail("a value is missing");
    }
    auto const end = std::find_if(m_rest.begin(), m_rest.end(), isBlank);
    std::string_view const taken = m_rest.substr(0, static_cast<std::size_t>(end - m_rest.begin()));
    m_rest.remove_prefix(taken.size());
    skipBlanks();
    return taken;
}

int KstLines::integer(int least, int most)
{
    std::string_view const text = token();
    int value = 0;
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || value < least || value > most)
    {
        fail(quoted(text) + QStringLiteral(" isn't an integer from %1 to %2").arg(least).arg(most));
    }
    return value;
}

int KstLines::frame()
{
    return integer(-Kst::LARGEST_FRAME, Kst::LARGEST_FRAME);
}

unsigned int KstLines::id()
{
    return static_cast<unsigned int>(integer(1, static_cast<int>(Kst::LARGEST_ID)));
}

std::optional<int> KstLines::time()
{
    if (m_rest.substr(0, 1) == Kst::AT_REST && (m_rest.size() == 1 || isBlank(m_rest[1])))
    {
        token();
        return std::nullopt;
    }
    return frame();
}

double KstLines::number()
{
    std::string_view const text = token();
    double value = 0;
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    // from_chars takes words for what isn't finite as well.
    if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(value))
    {
        fail(quoted(text) + QStringLiteral(" isn't a finite number"));
    }
    return value;
}

std::string KstLines::name()
{
    if (m_rest.empty() || m_rest.front() != '"')
    {
        fail("a name in double quotes is missing");
    }
    m_rest.remove_prefix(1);
    std::string name;
    while (!m_rest.empty() && m_rest.front() != '"')
    {
        char c = m_rest.front();
        m_rest.remove_prefix(1);
        if (Kst::isControl(c))
        {
            fail("a control character in a name; write it as \\xHH");
        }
        name += c == '\\' ? escaped() : c;
    }
    if (m_rest.empty())
    {
        fail("the closing quote of a name is missing");
    }
    m_rest.remove_prefix(1);
    if (!isUtf8(name))
    {
        fail("a name isn't UTF-8");
    }
    if (!m_rest.empty() && !isBlank(m_rest.front()))
    {
        fail("a blank is missing behind a name");
    }
    skipBlanks();
    return name;
}

char KstLines::escaped()
{
    if (m_rest.size() >= 3 && m_rest.front() == 'x')
    {
        int const high = hexDigit(m_rest[1]);
        int const low = hexDigit(m_rest[2]);
        auto const code = static_cast<char>(16 * high + low);
        if (high >= 0 && low >= 0 && Kst::isControl(code))
        {
            m_rest.remove_prefix(3);
            return code;
        }
    }
    if (m_rest.empty() || (m_rest.front() != '"' && m_rest.front() != '\\'))
    {
        fail("a backslash in a name stands before a quote, a backslash, or the xHH of a control character");
    }
    char const c = m_rest.front();
    m_rest.remove_prefix(1);
    return c;
}

void KstLines::endLine() const
{
    if (!m_rest.empty())
    {
        fail(QStringLiteral("unexpected ") + quoted(m_rest));
    }
}

void KstLines::fail(QString const& cause) const
{
    throw FileError(m_fileName + QStringLiteral(": line %1: ").arg(std::max(1, m_number)) + cause);
}

void KstLines::fail(char const* cause) const
{
    fail(QString::fromLatin1(cause));
}

void KstLines::failWord() const
{
    fail(QStringLiteral("unexpected ") + (m_word.empty() ? QStringLiteral("end of the file") : quoted(m_word)));
}

}
