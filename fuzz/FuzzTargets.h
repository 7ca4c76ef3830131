#pragma once
#include <cstddef>
#include <cstdint>

// The fuzz targets: the bytes of the line, and one per file the console
// reads. A file target writes its input as that file in a program folder of
// its own, calls the console's reader and checks what must hold
// (FUZZ_REQUIRE). All return 0.
int fuzzReceive(const uint8_t *data, size_t size);     // bytes from the line, FuzzReceive.h
int fuzzCommPortCfg(const uint8_t *data, size_t size); // CommPort.CFG
int fuzzCommWaitTm(const uint8_t *data, size_t size);  // CommWait.TM
int fuzzPortMapCfg(const uint8_t *data, size_t size);  // PortMap.CFG
int fuzzRunIni(const uint8_t *data, size_t size);      // CFG/Run.INI
int fuzzIdIni(const uint8_t *data, size_t size);       // QM730_ID.INI
int fuzzProgramCache(const uint8_t *data, size_t size); // LastPData_<n>.PD/.SD/.TD
int fuzzPtnRecvOpt(const uint8_t *data, size_t size);  // PTN_Recv.OPT
int fuzzSaveDataIni(const uint8_t *data, size_t size); // CFG/SaveData.INI
int fuzzSetEMailCfg(const uint8_t *data, size_t size); // CFG/SetEMail.CFG
int fuzzHistoryUse(const uint8_t *data, size_t size);  // ActionHistory/H<n>.USE

struct FuzzTarget {
    const char *name; // fuzz_<name> is its program, fuzz/corpus/<name> its corpus
    int (*run)(const uint8_t *data, size_t size);
};
// Every target, in the order of the fuzz programs.
extern const FuzzTarget kFuzzTargets[];
extern const size_t kFuzzTargetCount;
const FuzzTarget *findFuzzTarget(const char *name);
