#pragma once
#include <QByteArray>
#include <QString>
#include <cstddef>
#include <cstdint>

// What every fuzz target shares: a program folder of its own in a temporary
// folder, the input written as one of the console's files, and the check that
// turns a broken property into a finding.

// A program folder for one target, created on first use inside this
// process's temporary folder (in /dev/shm when there is one; removed when the
// process ends).
QString fuzzHome(const char *target);

// Writes the input as the file at a path relative to the program folder,
// replacing what was there.
void writeFuzzFile(const QString &home, const QString &relative, const uint8_t *data, size_t size);
QByteArray readFuzzFile(const QString &home, const QString &relative);

// The line breaks (CR or LF) in the input: a line reader can find no more
// lines than these plus one.
inline int lineBreaks(const uint8_t *data, size_t size)
{
    int n = 0;
    for (size_t i = 0; i < size; ++i)
        n += data[i] == '\n' || data[i] == '\r';
    return n;
}

// A value read from one line never holds a line break.
inline bool hasLineBreak(const QString &text)
{
    return text.contains(u'\n') || text.contains(u'\r');
}

// A property that must hold for every input. A broken one is reported to the
// failure handler: by default it prints the property and aborts, so libFuzzer
// keeps the input; the corpus replay installs one that throws instead.
using FuzzFailureHandler = void (*)(const char *what);
void setFuzzFailureHandler(FuzzFailureHandler handler);
[[noreturn]] void fuzzFailed(const char *what);
#define FUZZ_STR2(x) #x
#define FUZZ_STR(x) FUZZ_STR2(x)
#define FUZZ_REQUIRE(cond)                                                                                   \
    do {                                                                                                     \
        if (!(cond))                                                                                         \
            fuzzFailed(__FILE__ ":" FUZZ_STR(__LINE__) ": " #cond);                                          \
    } while (0)
