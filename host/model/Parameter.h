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

namespace MarloHost
{

/// A parameter without keys.
template <typename T>
Anm::Parameter<T> unkeyed(T value)
{
    return Anm::Parameter<T>(
        std::make_unique<typename Anm::Parameter<T>::Data>(typename Anm::Parameter<T>::Data{value, {}}));
}

}
