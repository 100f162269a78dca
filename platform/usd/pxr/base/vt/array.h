#pragma once

#include <pxr/pxr.h>

#include <cstddef>
#include <initializer_list>
#include <memory>
#include <vector>

PXR_NAMESPACE_OPEN_SCOPE

/// A list whose copies share their memory until one of them changes.
template <typename T>
class VtArray
{
public:
    using value_type = T;
    using const_iterator = T const*;

    VtArray() = default;

    explicit VtArray(std::size_t count) : m_values(std::make_shared<std::vector<T>>(count))
    {
    }

    VtArray(std::initializer_list<T> values) : m_values(std::make_shared<std::vector<T>>(values))
    {
    }

    std::size_t size() const
    {
        return m_values ? m_values->size() : 0;
    }

    bool empty() const
    {
        return size() == 0;
    }

    void reserve(std::size_t count)
    {
        own().reserve(count);
    }

    void push_back(T const& value)
    {
        own().push_back(value);
    }

    T const* cdata() const
    {
        return m_values ? m_values->data() : nullptr;
    }

    T const& operator[](std::size_t index) const
    {
        return (*m_values)[index];
    }

    T& operator[](std::size_t index)
    {
        return own()[index];
    }

    const_iterator begin() const
    {
        return cdata();
    }

    const_iterator end() const
    {
        return cdata() + size();
    }

    bool operator==(VtArray const& other) const
    {
        return size() == other.size() && (empty() || *m_values == *other.m_values);
    }

private:
    std::vector<T>& own()
    {
        if (!m_values)
        {
            m_values = std::make_shared<std::vector<T>>();
        }
        else if (m_values.use_count() > 1)
        {
            m_values = std::make_shared<std::vector<T>>(*m_values);
        }
        return *m_values;
    }

    /// Null for an empty list.
    std::shared_ptr<std::vector<T>> m_values;
};

PXR_NAMESPACE_CLOSE_SCOPE
