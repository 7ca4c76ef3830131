#include "FuzzTargets.h"
#include <cstring>

const FuzzTarget kFuzzTargets[] = {
    {"receive", fuzzReceive},
    // multicolor_cfg (CFG/MultiColor.CFG): the status board's reader is not written yet.
};
const size_t kFuzzTargetCount = sizeof kFuzzTargets / sizeof kFuzzTargets[0];

const FuzzTarget *findFuzzTarget(const char *name)
{
    for (const FuzzTarget &t : kFuzzTargets)
        if (std::strcmp(t.name, name) == 0)
            return &t;
    return nullptr;
}
