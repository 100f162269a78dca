#pragma once

#include <pxr/base/tf/token.h>

#include <string>

PXR_NAMESPACE_OPEN_SCOPE

/// Where a prim is: identifiers between slashes, from the top ("/a/b") or from somewhere ("b/c").
class MARLO_USD_API SdfPath
{
public:
    SdfPath() = default;

    /// Empty, and an error, for a text that is no path of prims.
    explicit SdfPath(std::string const& path);

    /// The top: "/".
    static SdfPath const& AbsoluteRootPath();

    /// Letters, digits and "_", no digit first. The real one takes letters beyond ASCII from its
    /// release 24.03 on.
    static bool IsValidIdentifier(std::string const& name);

    bool IsEmpty() const
    {
        return m_text.empty();
    }

    bool IsAbsolutePath() const
    {
        return !IsEmpty() && m_text[0] == '/';
    }

    std::string const& GetString() const
    {
        return m_text;
    }

    /// The last identifier.
    std::string GetName() const;

    /// The top has no parent: empty.
    SdfPath GetParentPath() const;

    /// Empty, and an error, when either is empty or the suffix is absolute.
    SdfPath AppendPath(SdfPath const& suffix) const;

    /// Empty, and an error, when the name is no identifier.
    SdfPath AppendChild(TfToken const& name) const;

    bool operator==(SdfPath const& other) const
    {
        return m_text == other.m_text;
    }

    bool operator!=(SdfPath const& other) const
    {
        return !(*this == other);
    }

    bool operator<(SdfPath const& other) const
    {
        return m_text < other.m_text;
    }

private:
    std::string m_text;
};

PXR_NAMESPACE_CLOSE_SCOPE
