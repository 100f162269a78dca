#pragma once

/// Marks what the scene model of matchmove projects exports.
#define KESTRELIA_API __attribute__((visibility("default")))
