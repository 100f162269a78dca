#pragma once
// The one rule for values that a target program can't read: NaN, infinities and
// subnormals are never written. Exporters leave out what holds one (a row, a key, a
// point) and count it; formats whose rows stand for frames hold the value before.

#include "Core/ExportApi.h"

#include <algorithm>

namespace Export
{

/// Whether a target program can read the value: a normal number or zero.
MARLO_EXPORT_API bool isWritable(double value);

/// Whether it can read all of them.
template <typename Values>
bool areWritable(Values const& values)
{
    return std::all_of(std::begin(values), std::end(values),
                       [](auto value) { return isWritable(static_cast<double>(value)); });
}

}
