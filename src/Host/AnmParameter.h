#pragma once

#include "Host/Anm.h"

#include <memory>

namespace Anm
{

/// A value that may be keyed over time, per view. T is bool, float, double,
/// unsigned int or QByteArray. Keys ascend in time.
template <typename T>
class MARLO_HOST_API Parameter
{
public:
    struct Data;

    explicit Parameter(std::unique_ptr<Data> data);
    Parameter(Parameter const& other);
    Parameter& operator=(Parameter const& other);
    ~Parameter();

    /// The value at the first key, or the static value where there is no key.
    T value(View const& view) const;
    T staticValue(View const& view) const;

    unsigned int keyframeCount(View const& view) const;
    T keyframeValue(unsigned int index, View const& view) const;
    Time keyframeTime(unsigned int index, View const& view) const;

private:
    std::unique_ptr<Data> m_data;
};

}
