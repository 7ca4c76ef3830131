#include "ConsoleState.h"
#include "Dictionary.h"
#include "Files.h"
#include <cmath>

ConsoleState::ConsoleState(QString homeFolder, QObject *parent) : QObject(parent), home(std::move(homeFolder))
{
}

QString ConsoleState::path(const QString &relative) const
{
    return programPath(home, relative);
}

QString ConsoleState::CommSettingsText() const
{
    return CommBaud + u',' + CommParity + u',' + CommDataBits + u',' + CommStopBits;
}

void ConsoleState::setCommDefaults()
{
    CommPortNo = 1;
    CommBaud = QStringLiteral("115200");
    CommParity = QStringLiteral("N");
    CommDataBits = QStringLiteral("8");
    CommStopBits = QStringLiteral("1");
    CommProtocol = QStringLiteral("PC Link");
    CommRTS = QStringLiteral("OFF");
}

int ConsoleState::slotOfMachine(int machineNumber) const
{
    for (int i = 0; i < machines.size(); ++i)
        if (machines[i].MachineNumber == machineNumber)
            return i;
    return -1;
}

void ConsoleState::setCurrentMachine(int machine)
{
    if (machine > 0)
        image.setProgramMachine(machine);
    CurrentMachine = machine;
}

void ConsoleState::setMachines(const QVector<MachineSlot> &slotList)
{
    machines = slotList;
    const int n = int(machines.size());
    sprdStatus.resize(3, 0);
    sprdStatus.resize(3, n);
    sprdStatus.setText(1, 0, QStringLiteral("機號"));
    sprdStatus.setText(2, 0, QStringLiteral("連線"));
    sprdCommState.resize(4, 0);
    sprdCommState.resize(4, n);
    QList<int> numbers;
    for (int i = 0; i < n; ++i) {
        sprdStatus.setText(1, i + 1, QString::number(machines[i].MachineNumber));
        sprdCommState.setText(0, i + 1, QString::number(i + 1));
        numbers << machines[i].MachineNumber;
    }
    image.rebuildSlotColumns(numbers);
    image.clearSlotColumns();
    image.clearLoadedFlags();
}

void ConsoleState::setMachineList(bool multiMode, const QVector<MachineSlot> &slotList)
{
    MultiMode = multiMode;
    setMachines(slotList);
    emit machineListChanged();
}

void ConsoleState::countComm(int slot, int column)
{
    const int row = slot + 1;
    if (row < 1 || row > sprdCommState.rowCount())
        return;
    sprdCommState.setNumber(column, row, sprdCommState.number(column, row) + 1);
}

QString ConsoleState::statusPanel(int panel) const
{
    return panel >= 1 && panel <= 6 ? m_panels[panel] : QString();
}

void ConsoleState::setStatusPanel(int panel, const QString &text)
{
    if (panel < 1 || panel > 6 || m_panels[panel] == text)
        return;
    m_panels[panel] = text;
    emit statusPanelChanged(panel, text);
}

void ConsoleState::startActiveRefresh()
{
    if (ActiveRefreshTimer)
        ActiveRefreshTimer->start();
}

void ConsoleState::request_command(int code, int index, const QByteArray &data)
{
    ReqData = data;
    if (ReqData.size() < 2)
        ReqData.resize(2, '\0');
    ReqIndex = index;
    ReqCmd = code;
}

void ConsoleState::request_word(int code, int index, int word)
{
    QByteArray d(2, '\0');
    d[0] = char((word >> 8) & 0xFF);
    d[1] = char(word & 0xFF);
    request_command(code, index, d);
}

int ConsoleState::next_slot(int slot) const
{
    return slot + 1 <= MachineLast() ? slot + 1 : 0;
}

int ConsoleState::next_online_slot(int start) const
{
    const int rows = sprdStatus.rowCount();
    int from = start + 1;
    if (start > MachineLast())
        from = 1;
    for (int row = std::max(from, 1); row <= rows; ++row)
        if (sprdStatus.text(2, row) == QStringLiteral("良好"))
            return row - 1;
    return 0;
}

void ConsoleState::applyFirmwareOfRow(int row)
{
    image.applyFirmware(sprdStatus.value(3, row));
}

bool ConsoleState::setForegroundMachine(int machineNumber)
{
    const int slot = slotOfMachine(machineNumber);
    if (slot < 0)
        return false;
    applyFirmwareOfRow(slot + 1);
    setCurrentMachine(machineNumber); // another machine's programs are not this one's
    return true;
}

int ConsoleState::WireAddress(int row) const
{
    return ::WireAddress(row, Modbus(), image.isCurrentLayout());
}
