#include <pxr/usd/sdf/path.h>

#include "Diagnostics.h"

#include <algorithm>

PXR_NAMESPACE_OPEN_SCOPE

namespace
{

bool isLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool isIdentifier(char const* begin, char const* end)
{
    return begin != end && isLetter(*begin) &&
           std::all_of(begin, end, [](char c) { return isLetter(c) || isDigit(c); });
}

bool isPathOfPrims(std::string const& path)
{
    char const* at = path.data();
    char const* const end = at + path.size();
    if (at != end && *at == '/')
    {
        ++at;
        if (at == end)
        {
            return true;
        }
    }
    for (;;)
    {
        char const* const slash = std::find(at, end, '/');
        if (!isIdentifier(at, slash))
        {
            return false;
        }
        if (slash == end)
        {
            return true;
        }
        at = slash + 1;
    }
}

}

TfToken::TfToken(std::string const& text) : m_text(text.empty() ? nullptr : std::make_shared<std::string const>(text))
{
}

TfToken::TfToken(char const* text) : TfToken(std::string(text))
{
}

std::string const& TfToken::GetString() const
{
    static std::string const empty;
    return m_text ? *m_text : empty;
}

SdfPath::SdfPath(std::string const& path)
{
    if (isPathOfPrims(path))
    {
        m_text = path;
    }
    else
    {
        Tf_PostError("Ill-formed SdfPath <" + path + ">");
    }
}

SdfPath const& SdfPath::AbsoluteRootPath()
{
    static SdfPath const root("/");
    return root;
}

bool SdfPath::IsValidIdentifier(std::string const& name)
{
    return isIdentifier(name.data(), name.data() + name.size());
}

std::string SdfPath::GetName() const
{
    return m_text.substr(m_text.rfind('/') + 1);
}

SdfPath SdfPath::GetParentPath() const
{
    SdfPath parent;
    std::size_t const slash = m_text.rfind('/');
    if (slash != std::string::npos && m_text.size() > 1)
    {
        parent.m_text = slash == 0 ? "/" : m_text.substr(0, slash);
    }
    return parent;
}

SdfPath SdfPath::AppendPath(SdfPath const& suffix) const
{
    if (IsEmpty() || suffix.IsEmpty() || suffix.IsAbsolutePath())
    {
        Tf_PostError("Cannot append <" + suffix.m_text + "> to <" + m_text + ">");
        return SdfPath();
    }
    SdfPath path;
    path.m_text.reserve(m_text.size() + 1 + suffix.m_text.size());
    path.m_text = m_text;
    if (*this != AbsoluteRootPath())
    {
        path.m_text += '/';
    }
    path.m_text += suffix.m_text;
    return path;
}

SdfPath SdfPath::AppendChild(TfToken const& name) const
{
    if (!IsValidIdentifier(name.GetString()))
    {
        Tf_PostError("Invalid prim name '" + name.GetString() + "'");
        return SdfPath();
    }
    return AppendPath(SdfPath(name.GetString()));
}

PXR_NAMESPACE_CLOSE_SCOPE
