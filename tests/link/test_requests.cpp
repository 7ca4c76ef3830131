// Every kind of request the screens post: the code, address, data and chain
// variables it leaves in the mailbox, in both link families and both layouts
// of the parameter block. Expected addresses are the register map's
// (40001 + row - 1 for run words, 40101 + row - 1 for parameter rows, 40701
// - 1 for the extension rows), written out here as numbers.
#include "ConsoleState.h"
#include "Dictionary.h"
#include "LiveStatus.h"
#include <QTemporaryDir>
#include <QtTest>
#include <array>
#include <functional>

namespace {

struct Mail {
    int code, index, word;
};
// Expected mailbox by protocol and layout: [modbus][legacy].
using Mails = std::array<std::array<Mail, 2>, 2>;
Mails all(Mail m) { return {{{m, m}, {m, m}}}; }
Mails byProtocol(Mail pc, Mail modbus) { return {{{pc, pc}, {modbus, modbus}}}; }
Mails each(Mail pc, Mail pcLegacy, Mail modbus, Mail modbusLegacy) { return {{{pc, pcLegacy}, {modbus, modbusLegacy}}}; }

using Check = std::function<void(const ConsoleState &, bool modbus, bool legacy)>;
struct Case {
    const char *what;
    std::function<void(Requests)> post;
    Mails expected;
    Check check = {};
};

int mailWord(const ConsoleState &s)
{
    return (quint8(s.ReqData[0]) << 8) | quint8(s.ReqData[1]);
}

QByteArray words(std::initializer_list<int> list)
{
    QByteArray b;
    for (int w : list)
        b += char((w >> 8) & 0xFF) + QByteArray(1, char(w & 0xFF));
    return b;
}

// Checks of the chain variables a request leaves beside the mailbox.
Check indexEnd(int end)
{
    return [end](const ConsoleState &s, bool, bool) { QCOMPARE(s.CmdIndexEnd, end); };
}
Check chain(int pattern, int segment, int count)
{
    return [=](const ConsoleState &s, bool, bool) {
        QCOMPARE(QList<int>({s.PatternNo, s.SegmentNo, s.SegmentCount}), QList<int>({pattern, segment, count}));
    };
}
Check upText(int row, const char *text)
{
    return [=](const ConsoleState &s, bool, bool) { QCOMPARE(s.image.sprdUP.text(1, row), QLatin1String(text)); };
}

} // namespace

class RequestsTest : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;

    std::unique_ptr<ConsoleState> state(bool modbus, bool legacy)
    {
        auto s = std::make_unique<ConsoleState>(m_dir.path());
        s->setMachines({{1, {}, true}, {2, {}, true}});
        s->CurrentMachine = 1;
        s->CommProtocol = modbus ? QStringLiteral("Modbus RTU") : QStringLiteral("PC Link");
        s->image.applyFirmware(legacy ? 2.1 : 2.31);
        for (int row = 290; row <= 293; ++row) // the password digits '1' to '4'
            s->image.sprdUP.setNumber(1, row, 49 + row - 290);
        const int clock[] = {26, 11, 23, 9, 30, 0};
        for (int i = 0; i < 6; ++i)
            s->image.sprdUP_DT.setNumber(1, 12 + i, clock[i]);
        return s;
    }

private slots:
    void eachKindFillsTheMailbox()
    {
        const int T = Rrp::TempTargetSV;
        const QList<Case> cases = {
            {"stop", [](Requests r) { r.stop(); }, all({1, 0, 0})},
            {"read the parameter block", [](Requests r) { r.readParameters(); }, all({3, 0, 0})},
            {"run word", [T](Requests r) { r.writeRunWord(T, 12550); }, byProtocol({101, 12, 12550}, {101, 40012, 12550})},
            // Row 295 current, 75 legacy; the register offset only in the current layout.
            {"parameter", [](Requests r) { r.writeParameter(Param::txtPIDZone_Manual, 7, QStringLiteral("7")); },
             each({102, 295, 7}, {102, 75, 7}, {102, 40395, 7}, {102, 75, 7}),
             [](const ConsoleState &s, bool, bool legacy) {
                 QCOMPARE(s.image.sprdUP.text(1, legacy ? 75 : 295), QStringLiteral("7"));
             }},
            // Fields written on purpose to the plain row, or the legacy row, in every protocol.
            {"parameter, plain row",
             [](Requests r) { r.writeParameter({Param::txtTempOutV, 1}, 10500, {}, RowAddressing::PlainRow); },
             each({102, 75, 10500}, {102, 57, 10500}, {102, 75, 10500}, {102, 57, 10500})},
            {"parameter, legacy row",
             [](Requests r) { r.writeParameter(Param::txtBias1_V, 9900, {}, RowAddressing::LegacyRow); },
             all({102, 35, 9900}), upText(35, "9900")},
            // Run settings have one row in both layouts, and the register offset in both.
            {"run setting", [](Requests r) { r.writeParameter(Param::txtRun_Minute, 30); },
             byProtocol({102, 3, 30}, {102, 40103, 30}), upText(3, "30")},
            {"extension row", [](Requests r) { r.writeParameter(Param::btnPatt_Lock, 1); },
             byProtocol({102, 89, 1}, {102, 40701, 1}),
             [](const ConsoleState &s, bool, bool) { QCOMPARE(s.image.sprdUP_PLUS.text(1, 89), QStringLiteral("1")); }},
            {"parameter rows", [](Requests r) { r.writeParameterRows(290, 293); },
             each({150, 290, 0}, {150, 290, 0}, {150, 40390, 0}, {150, 290, 0}),
             [](const ConsoleState &s, bool modbus, bool) {
                 QCOMPARE(s.CmdIndexEnd, 293);
                 if (modbus) {
                     QCOMPARE(s.WriteBlockCount, 4);
                     QCOMPARE(s.WriteBlock, words({49, 50, 51, 52}));
                 }
             }},
            {"curve rows", [](Requests r) { r.writeCurveRows(32, 45); },
             each({400, 32, 0}, {400, 32, 0}, {401, 40132, 0}, {401, 32, 0}),
             [](const ConsoleState &s, bool modbus, bool) {
                 QCOMPARE(s.CmdIndexEnd, 45);
                 if (modbus)
                     QCOMPARE(s.WriteBlockCount, 14);
             }},
            {"clock rows", [](Requests r) { r.writeClockRows(12, 17); }, byProtocol({104, 12, 0}, {104, 40112, 0}),
             [](const ConsoleState &s, bool modbus, bool) {
                 QCOMPARE(s.CmdIndexEnd, 17);
                 if (modbus)
                     QCOMPARE(s.WriteBlock, words({26, 11, 23, 9, 30, 0}));
             }},
            {"text row", [](Requests r) { r.writeTextRow(10); }, all({103, 10, 0}), indexEnd(10)},
            {"text rows 9 to 11", [](Requests r) { r.readTextRows(9, 11); }, byProtocol({4, 9, 0}, {9, 9, 0}), indexEnd(11)},
            {"text rows 1 to 8", [](Requests r) { r.readTextRows(1, 8); }, byProtocol({4, 1, 0}, {8, 1, 0})},
            {"pattern name", [](Requests r) { r.readPatternName(12); }, byProtocol({4, 23, 0}, {9002, 23, 0}), indexEnd(23)},
            {"first pattern's name", [](Requests r) { r.readPatternName(1); }, byProtocol({4, 12, 0}, {9001, 12, 0})},
            {"last name of the Modbus chain", [](Requests r) { r.readPatternName(100); },
             byProtocol({4, 111, 0}, {9010, 111, 0})},
            {"name past the Modbus chain", [](Requests r) { r.readPatternName(101); }, byProtocol({4, 112, 0}, {0, 0, 0})},
            {"screen", [](Requests r) { r.readScreen(); }, all({11, 0, 0})},
            {"pattern word", [](Requests r) { r.writePatternWord(5, 8, 1250); }, all({201, 8, 1250}),
             [](const ConsoleState &s, bool, bool) { QCOMPARE(s.PatternNo, 5); }},
            {"segment words", [](Requests r) { r.writeSegmentWords(5, 3, 6, 8, 2); }, all({202, 6, 2}),
             [](const ConsoleState &s, bool, bool) {
                 QCOMPARE(QList<int>({s.PatternNo, s.SegmentNo, s.CmdIndexEnd}), QList<int>({5, 3, 8}));
             }},
            {"segment count", [](Requests r) { r.writeSegmentCount(5, 4, 6, 6); }, all({203, 1, 6}), chain(5, 4, 6)},
            {"whole pattern", [](Requests r) { r.writePattern(9); }, all({205, 0, 0}),
             [](const ConsoleState &s, bool, bool) { QCOMPARE(s.PatternNo, 9); }},
            {"whole program", [](Requests r) { r.writeProgram(9, 3); }, all({211, 0, 0}), chain(9, 1, 3)},
            {"machine word", [](Requests r) { r.writeMachineWord(1, Cmd::MachineTempSV, 12550); }, all({325, 0, 12550}),
             [](const ConsoleState &s, bool, bool) { QCOMPARE(s.NextPollSlot, 1); }},
            {"parameter receive", [](Requests r) { r.startParameterReceive(true); }, byProtocol({51, 0, 0}, {5101, 0, 0}),
             [](const ConsoleState &s, bool, bool) {
                 QCOMPARE(s.BulkFormName, QStringLiteral("frmQM730_P_Recv"));
                 QCOMPARE(s.bulkJob, BulkJob::ParameterReceive);
                 QVERIFY(s.BulkWithPrograms);
             }},
            {"parameter send", [](Requests r) { r.startParameterSend(false); }, byProtocol({151, 0, 0}, {1511, 0, 0}),
             [](const ConsoleState &s, bool, bool) {
                 QCOMPARE(s.BulkFormName, QStringLiteral("frmQM730_P_Send"));
                 QVERIFY(!s.BulkWithPrograms);
             }},
            {"name fetch", [](Requests r) { r.startNameFetch(14); }, byProtocol({52, 14, 0}, {5199, 14, 0}),
             [](const ConsoleState &s, bool, bool legacy) {
                 QCOMPARE(s.BulkFormName, QStringLiteral("frmQM730_PTN_Recv"));
                 QCOMPARE(s.CmdIndexEnd, legacy ? 311 : 111);
             }},
            {"pattern fetch", [](Requests r) { r.startPatternFetch(7); }, all({53, 0, 0}),
             [](const ConsoleState &s, bool, bool) {
                 QCOMPARE(s.bulkJob, BulkJob::ProgramFetch);
                 QCOMPARE(s.PatternNo, 7);
             }},
        };
        for (const Case &c : cases) {
            for (bool modbus : {false, true}) {
                for (bool legacy : {false, true}) {
                    auto s = state(modbus, legacy);
                    c.post(s->requests());
                    const Mail &e = c.expected[modbus][legacy];
                    const QString where = QStringLiteral("%1, %2, %3 layout").arg(QLatin1String(c.what),
                                              modbus ? "Modbus RTU" : "PC Link", legacy ? "legacy" : "current");
                    QVERIFY2(QList<int>({s->ReqCmd, s->ReqIndex, mailWord(*s)}) == QList<int>({e.code, e.index, e.word}),
                             qPrintable(QStringLiteral("%1: got %2/%3/%4").arg(where).arg(s->ReqCmd).arg(s->ReqIndex)
                                            .arg(mailWord(*s))));
                    if (c.check)
                        c.check(*s, modbus, legacy);
                    if (QTest::currentTestFailed())
                        qWarning("in %s", qPrintable(where));
                }
            }
        }
    }

    void aRequestIsUnderwayUntilItsChainEnds()
    {
        auto s = state(true, false);
        Requests r = s->requests();
        QVERIFY(!r.underway(Cmd::WriteCurveBlock));
        r.writeCurveRows(32, 45);
        QVERIFY(r.underway(Cmd::WriteCurveBlock)); // in the mailbox
        s->ReqCmd = 0;
        s->CmdState = Cmd::WriteCurveBlock; // taken by the scheduler
        QVERIFY(r.underway(Cmd::WriteCurveBlock));
        s->CmdState = Cmd::Poll;
        QVERIFY(!r.underway(Cmd::WriteCurveBlock));
    }

    void aParameterTheFirmwareLacksPostsNothing()
    {
        auto s = state(false, true);
        s->image.applyFirmware(1.8); // 392 rows: no revision curve rows 457 on
        QVERIFY(!s->requests().writeParameter(ParamRef(Param::txtAdjustX_T, 1), 2250));
        QCOMPARE(s->ReqCmd, 0);
    }

    void theLastRequestWins()
    {
        auto s = state(true, false);
        s->requests().writeParameter(Param::txtLPF1, 5);
        s->requests().writeRunWord(Rrp::Run, 1); // (on the line: tests/link scheduler, mailboxOnALiveLine)
        QCOMPARE(QList<int>({s->ReqCmd, s->ReqIndex, mailWord(*s)}), QList<int>({101, 40001, 1}));
        QCOMPARE(s->image.sprdUP.text(1, 25), QStringLiteral("5")); // the image keeps the first edit
    }
};

QTEST_GUILESS_MAIN(RequestsTest)
#include "test_requests.moc"
