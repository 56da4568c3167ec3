#pragma once

/// Marks what the library sorvik shows to those that link it; everything else stays hidden.
#define SORVIK_EXPORT __attribute__((visibility("default")))
