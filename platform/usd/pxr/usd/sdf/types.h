#pragma once

#include <pxr/base/tf/token.h>

#include <cstddef>

PXR_NAMESPACE_OPEN_SCOPE

enum SdfSpecifier
{
    /// There is something here.
    SdfSpecifierDef,

    /// Says more about what is defined elsewhere; nothing by itself.
    SdfSpecifierOver,
    SdfSpecifierClass
};

enum SdfVariability
{
    SdfVariabilityVarying,

    /// Never over time.
    SdfVariabilityUniform
};

/// The type of an attribute, such as "point3f[]": what it holds, and what that means.
class MARLO_USD_API SdfValueTypeName
{
public:
    SdfValueTypeName() = default;

    TfToken GetAsToken() const;

    bool operator==(SdfValueTypeName const& other) const
    {
        return m_text == other.m_text;
    }

    explicit operator bool() const
    {
        return m_text != nullptr;
    }

    /// Not part of the real one.
    /// @param text lives forever
    /// @param holding index in VtValue::Storage
    constexpr SdfValueTypeName(char const* text, std::size_t holding) : m_text(text), m_holding(holding)
    {
    }

    char const* _Text() const
    {
        return m_text;
    }

    std::size_t _Holding() const
    {
        return m_holding;
    }

private:
    char const* m_text = nullptr;
    std::size_t m_holding = 0;
};

/// The types in use.
struct SdfValueTypeNamesType
{
    SdfValueTypeName Float, Token, Float2, Float3, Double3, IntArray, TokenArray, TexCoord2fArray, Float3Array,
        Point3fArray;
};

/// Stands for the real one's static object of that name.
class MARLO_USD_API Sdf_ValueTypeNames
{
public:
    SdfValueTypeNamesType const* operator->() const;
};

extern MARLO_USD_API Sdf_ValueTypeNames const SdfValueTypeNames;

PXR_NAMESPACE_CLOSE_SCOPE
