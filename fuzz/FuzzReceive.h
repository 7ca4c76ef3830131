#pragma once
#include <cstddef>
#include <cstdint>

// Feeds one fuzz input to the receive path and the dispatch of a fresh link:
// byte 0 picks the protocol, byte 1 the state, byte 2 the firmware, and the
// rest arrives in pieces, each led by its length. Aborts when the receive
// buffer grows past any reply the link can wait for.
int fuzzReceive(const uint8_t *data, size_t size);
