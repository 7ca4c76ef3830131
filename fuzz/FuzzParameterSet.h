#pragma once
#include <cstddef>
#include <cstdint>

// Feeds one fuzz input to the reader of a parameter file set and, when the
// set is taken, to its loading into an image and to the read-back check:
// byte 0 picks the machine's firmware, byte 1 the link settings, and the rest
// is split at each record separator (0x1E) into the four files (.UUP, .UTD, .UPD, .USD;
// missing ones empty). Aborts when a set that was taken does not save and
// read back as the same tables.
int fuzzParameterSet(const uint8_t *data, size_t size);
