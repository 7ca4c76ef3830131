#include "BulkTransfer.h"
#include "ConsoleState.h"

namespace bulktransfer {

int statusCell(BulkTable table)
{
    switch (table) {
    case BulkTable::Parameters: return 0;
    case BulkTable::Texts: return 1;
    case BulkTable::Patterns: return 2;
    case BulkTable::Segments: return 3;
    }
    return 0;
}

QString rowLabel(BulkTable table)
{
    switch (table) {
    case BulkTable::Parameters: return QStringLiteral("使用者");
    case BulkTable::Texts: return QStringLiteral("文本");
    case BulkTable::Patterns: return QStringLiteral("程式組數");
    case BulkTable::Segments: return QStringLiteral("程式段數");
    }
    return {};
}

std::optional<QString> statusText(const BulkProgress &p)
{
    if (p.failed)
        return std::nullopt;
    const bool sending = p.job == BulkJob::ParameterSend;
    if (p.finished)
        return sending ? QStringLiteral("傳送完了") : QStringLiteral("接收完了");
    int done = p.done;
    if (p.table == BulkTable::Texts && !sending)
        done = std::min(done + 1, p.total);
    return QString::number(done) + u'/' + QString::number(p.total);
}

paramset::LinkSettings linkSettings(const ConsoleState &s)
{
    paramset::LinkSettings link;
    link.baud = s.CommBaud;
    link.parity = s.CommParity;
    link.dataBits = s.CommDataBits;
    link.stopBits = s.CommStopBits;
    link.modbus = s.Modbus();
    link.crc = s.CrcMode();
    return link;
}

} // namespace bulktransfer
