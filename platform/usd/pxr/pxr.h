#pragma once
// A small stage under OpenUSD's own header paths, names and signatures: what the exporters use,
// and no more. It stands in where no OpenUSD is installed; code that uses it compiles
// against the real one as well.

/// Marks what this library exports.
#define MARLO_USD_API __attribute__((visibility("default")))

#define PXR_NS pxr
#define PXR_NAMESPACE_OPEN_SCOPE                                                                                       \
    namespace pxr                                                                                                      \
    {
#define PXR_NAMESPACE_CLOSE_SCOPE }
#define PXR_NAMESPACE_USING_DIRECTIVE using namespace PXR_NS;

PXR_NAMESPACE_OPEN_SCOPE
PXR_NAMESPACE_CLOSE_SCOPE
