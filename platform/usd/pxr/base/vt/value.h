#pragma once

#include <pxr/base/gf/vec3d.h>
#include <pxr/base/vt/types.h>

#include <type_traits>
#include <variant>

PXR_NAMESPACE_OPEN_SCOPE

/// A value of any type that attributes hold here, or none.
class VtValue
{
public:
    using Storage = std::variant<std::monostate, int, float, double, TfToken, GfVec2f, GfVec3f, GfVec3d, VtIntArray,
                                 VtTokenArray, VtVec2fArray, VtVec3fArray>;

    VtValue() = default;

    template <typename T, typename = std::enable_if_t<!std::is_same_v<T, VtValue>>>
    explicit VtValue(T const& value) : m_storage(std::in_place_type<T>, value)
    {
    }

    bool IsEmpty() const
    {
        return m_storage.index() == 0;
    }

    template <typename T>
    bool IsHolding() const
    {
        return std::holds_alternative<T>(m_storage);
    }

    template <typename T>
    T const& UncheckedGet() const
    {
        return *std::get_if<T>(&m_storage);
    }

    /// Not part of the real one.
    Storage const& _Storage() const
    {
        return m_storage;
    }

private:
    Storage m_storage;
};

PXR_NAMESPACE_CLOSE_SCOPE
