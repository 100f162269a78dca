#pragma once
// The host's errors. All carry words for the user; source file and line are for
// the log.

#include "Host/HostApi.h"

#include <QString>

#include <exception>
#include <string>

class MARLO_HOST_API KORV_Exception : public std::exception
{
public:
    ~KORV_Exception() override;

    /// The words for the user, as UTF-8.
    char const* what() const noexcept override;

    QString const& message() const;

    /// Where or in which function it failed; may be empty.
    QString const& detail() const;

    std::string const& sourceFile() const;
    int sourceLine() const;

protected:
    KORV_Exception(std::string const& file, int line, QString const& message, QString const& detail);

private:
    std::string m_file;
    int m_line;
    QString m_message;
    QString m_detail;
    std::string m_what;
};

/// An invalid format name, an unknown format.
class MARLO_HOST_API KORV_BadArgument : public KORV_Exception
{
public:
    KORV_BadArgument(std::string const& file, int line, QString const& message, QString const& detail);
    ~KORV_BadArgument() override;
};

/// A file that can't be read as what it should be.
class MARLO_HOST_API KORV_BadFile : public KORV_Exception
{
public:
    KORV_BadFile(std::string const& file, int line, QString const& message, QString const& detail);
    ~KORV_BadFile() override;
};

/// An impossible state.
class MARLO_HOST_API KORV_AssertionFailed : public KORV_Exception
{
public:
    KORV_AssertionFailed(std::string const& file, int line, QString const& message, QString const& detail);
    ~KORV_AssertionFailed() override;
};

/// A failure in somebody else's library.
class MARLO_HOST_API KORV_ExternalException : public KORV_Exception
{
public:
    KORV_ExternalException(std::string const& file, int line, QString const& message, QString const& detail);
    ~KORV_ExternalException() override;
};

/// A failure at run time with words for the user: message() is `what`, and
/// title() a heading for a dialog.
class MARLO_HOST_API KORV_OperationFailed : public KORV_Exception
{
public:
    KORV_OperationFailed(std::string const& file, int line, QString const& title, QString const& what,
                         QString const& detail);
    ~KORV_OperationFailed() override;

    QString const& title() const;

private:
    QString m_title;
};
