#pragma once

#include <pxr/pxr.h>

#include <cstddef>

PXR_NAMESPACE_OPEN_SCOPE

class GfVec3d
{
public:
    using ScalarType = double;
    static constexpr std::size_t dimension = 3;

    /// Every component is that value.
    constexpr explicit GfVec3d(double value = 0) : GfVec3d(value, value, value)
    {
    }

    constexpr GfVec3d(double x, double y, double z) : m_data{x, y, z}
    {
    }

    double const& operator[](std::size_t index) const
    {
        return m_data[index];
    }

    double& operator[](std::size_t index)
    {
        return m_data[index];
    }

    bool operator==(GfVec3d const& other) const
    {
        return m_data[0] == other.m_data[0] && m_data[1] == other.m_data[1] && m_data[2] == other.m_data[2];
    }

    bool operator!=(GfVec3d const& other) const
    {
        return !(*this == other);
    }

private:
    double m_data[dimension];
};

PXR_NAMESPACE_CLOSE_SCOPE
