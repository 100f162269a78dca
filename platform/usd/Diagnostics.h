#pragma once

#include <pxr/pxr.h>

#include <string>

PXR_NAMESPACE_OPEN_SCOPE

/// An error of the calling code. See TfErrorMark for what becomes of it.
void Tf_PostError(std::string const& message);

PXR_NAMESPACE_CLOSE_SCOPE
