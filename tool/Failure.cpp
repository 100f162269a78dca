#include "Failure.h"

#include "Host/KORV_Exception.h"

#include <QRegularExpression>
#include <QStringList>

#include <new>

Failure::Failure(ExitStatus status, QString const& text) : m_status(status), m_text(text)
{
}

ExitStatus Failure::status() const
{
    return m_status;
}

QString const& Failure::text() const
{
    return m_text;
}

char const* Failure::what() const noexcept
{
    return "the command ended early";
}

Failure usageError(QString const& text)
{
    return Failure(WrongUsage, text);
}

Failure currentFailure()
{
    try
    {
        throw;
    }
    catch (Failure const& failure)
    {
        return failure;
    }
    catch (KORV_Exception const& error)
    {
        return Failure(Refused, error.message());
    }
    catch (std::bad_alloc const&)
    {
        return Failure(Refused, QStringLiteral("out of memory"));
    }
    catch (std::exception const& error)
    {
        return Failure(Refused, QString::fromUtf8(error.what()));
    }
    catch (...)
    {
        return Failure(Refused, QStringLiteral("an error without a description"));
    }
}

QString oneLine(QString const& text)
{
    static QRegularExpression const lineEnds(QStringLiteral("\\s*[\\r\\n\\x{2028}\\x{2029}]+\\s*"));
    QString line = QString(text).replace(lineEnds, QStringLiteral(" ")).trimmed();
    for (QChar& c : line)
    {
        c = c.category() == QChar::Other_Control ? QChar(QChar::ReplacementCharacter) : c;
    }
    return line;
}

QString quotedList(QStringList const& names)
{
    return names.isEmpty() ? QStringLiteral("none")
                           : QLatin1Char('"') + names.join(QStringLiteral("\", \"")) + QLatin1Char('"');
}
