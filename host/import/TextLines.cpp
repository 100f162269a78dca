#include "TextLines.h"

#include "Host/KORV_Exception.h"

#include <QFile>

#include <algorithm>
#include <charconv>

#include <unistd.h>

namespace MarloHost
{

QString textOf(Token token)
{
    return QString::fromUtf8(token.data(), static_cast<int>(token.size()));
}

QString quoted(Token token)
{
    constexpr std::size_t MOST_BYTES = 1000;
    constexpr int MOST_CHARACTERS = 40;
    QString text = textOf(token.substr(0, MOST_BYTES));
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

Token withoutSign(Token token)
{
    return !token.empty() && (token.front() == '+' || token.front() == '-') ? token.substr(1) : token;
}

std::optional<double> numberOf(Token token)
{
    Token const digits = withoutSign(token);
    if (digits.empty() || !(isDigit(digits.front()) || digits.front() == '.'))
    {
        return std::nullopt;
    }
    double number = 0;
    auto const [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (error != std::errc() || end != digits.data() + digits.size())
    {
        return std::nullopt;
    }
    return token.front() == '-' ? -number : number;
}

TextLines::TextLines(QByteArray const& text, QString const& fileName)
    : m_rest(text.constData(), static_cast<std::size_t>(text.size())), m_fileName(fileName)
{
    Token const utf8("\xEF\xBB\xBF");
    if (m_rest.substr(0, 2) == "\xFF\xFE" || m_rest.substr(0, 2) == "\xFE\xFF")
    {
        m_number = 1;
        fail(QStringLiteral("the file is UTF-16; save it as UTF-8"));
    }
    if (m_rest.substr(0, utf8.size()) == utf8)
    {
        m_rest.remove_prefix(utf8.size());
    }
}

Token TextLines::take()
{
    // Lines may be many megabytes long; this is several times as fast as find_first_of.
    auto const end = std::find_if(m_rest.begin(), m_rest.end(), [](char c) { return c == '\n' || c == '\r'; });
    Token const line = m_rest.substr(0, static_cast<std::size_t>(end - m_rest.begin()));
    bool const isPair = m_rest.substr(line.size(), 2) == "\r\n";
    m_rest.remove_prefix(std::min(m_rest.size(), line.size() + (isPair ? 2 : 1)));
    ++m_number;
    return line;
}

void TextLines::fail(QString const& cause) const
{
    QString const place = QStringLiteral("line %1").arg(m_number);
    throw KORV_BadFile(__FILE__, __LINE__, m_fileName + QStringLiteral(": ") + place + QStringLiteral(": ") + cause,
                       place);
}

namespace
{

QByteArray readOpened(QFile& file, QString const& name, qint64 most)
{
    auto const refuse = [&](QString const& cause)
    { return KORV_BadFile(__FILE__, __LINE__, name + QStringLiteral(": ") + cause, QString()); };

    // Reading reserves what it is asked for; a size of 0 is that of pipes, too.
    QByteArray const bytes = file.read((file.size() > 0 ? qMin(file.size(), most) : most) + 1);
    // An error behind the first bytes shows as missing ones only.
    if (file.error() != QFileDevice::NoError || bytes.size() < qMin(file.size(), most))
    {
        throw refuse(QStringLiteral("can't be read (%1)").arg(file.errorString()));
    }
    if (bytes.size() > most)
    {
        throw refuse(QStringLiteral("larger than %1 bytes").arg(most));
    }
    return bytes;
}

}

QByteArray readWholeFile(QString const& path, qint64 most)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
    {
        throw KORV_BadFile(__FILE__, __LINE__, path + QStringLiteral(": can't be opened (%1)").arg(file.errorString()),
                           QString());
    }
    return readOpened(file, path, most);
}

QByteArray readStandardInput(qint64 most)
{
    QString const name = QStringLiteral("standard input");
    QFile file;
    if (!file.open(STDIN_FILENO, QIODevice::ReadOnly))
    {
        throw KORV_BadFile(__FILE__, __LINE__, name + QStringLiteral(": can't be opened"), QString());
    }
    return readOpened(file, name, most);
}

}
