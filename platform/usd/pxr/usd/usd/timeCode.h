#pragma once

#include <pxr/pxr.h>

#include <limits>

PXR_NAMESPACE_OPEN_SCOPE

/// A time in time codes, or the default: what holds where there are no samples.
class UsdTimeCode
{
public:
    constexpr UsdTimeCode(double time = 0.0) : m_time(time)
    {
    }

    static constexpr UsdTimeCode Default()
    {
        return UsdTimeCode(std::numeric_limits<double>::quiet_NaN());
    }

    bool IsDefault() const
    {
        return m_time != m_time;
    }

    double GetValue() const
    {
        return m_time;
    }

private:
    double m_time;
};

PXR_NAMESPACE_CLOSE_SCOPE
