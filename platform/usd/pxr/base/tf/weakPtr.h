#pragma once

#include <pxr/base/tf/refPtr.h>

PXR_NAMESPACE_OPEN_SCOPE

/// Points at a shared object without keeping it.
template <typename T>
class TfWeakPtr
{
public:
    TfWeakPtr() = default;

    TfWeakPtr(TfRefPtr<T> const& object) : m_object(object._Shared())
    {
    }

    /// Not part of the real one.
    explicit TfWeakPtr(std::weak_ptr<T> object) : m_object(std::move(object))
    {
    }

    T* operator->() const
    {
        return m_object.lock().get();
    }

    T& operator*() const
    {
        return *m_object.lock();
    }

    /// Null once the object is gone.
    explicit operator bool() const
    {
        return !m_object.expired();
    }

private:
    std::weak_ptr<T> m_object;
};

PXR_NAMESPACE_CLOSE_SCOPE
