#pragma once
// Short ways to raise the host's errors. `file` is the library's own name of the
// source, such as "ExportFunctions".

#include "Core/ExportApi.h"

#include <QString>

#include <string>

namespace Export
{

/// Raises KORV_OperationFailed titled "Operation failed", with the function as detail.
[[noreturn]] MARLO_EXPORT_API void throwOperationFailed(std::string const& file, int line, QString const& function,
                                                        QString const& message);

[[noreturn]] MARLO_EXPORT_API void throwBadArgument(QString const& message);
[[noreturn]] MARLO_EXPORT_API void throwAssertionFailed(QString const& message);
[[noreturn]] MARLO_EXPORT_API void throwBadFile(std::string const& file, int line, QString const& what,
                                                QString const& message);
[[noreturn]] MARLO_EXPORT_API void throwExternalException(std::string const& file, int line, QString const& what,
                                                          QString const& message);

}
