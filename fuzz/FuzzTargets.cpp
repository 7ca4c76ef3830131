#include "FuzzMultiColor.h"
#include "FuzzParameterSet.h"
#include "FuzzTargets.h"
#include <cstring>

const FuzzTarget kFuzzTargets[] = {
    {"receive", fuzzReceive},
    {"commport_cfg", fuzzCommPortCfg},
    {"commwait_tm", fuzzCommWaitTm},
    {"portmap_cfg", fuzzPortMapCfg},
    {"run_ini", fuzzRunIni},
    {"savedata_ini", fuzzSaveDataIni},
    {"setemail_cfg", fuzzSetEMailCfg},
    {"multicolor_cfg", fuzzMultiColorCfg},
    {"program_cache", fuzzProgramCache},
    {"ptn_recv_opt", fuzzPtnRecvOpt},
    {"id_ini", fuzzIdIni},
    {"history_use", fuzzHistoryUse},
    {"parameterset", fuzzParameterSet},
};
const size_t kFuzzTargetCount = sizeof kFuzzTargets / sizeof kFuzzTargets[0];

const FuzzTarget *findFuzzTarget(const char *name)
{
    for (const FuzzTarget &t : kFuzzTargets)
        if (std::strcmp(t.name, name) == 0)
            return &t;
    return nullptr;
}
