#pragma once
// Short ways to raise the host's errors. `file` is the library's own name of the
// source, such as "ExportFunctions".

#include <QString>

#include <string>

namespace Export
{

/// Raises KORV_OperationFailed titled "Operation failed", with the function as detail.
[[noreturn]] void throwOperationFailed(std::string const& file, int line, QString const& function,
                                       QString const& message);

[[noreturn]] void throwBadArgument(QString const& message);
[[noreturn]] void throwAssertionFailed(QString const& message);
[[noreturn]] void throwBadFile(std::string const& file, int line, QString const& what, QString const& message);
[[noreturn]] void throwExternalException(std::string const& file, int line, QString const& what,
                                         QString const& message);

}
