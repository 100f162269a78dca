#pragma once

/// Marks what the numerical library exports.
#define MARLO_MTX_API __attribute__((visibility("default")))
