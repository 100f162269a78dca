#pragma once

#include "Host/AnmParameter.h"

#include <utility>
#include <vector>

namespace Anm
{

/// The reference host keeps one set of keys for all views.
template <typename T>
struct Parameter<T>::Data
{
    T staticValue{};
    std::vector<std::pair<double, T>> keys;
};

}
