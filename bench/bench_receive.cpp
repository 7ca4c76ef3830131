// CPU cost of the receive path: a 76814-byte screen reply arriving in 64-byte
// pieces, from the port event through the scan to the stored bitmap. Run it at
// several sizes to see the cost grow with the bytes, not with their square.
#include "CommLink.h"
#include "ConsoleState.h"
#include "FakeCommPort.h"
#include <QCoreApplication>
#include <QTemporaryDir>
#include <QTextStream>
#include <ctime>

namespace {
double cpuMs()
{
    timespec ts{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &ts);
    return ts.tv_sec * 1000.0 + ts.tv_nsec / 1e6;
}

// Feeds one frame of `pixels` data bytes of an RCS-shaped reply in 64-byte
// pieces; returns the CPU milliseconds of the whole receive path.
double receiveOnce(int pixels, bool complete, bool *stored)
{
    QTemporaryDir dir;
    ConsoleState state(dir.path());
    QVector<MachineSlot> slotList(1);
    slotList[0].MachineNumber = 1;
    state.setMachines(slotList);
    FakeCommPort port;
    CommLink link(state, port);
    port.open(QStringLiteral("bench"), QStringLiteral("115200,N,8,1"));
    state.CmdState = 11;
    state.RxSettleMs = 0; // the screen capture takes every piece at once
    QByteArray frame = "\x02" "001RCS,OK," + QByteArray(pixels, '\x5A') + "\x03\r\n";
    if (!complete) // without its end the scan keeps waiting for more
        frame.chop(3);
    const double start = cpuMs();
    for (qsizetype at = 0; at < frame.size(); at += 64)
        port.feed(frame.mid(at, 64));
    const double used = cpuMs() - start;
    *stored = state.CmdState == 1;
    return used;
}
} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    bool stored = false;
    receiveOnce(76800, true, &stored); // warm up
    double best = 1e9;
    for (int i = 0; i < 5; ++i)
        best = std::min(best, receiveOnce(76800, true, &stored));
    out << "screen reply, 76814 bytes in 64-byte pieces: " << QString::number(best, 'f', 2)
        << " ms CPU (best of 5), frame " << (stored ? "stored" : "NOT stored") << "\n";
    const bool ok = stored;
    bool unused = false;
    for (int size : {19200, 38400, 76800}) {
        double t = 1e9;
        for (int i = 0; i < 5; ++i)
            t = std::min(t, receiveOnce(size, false, &unused));
        out << "  unfinished reply of " << size + 11 << " bytes: " << QString::number(t, 'f', 2) << " ms CPU\n";
    }
    return ok ? 0 : 1;
}
