#pragma once

#include <pxr/pxr.h>

#include <cstddef>

PXR_NAMESPACE_OPEN_SCOPE

class GfVec2f
{
public:
    using ScalarType = float;
    static constexpr std::size_t dimension = 2;

    /// Every component is that value.
    constexpr explicit GfVec2f(float value = 0) : GfVec2f(value, value)
    {
    }

    constexpr GfVec2f(float x, float y) : m_data{x, y}
    {
    }

    float const& operator[](std::size_t index) const
    {
        return m_data[index];
    }

    float& operator[](std::size_t index)
    {
        return m_data[index];
    }

    bool operator==(GfVec2f const& other) const
    {
        return m_data[0] == other.m_data[0] && m_data[1] == other.m_data[1];
    }

    bool operator!=(GfVec2f const& other) const
    {
        return !(*this == other);
    }

private:
    float m_data[dimension];
};

PXR_NAMESPACE_CLOSE_SCOPE
