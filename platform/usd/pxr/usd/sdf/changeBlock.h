#pragma once

#include <pxr/pxr.h>

PXR_NAMESPACE_OPEN_SCOPE

/// While one is open in a thread, stages don't notice what changes in layers: new prims can't be
/// got from a stage until the outermost one closes.
class MARLO_USD_API SdfChangeBlock
{
public:
    SdfChangeBlock();
    ~SdfChangeBlock();
    SdfChangeBlock(SdfChangeBlock const&) = delete;
    SdfChangeBlock& operator=(SdfChangeBlock const&) = delete;
};

PXR_NAMESPACE_CLOSE_SCOPE
