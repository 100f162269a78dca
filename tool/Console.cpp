#include "Console.h"

#include "Failure.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <unistd.h>

namespace
{

constexpr int BAR_WIDTH = 24;

/// False with errno set when not everything could be written.
bool writeAll(int descriptor, QByteArray const& bytes)
{
    char const* at = bytes.constData();
    char const* const end = at + bytes.size();
    while (at < end)
    {
        ssize_t const count = ::write(descriptor, at, static_cast<std::size_t>(end - at));
        if (count < 0 && errno != EINTR)
        {
            return false;
        }
        at += count > 0 ? count : 0;
    }
    return true;
}

}

Console::Console(bool isQuiet) : m_isQuiet(isQuiet), m_isInteractive(::isatty(STDIN_FILENO) && ::isatty(STDERR_FILENO))
{
}

Console::~Console()
{
    clearProgress();
}

bool Console::isQuiet() const
{
    return m_isQuiet;
}

bool Console::isInteractive() const
{
    return m_isInteractive;
}

void Console::result(QByteArray const& bytes)
{
    clearProgress();
    if (!writeAll(STDOUT_FILENO, bytes))
    {
        int const error = errno;
        throw Failure(Refused, error == EPIPE ? QString()
                                              : QStringLiteral("Could not write to standard output (%1)")
                                                    .arg(QString::fromUtf8(std::strerror(error))));
    }
}

void Console::result(QString const& line)
{
    result(line.toUtf8() + '\n');
}

// What can't be said on stderr can't be said at all.
void Console::line(QString const& text)
{
    clearProgress();
    writeAll(STDERR_FILENO, "marlo-export: " + oneLine(text).toUtf8() + '\n');
}

void Console::error(QString const& text)
{
    line(text);
}

void Console::warning(QString const& text)
{
    line(QStringLiteral("warning: ") + text);
}

void Console::note(QString const& text)
{
    if (!m_isQuiet)
    {
        line(text);
    }
}

bool Console::ask(QString const& question)
{
    clearProgress();
    writeAll(STDERR_FILENO, "marlo-export: " + oneLine(question).toUtf8() + " [y/N] ");
    QByteArray answer;
    char c = 0;
    while (::read(STDIN_FILENO, &c, 1) == 1 && c != '\n')
    {
        answer += c;
    }
    answer = answer.trimmed().toLower();
    return answer == "y" || answer == "yes";
}

void Console::progress(int done, int total, QString const& what)
{
    if (m_isQuiet || !::isatty(STDERR_FILENO) || total <= 0)
    {
        return;
    }
    int const filled = BAR_WIDTH * done / total;
    QByteArray const bar = QByteArray(filled, '#') + QByteArray(BAR_WIDTH - filled, '.');
    writeAll(STDERR_FILENO, "\r\033[K[" + bar + "] " + QByteArray::number(done) + '/' + QByteArray::number(total) +
                                ' ' + oneLine(what).toUtf8());
    m_showsProgress = true;
}

void Console::clearProgress()
{
    if (m_showsProgress)
    {
        writeAll(STDERR_FILENO, "\r\033[K");
        m_showsProgress = false;
    }
}
