#include "Parameter.h"

#include <QByteArray>

namespace Anm
{

template <typename T>
Parameter<T>::Parameter(std::unique_ptr<Data> data) : m_data(std::move(data))
{
}

template <typename T>
Parameter<T>::Parameter(Parameter const& other) : m_data(std::make_unique<Data>(*other.m_data))
{
}

template <typename T>
Parameter<T>& Parameter<T>::operator=(Parameter const& other)
{
    *m_data = *other.m_data;
    return *this;
}

template <typename T>
Parameter<T>::~Parameter() = default;

template <typename T>
T Parameter<T>::value(View const& view) const
{
    return m_data->keys.empty() ? staticValue(view) : m_data->keys.front().second;
}

template <typename T>
T Parameter<T>::staticValue(View const&) const
{
    return m_data->staticValue;
}

template <typename T>
unsigned int Parameter<T>::keyframeCount(View const&) const
{
    return static_cast<unsigned int>(m_data->keys.size());
}

template <typename T>
T Parameter<T>::keyframeValue(unsigned int index, View const&) const
{
    return m_data->keys.at(index).second;
}

template <typename T>
Time Parameter<T>::keyframeTime(unsigned int index, View const&) const
{
    return Time::fromDouble(m_data->keys.at(index).first);
}

template class Parameter<bool>;
template class Parameter<float>;
template class Parameter<double>;
template class Parameter<unsigned int>;
template class Parameter<QByteArray>;

}
