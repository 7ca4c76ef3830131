// The files read at start-up and at the port's opening: CommPort.CFG,
// CommWait.TM, PortMap.CFG, CFG/Run.INI and QM730_ID.INI.
#include "CommLink.h"
#include "ConsoleState.h"
#include "FakeCommPort.h"
#include "Files.h"
#include "FuzzSupport.h"
#include "FuzzTargets.h"
#include "StartupFiles.h"
#include <QFile>
#include <climits>

namespace {

// The state, a port that opens whatever it is given, and the link over them:
// built once per target, as the console builds them once.
struct Console {
    ConsoleState state;
    FakeCommPort port;
    CommLink link{state, port};
    explicit Console(const char *target) : state(fuzzHome(target)) {}
};

} // namespace

int fuzzCommPortCfg(const uint8_t *data, size_t size)
{
    static Console c("commport_cfg");
    ConsoleState &s = c.state;
    writeFuzzFile(s.home, QStringLiteral("CommPort.CFG"), data, size);
    // Settings other than the defaults, so a failed read must be seen to put every default back.
    s.CommPortNo = 9;
    s.CommBaud = QStringLiteral("9600");
    s.CommParity = QStringLiteral("E");
    s.CommDataBits = QStringLiteral("7");
    s.CommStopBits = QStringLiteral("2");
    s.CommProtocol = QStringLiteral("Modbus RTU");
    s.CommRTS = QStringLiteral("ON");

    const bool taken = readCommPortCfg(s);
    const QStringList values{s.CommBaud, s.CommParity, s.CommDataBits, s.CommStopBits, s.CommProtocol, s.CommRTS};
    if (lineBreaks(data, size) < 6)
        FUZZ_REQUIRE(!taken); // fewer than seven lines
    if (!taken) {
        FUZZ_REQUIRE(s.CommPortNo == 1);
        FUZZ_REQUIRE(values
                     == QStringList({"115200", "N", "8", "1", "PC Link", "OFF"}));
    } else {
        qsizetype chars = 0;
        for (const QString &v : values) {
            FUZZ_REQUIRE(!hasLineBreak(v));
            chars += v.size();
        }
        FUZZ_REQUIRE(chars <= qsizetype(size));
    }
    FUZZ_REQUIRE(s.CrcMode() == (s.CommProtocol == QLatin1String("PC Link + crc")));

    // What start-up and the port's opening do with the settings.
    s.setStatusPanel(1, QStringLiteral("COM") + QString::number(s.CommPortNo));
    s.setStatusPanel(2, s.CommSettingsText());
    c.link.setReplyTimeoutFromBaud();
    FUZZ_REQUIRE(c.link.replyTimeoutMs() >= 1);
    PortSettings ps;
    if (PortSettings::parse(s.CommSettingsText(), &ps)) {
        FUZZ_REQUIRE(ps.baud > 0);
        FUZZ_REQUIRE(ps.dataBits >= 5 && ps.dataBits <= 8);
        FUZZ_REQUIRE(ps.stopBits == 1 || ps.stopBits == 2);
        FUZZ_REQUIRE(QByteArray("NEOMS").contains(ps.parity));
    }
    FUZZ_REQUIRE(c.link.CommPort_Open());
    FUZZ_REQUIRE(c.port.openedSettings == s.CommSettingsText());
    c.link.CommPort_Close();
    // Without PortMap.CFG, COMn is /dev/ttyS<n-1> for any n the file gives.
    FUZZ_REQUIRE(mapPortDevice(s.home, s.CommPortNo) == QStringLiteral("/dev/ttyS%1").arg(qint64(s.CommPortNo) - 1));
    return 0;
}

int fuzzCommWaitTm(const uint8_t *data, size_t size)
{
    static Console c("commwait_tm");
    ConsoleState &s = c.state;
    writeFuzzFile(s.home, QStringLiteral("CommWait.TM"), data, size);
    const int wait = readCommWait(s.home);
    FUZZ_REQUIRE(wait >= 0);
    if (size == 0) { // an empty file is written anew with "0"
        FUZZ_REQUIRE(wait == 0);
        FUZZ_REQUIRE(readFuzzFile(s.home, QStringLiteral("CommWait.TM")) == "0\r\n");
    }
    // The reply time-out waits at least as long as the file asks, at any baud
    // rate the table knows; an unknown one keeps the first 500 ms.
    s.CommWaitMs = wait;
    for (const char *baud : {"115200", "9600", "1200"}) {
        s.CommBaud = QLatin1String(baud);
        c.link.setReplyTimeoutFromBaud();
        FUZZ_REQUIRE(c.link.replyTimeoutMs() >= std::max(1, wait));
    }
    s.CommBaud = QStringLiteral("300");
    c.link.setReplyTimeoutFromBaud();
    FUZZ_REQUIRE(c.link.replyTimeoutMs() == 500);
    return 0;
}

int fuzzPortMapCfg(const uint8_t *data, size_t size)
{
    static const QString home = fuzzHome("portmap_cfg");
    writeFuzzFile(home, QStringLiteral("PortMap.CFG"), data, size);
    const QString text = decodeSettingsText(QByteArray::fromRawData(reinterpret_cast<const char *>(data), qsizetype(size)));
    for (int port = 1; port <= 16; ++port) {
        const QString device = mapPortDevice(home, port);
        FUZZ_REQUIRE(!device.isEmpty());
        FUZZ_REQUIRE(!hasLineBreak(device));
        FUZZ_REQUIRE(device.startsWith(u'/')); // a device, or a path under the program's folder
        FUZZ_REQUIRE(device.size() <= home.size() + 1 + text.size() + 16);
        if (!text.contains(QStringLiteral("COM%1").arg(port), Qt::CaseInsensitive))
            FUZZ_REQUIRE(device == QStringLiteral("/dev/ttyS%1").arg(port - 1));
    }
    return 0;
}

int fuzzRunIni(const uint8_t *data, size_t size)
{
    static Console c("run_ini");
    ConsoleState &s = c.state;
    writeFuzzFile(s.home, QStringLiteral("CFG/Run.INI"), data, size);
    const MachineList list = Get_RunCFG(s.home);
    QFile::remove(s.path(QStringLiteral("Err.LOG"))); // an empty file is logged; keep the log small

    FUZZ_REQUIRE(list.singleMachine >= 1 && list.singleMachine <= 999);
    if (size == 0) { // no list: single mode, machine 1
        FUZZ_REQUIRE(!list.multiMode);
        FUZZ_REQUIRE(list.machines.size() == 1 && list.machines[0].MachineNumber == 1);
    }
    if (!list.multiMode) {
        FUZZ_REQUIRE(list.machines.size() == 1);
        FUZZ_REQUIRE(list.machines[0].MachineNumber == list.singleMachine);
        FUZZ_REQUIRE(list.machines[0].MachineName.isEmpty());
    }
    FUZZ_REQUIRE(list.machines.size() <= 999);
    FUZZ_REQUIRE(list.machines.size() <= lineBreaks(data, size) + 1);
    int previous = 0;
    for (const MachineSlot &m : list.machines) {
        FUZZ_REQUIRE(m.MachineNumber > previous && m.MachineNumber <= 999); // numbers rise, slots have no gaps
        previous = m.MachineNumber;
        FUZZ_REQUIRE(!m.MachineOnline && !m.MachineRunning && m.MachineRunMode.isEmpty());
        FUZZ_REQUIRE(!hasLineBreak(m.MachineName) && !m.MachineName.contains(u'\t'));
    }

    // The machine table as start-up builds it.
    s.MultiMode = list.multiMode;
    s.setMachines(list.machines);
    const int n = int(list.machines.size());
    FUZZ_REQUIRE(s.MachineLast() == n - 1);
    FUZZ_REQUIRE(s.sprdStatus.rowCount() == n && s.sprdCommState.rowCount() == n);
    FUZZ_REQUIRE(s.image.sprdRRP.colCount() == n && s.image.sprdRCV.colCount() == n);
    for (int i = 0; i < n; ++i) {
        FUZZ_REQUIRE(s.slotOfMachine(list.machines[i].MachineNumber) == i);
        FUZZ_REQUIRE(s.sprdStatus.number(1, i + 1) == list.machines[i].MachineNumber);
    }
    c.link.update_menus();
    return 0;
}

int fuzzIdIni(const uint8_t *data, size_t size)
{
    static const QString home = fuzzHome("id_ini");
    static const QString again = fuzzHome("id_ini_again");
    writeFuzzFile(home, QStringLiteral("QM730_ID.INI"), data, size);
    const std::optional<QString> password = loadSystemPassword(home);
    const QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char *>(data), qsizetype(size));
    if (!bytes.startsWith("QM730-TABLE 1\n"))
        FUZZ_REQUIRE(!password); // not a table image: the factory password applies
    if (password) {
        FUZZ_REQUIRE(password->size() <= qsizetype(size));
        // A password that was read is stored and read back as it is.
        FUZZ_REQUIRE(saveSystemPassword(again, *password));
        FUZZ_REQUIRE(loadSystemPassword(again) == password);
    }
    return 0;
}
