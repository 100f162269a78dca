#include "Host/KORV_Exception.h"

KORV_Exception::KORV_Exception(std::string const& file, int line, QString const& message, QString const& detail)
    : m_file(file), m_line(line), m_message(message), m_detail(detail), m_what(message.toStdString())
{
}

KORV_Exception::~KORV_Exception() = default;

char const* KORV_Exception::what() const noexcept
{
    return m_what.c_str();
}

QString const& KORV_Exception::message() const
{
    return m_message;
}

QString const& KORV_Exception::detail() const
{
    return m_detail;
}

std::string const& KORV_Exception::sourceFile() const
{
    return m_file;
}

int KORV_Exception::sourceLine() const
{
    return m_line;
}

KORV_BadArgument::KORV_BadArgument(std::string const& file, int line, QString const& message, QString const& detail)
    : KORV_Exception(file, line, message, detail)
{
}

KORV_BadArgument::~KORV_BadArgument() = default;

KORV_BadFile::KORV_BadFile(std::string const& file, int line, QString const& message, QString const& detail)
    : KORV_Exception(file, line, message, detail)
{
}

KORV_BadFile::~KORV_BadFile() = default;

KORV_AssertionFailed::KORV_AssertionFailed(std::string const& file, int line, QString const& message,
                                           QString const& detail)
    : KORV_Exception(file, line, message, detail)
{
}

KORV_AssertionFailed::~KORV_AssertionFailed() = default;

KORV_ExternalException::KORV_ExternalException(std::string const& file, int line, QString const& message,
                                               QString const& detail)
    : KORV_Exception(file, line, message, detail)
{
}

KORV_ExternalException::~KORV_ExternalException() = default;

KORV_OperationFailed::KORV_OperationFailed(std::string const& file, int line, QString const& title, QString const& what,
                                           QString const& detail)
    : KORV_Exception(file, line, what, detail), m_title(title)
{
}

KORV_OperationFailed::~KORV_OperationFailed() = default;

QString const& KORV_OperationFailed::title() const
{
    return m_title;
}
