#include "Diagnostics.h"

#include <pxr/base/tf/errorMark.h>

#include <cstdio>
#include <vector>

PXR_NAMESPACE_OPEN_SCOPE

namespace
{

thread_local int s_marks = 0;
thread_local std::vector<std::string> s_errors;

void print(std::string const& message)
{
    std::fprintf(stderr, "USD: %s\n", message.c_str());
}

}

void Tf_PostError(std::string const& message)
{
    if (s_marks > 0)
    {
        s_errors.push_back(message);
    }
    else
    {
        print(message);
    }
}

TfErrorMark::TfErrorMark() : m_first(s_errors.size())
{
    ++s_marks;
}

TfErrorMark::~TfErrorMark()
{
    if (--s_marks > 0)
    {
        return;
    }
    for (std::string const& error : s_errors)
    {
        print(error);
    }
    s_errors.clear();
}

bool TfErrorMark::IsClean() const
{
    return s_errors.size() <= m_first;
}

bool TfErrorMark::Clear() const
{
    bool const hadErrors = !IsClean();
    if (hadErrors)
    {
        s_errors.resize(m_first);
    }
    return hadErrors;
}

PXR_NAMESPACE_CLOSE_SCOPE
