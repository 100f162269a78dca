#pragma once

/// Marks what the host library exports. A replacement host is built with the
/// same headers, so the mark is the same on both sides of the seam.
#define MARLO_HOST_API __attribute__((visibility("default")))
