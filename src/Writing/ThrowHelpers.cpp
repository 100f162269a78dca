#include "Writing/ThrowHelpers.h"

#include "Host/KORV_Exception.h"

namespace Export
{

void throwOperationFailed(std::string const& file, int line, QString const& function, QString const& message)
{
    throw KORV_OperationFailed(file, line, QStringLiteral("Operation failed"), message, function);
}

void throwBadArgument(QString const& message)
{
    throw KORV_BadArgument(std::string(), 0, message, QString());
}

void throwAssertionFailed(QString const& message)
{
    throw KORV_AssertionFailed(std::string(), 0, message, QString());
}

void throwBadFile(std::string const& file, int line, QString const& what, QString const& message)
{
    throw KORV_BadFile(file, line, what, message);
}

void throwExternalException(std::string const& file, int line, QString const& what, QString const& message)
{
    throw KORV_ExternalException(file, line, what, message);
}

}
