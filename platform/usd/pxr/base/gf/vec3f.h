#pragma once

#include <pxr/pxr.h>

#include <cstddef>

PXR_NAMESPACE_OPEN_SCOPE

class GfVec3f
{
public:
    using ScalarType = float;
    static constexpr std::size_t dimension = 3;

    /// Every component is that value.
    constexpr explicit GfVec3f(float value = 0) : GfVec3f(value, value, value)
    {
    }

    constexpr GfVec3f(float x, float y, float z) : m_data{x, y, z}
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

    bool operator==(GfVec3f const& other) const
    {
        return m_data[0] == other.m_data[0] && m_data[1] == other.m_data[1] && m_data[2] == other.m_data[2];
    }

    bool operator!=(GfVec3f const& other) const
    {
        return !(*this == other);
    }

private:
    float m_data[dimension];
};

PXR_NAMESPACE_CLOSE_SCOPE
