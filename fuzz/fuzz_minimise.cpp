// Chooses a small corpus for a fuzz target: runs every input once, notes the
// code edges it reaches, and keeps the fewest inputs that together reach
// every edge any of them reached (greedy: the input that adds most first,
// the shorter one on a tie). Inputs named by hand (seeds and regressions,
// not a 40-digit hash) are always kept. It is built with the fuzzers'
// coverage but without libFuzzer, and reads the edge counters itself.
//
//   fuzz_minimise <target> <output folder> <input folder>...
#include "FuzzSupport.h"
#include "FuzzTargets.h"
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <vector>

namespace {
std::vector<std::pair<uint8_t *, uint8_t *>> g_counters;

struct Input {
    QString path;
    QByteArray bytes;
    std::vector<uint32_t> edges;
    bool named = false;
};

void clearCounters()
{
    for (auto [start, stop] : g_counters)
        std::memset(start, 0, size_t(stop - start));
}

std::vector<uint32_t> reachedEdges()
{
    std::vector<uint32_t> edges;
    uint32_t base = 0;
    for (auto [start, stop] : g_counters) {
        for (uint8_t *c = start; c < stop; ++c)
            if (*c)
                edges.push_back(base + uint32_t(c - start));
        base += uint32_t(stop - start);
    }
    return edges;
}
} // namespace

extern "C" void __sanitizer_cov_8bit_counters_init(uint8_t *start, uint8_t *stop)
{
    g_counters.emplace_back(start, stop);
}
extern "C" void __sanitizer_cov_pcs_init(const uintptr_t *, const uintptr_t *) {}

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    if (argc < 4) {
        std::fprintf(stderr, "usage: fuzz_minimise <target> <output folder> <input folder>...\n");
        return 2;
    }
    const FuzzTarget *target = findFuzzTarget(argv[1]);
    if (!target) {
        std::fprintf(stderr, "no fuzz target named %s\n", argv[1]);
        return 2;
    }
    setFuzzFailureHandler([](const char *what) { throw std::runtime_error(what); });
    const QRegularExpression hashName(QStringLiteral("^[0-9a-f]{40}$"));

    // What runs once per process (building the target's state) belongs to no input.
    target->run(nullptr, 0);
    uint32_t edgeCount = 0;
    for (auto [start, stop] : g_counters)
        edgeCount += uint32_t(stop - start);

    std::vector<Input> inputs;
    for (int i = 3; i < argc; ++i) {
        const QDir dir(QString::fromLocal8Bit(argv[i]));
        for (const QString &name : dir.entryList(QDir::Files, QDir::Name)) {
            QFile f(dir.filePath(name));
            if (!f.open(QIODevice::ReadOnly))
                continue;
            Input in{dir.filePath(name), f.readAll(), {}, !hashName.match(name).hasMatch()};
            clearCounters();
            try {
                target->run(reinterpret_cast<const uint8_t *>(in.bytes.constData()), size_t(in.bytes.size()));
            } catch (const std::exception &e) {
                std::fprintf(stderr, "left out %s: %s\n", qPrintable(in.path), e.what());
                continue;
            }
            in.edges = reachedEdges();
            inputs.push_back(std::move(in));
        }
    }

    std::vector<bool> covered(edgeCount, false);
    std::vector<const Input *> kept;
    auto take = [&](const Input &in) {
        for (uint32_t e : in.edges)
            covered[e] = true;
        kept.push_back(&in);
    };
    for (const Input &in : inputs)
        if (in.named)
            take(in);
    for (;;) {
        const Input *best = nullptr;
        size_t bestGain = 0;
        for (const Input &in : inputs) {
            if (in.named || std::find(kept.begin(), kept.end(), &in) != kept.end())
                continue;
            const size_t gain = size_t(std::count_if(in.edges.begin(), in.edges.end(), [&](uint32_t e) { return !covered[e]; }));
            if (gain > bestGain || (gain == bestGain && gain > 0 && in.bytes.size() < best->bytes.size())) {
                best = &in;
                bestGain = gain;
            }
        }
        if (!best)
            break;
        take(*best);
    }

    const QDir out(QString::fromLocal8Bit(argv[2]));
    QDir().mkpath(out.path());
    size_t reached = size_t(std::count(covered.begin(), covered.end(), true));
    for (const Input *in : kept)
        QFile::copy(in->path, out.filePath(QFileInfo(in->path).fileName()));
    std::printf("%s: %zu of %zu inputs kept, %zu edges\n", argv[1], kept.size(), inputs.size(), reached);
    return 0;
}
