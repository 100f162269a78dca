#pragma once

#include <pxr/base/tf/token.h>

PXR_NAMESPACE_OPEN_SCOPE

class UsdSchemaRegistry
{
public:
    /// The word that a prim of that type has for its type.
    template <typename Schema>
    static TfToken GetSchemaTypeName()
    {
        return TfToken(Schema::_TypeName());
    }
};

PXR_NAMESPACE_CLOSE_SCOPE
