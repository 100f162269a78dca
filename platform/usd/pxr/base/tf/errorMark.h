#pragma once

#include <pxr/pxr.h>

#include <cstddef>

PXR_NAMESPACE_OPEN_SCOPE

/// Notices the errors of its thread from here on. Those that nobody clears are printed to the
/// error stream when the outermost mark ends, and where there is no mark at once.
class MARLO_USD_API TfErrorMark
{
public:
    TfErrorMark();
    ~TfErrorMark();
    TfErrorMark(TfErrorMark const&) = delete;
    TfErrorMark& operator=(TfErrorMark const&) = delete;

    bool IsClean() const;

    /// Forgets the errors since the mark.
    /// @return whether there were any
    bool Clear() const;

private:
    std::size_t m_first;
};

PXR_NAMESPACE_CLOSE_SCOPE
