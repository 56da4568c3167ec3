#pragma once

/// Marks what the library palune shows to those that link it; everything else stays hidden.
#define PALUNE_EXPORT __attribute__((visibility("default")))
