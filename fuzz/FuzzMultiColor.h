#pragma once
#include <cstddef>
#include <cstdint>

// Reads one fuzz input as the bytes of CFG/MultiColor.CFG. Aborts when an
// entry falls outside the colour range, when there are more entries than the
// board can use, or when the colours read do not come back the same after
// being written out and read again.
int fuzzMultiColorCfg(const uint8_t *data, size_t size);
