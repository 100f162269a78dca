#pragma once

/// Marks what the export library offers to programs that link it.
#define MARLO_EXPORT_API __attribute__((visibility("default")))
