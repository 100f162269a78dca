#pragma once
// What the vectors have in common. Not part of the real library.

#include <pxr/pxr.h>

#include <cstddef>
#include <type_traits>

PXR_NAMESPACE_OPEN_SCOPE

template <typename Scalar, std::size_t Size>
class Gf_Vec
{
public:
    using ScalarType = Scalar;
    static constexpr std::size_t dimension = Size;

    /// Every component is that value.
    constexpr explicit Gf_Vec(Scalar value = 0) : m_data{}
    {
        for (Scalar& component : m_data)
        {
            component = value;
        }
    }

    template <typename... Rest, typename = std::enable_if_t<sizeof...(Rest) + 2 == Size>>
    constexpr Gf_Vec(Scalar first, Scalar second, Rest... rest) : m_data{first, second, static_cast<Scalar>(rest)...}
    {
    }

    Scalar const& operator[](std::size_t index) const
    {
        return m_data[index];
    }

    Scalar& operator[](std::size_t index)
    {
        return m_data[index];
    }

    bool operator==(Gf_Vec const& other) const
    {
        bool areEqual = true;
        for (std::size_t i = 0; i < Size; ++i)
        {
            areEqual = areEqual && m_data[i] == other.m_data[i];
        }
        return areEqual;
    }

    bool operator!=(Gf_Vec const& other) const
    {
        return !(*this == other);
    }

private:
    Scalar m_data[Size];
};

PXR_NAMESPACE_CLOSE_SCOPE
