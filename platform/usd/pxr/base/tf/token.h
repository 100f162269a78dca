#pragma once

#include <pxr/pxr.h>

#include <memory>
#include <string>
#include <vector>

PXR_NAMESPACE_OPEN_SCOPE

/// A word that is copied often.
class MARLO_USD_API TfToken
{
public:
    TfToken() = default;
    explicit TfToken(std::string const& text);
    explicit TfToken(char const* text);

    std::string const& GetString() const;

    char const* GetText() const
    {
        return GetString().c_str();
    }

    bool IsEmpty() const
    {
        return !m_text;
    }

    bool operator==(TfToken const& other) const
    {
        return m_text == other.m_text || GetString() == other.GetString();
    }

    bool operator!=(TfToken const& other) const
    {
        return !(*this == other);
    }

private:
    /// Null for the empty word.
    std::shared_ptr<std::string const> m_text;
};

using TfTokenVector = std::vector<TfToken>;

PXR_NAMESPACE_CLOSE_SCOPE
