#include "Core/PresetJsonException.h"

namespace Export
{

namespace
{

/// The library numbers its own errors from 101 on.
constexpr int NOT_THE_LIBRARYS = 0;

}

CustomJsonException::CustomJsonException(std::string const& what)
    : nlohmann::json::exception(NOT_THE_LIBRARYS, what.c_str())
{
}

CustomJsonException::~CustomJsonException() = default;

}
