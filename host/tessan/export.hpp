#pragma once

/// Marks what the library tessan shows to those that link it; everything else stays hidden.
#define TESSAN_EXPORT __attribute__((visibility("default")))
