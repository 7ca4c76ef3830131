// libFuzzer entry of one target, chosen when the program is built
// (QM730_FUZZ_TARGET, a name of kFuzzTargets).
#include "FuzzTargets.h"
#include <QCoreApplication>
#include <cstdio>
#include <cstdlib>

namespace {
const FuzzTarget *g_target = nullptr;
}

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    static QCoreApplication app(*argc, *argv);
    g_target = findFuzzTarget(QM730_FUZZ_TARGET);
    if (!g_target) {
        std::fprintf(stderr, "no fuzz target named %s\n", QM730_FUZZ_TARGET);
        std::exit(2);
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    return g_target->run(data, size);
}
