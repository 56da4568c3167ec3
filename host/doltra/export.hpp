#pragma once

/// Marks what the library doltra shows to those that link it; everything else stays hidden.
#define DOLTRA_EXPORT __attribute__((visibility("default")))
