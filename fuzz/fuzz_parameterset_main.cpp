// libFuzzer entry for the reader of a parameter file set.
#include "FuzzParameterSet.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    return fuzzParameterSet(data, size);
}
