#pragma once

#include <pxr/pxr.h>

#include <memory>

PXR_NAMESPACE_OPEN_SCOPE

/// Shares an object.
template <typename T>
class TfRefPtr
{
public:
    TfRefPtr() = default;

    explicit TfRefPtr(std::shared_ptr<T> object) : m_object(std::move(object))
    {
    }

    T* operator->() const
    {
        return m_object.get();
    }

    T& operator*() const
    {
        return *m_object;
    }

    explicit operator bool() const
    {
        return m_object != nullptr;
    }

    /// Not part of the real one.
    std::shared_ptr<T> const& _Shared() const
    {
        return m_object;
    }

private:
    std::shared_ptr<T> m_object;
};

PXR_NAMESPACE_CLOSE_SCOPE
