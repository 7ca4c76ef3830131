#include "FuzzReceive.h"
#include "CommLink.h"
#include "ConsoleState.h"
#include "FakeCommPort.h"
#include <QDir>
#include <cstdlib>

namespace {
const int kStates[] = {1, 2, 3, 4, 10, 11, 51, 52, 53, 54, 61, 62, 91, 92, 93, 94, 101, 102, 103, 104, 150,
                       151, 152, 153, 154, 201, 202, 203, 204, 205, 211, 212, 311, 312, 321, 328, 400, 401,
                       5, 7, 77, 8, 9, 9001, 9010, 1511, 1515, 5101, 5105, 5199, 5200, 5201, 5210};
const double kFirmware[] = {2.31, 2.2, 2.19, 2.09, 1.81, 1.5};
const char *const kProtocols[] = {"PC Link", "PC Link + crc", "Modbus RTU"};
} // namespace

int fuzzReceive(const uint8_t *data, size_t size)
{
    if (size < 3)
        return 0;
    ConsoleState state(QDir::tempPath() + QStringLiteral("/qm730-fuzz"));
    QVector<MachineSlot> slotList(2);
    slotList[0].MachineNumber = 1;
    slotList[1].MachineNumber = 2;
    state.setMachines(slotList);
    state.CommProtocol = QLatin1String(kProtocols[data[0] % 3]);
    state.CurrentMachine = 1;
    state.bulkJob = (data[0] & 4) ? BulkJob::ProgramFetch : BulkJob::ParameterReceive;
    state.BulkWithPrograms = data[0] & 8;
    state.image.applyFirmware(kFirmware[data[2] % 6]);
    FakeCommPort port;
    CommLink link(state, port);
    port.open(QStringLiteral("fuzz"), QStringLiteral("115200,N,8,1"));
    state.CmdState = kStates[data[1] % (sizeof kStates / sizeof kStates[0])];
    state.PatternNo = 1 + data[2] % 120;
    state.SegmentNo = 1 + data[1] % 101;
    state.SegmentCount = data[2] % 102;
    state.CmdIndex = data[1] % 320;
    state.CmdIndexEnd = data[2] % 320;
    port.setReceiveThreshold(state.Modbus() ? 1 + data[2] % 64 : 1);

    size_t at = 3;
    while (at < size) {
        size_t len = data[at++];
        if (len == 255 && at + 1 < size) { // a long piece: two more length bytes
            len = size_t(data[at]) * 256 + data[at + 1];
            at += 2;
        }
        len = std::min(len, size - at);
        state.RxSettleMs = 0; // take every piece at once
        port.feed(QByteArray(reinterpret_cast<const char *>(data + at), qsizetype(len)));
        at += len;
        if (link.receiveBuffer().size() > 2 * 76816 + 65536)
            std::abort(); // the buffer holds at most one screen reply and a piece
    }
    return 0;
}
