#pragma once
#include "Dictionary.h"
#include <QByteArray>
#include <QMetaType>

class ConsoleState;

// The states of the scheduler. A screen posts some of them as requests
// (through Requests, never as bare numbers); the others are steps of the
// chains that a reply leads to. Several Modbus RTU chains walk a run of
// numbers (the pieces of a block), given as first and last.
namespace Cmd {
enum State : int {
    Poll = 1,            // RRP of PollSlot, the home state; as a request it ends any chain
    PollValues = 2,      // RCV of PollSlot
    ReadUp = 3,          // the parameter block of the foreground machine
    ReadUpLastPiece = 7, // Modbus RTU: the block comes in pieces 3 to 7
    ReadText = 4,        // PC Link: sprdTD rows CmdIndex to CmdIndexEnd
    ReadTextInputs = 8,  // Modbus RTU: sprdTD rows 1 to 8, then on through the names
    ReadTextInfo = 9,    // Modbus RTU: sprdTD rows 9 to 11, then on through the names
    Who = 10,            // the identity scan of PollSlot
    ReadScreen = 11,     // the screen image (PC Link only)
    RecvUp = 51,         // bulk receive: the parameter block
    RecvText = 52,       // bulk receive: one text row
    RecvPattern = 53,    // bulk receive: one pattern
    RecvSegment = 54,    // bulk receive: one segment
    ReadPattern = 61,    // a whole pattern, then its segments (after a program write)
    ReadPatternSegment = 62,
    ReadUpPlus = 77,     // Modbus RTU: sprdUP_PLUS rows 88 and 89
    ReadPatternWord = 91,   // read-back of one pattern word
    ReadSegmentWord = 92,   // read-back of one segment word
    ReadSegmentCount = 93,  // read-back of a pattern's segment count
    ReadLastSegment = 94,   // read-back of the last segment touched
    WriteRunWord = 101,     // one sprdRRP row
    WriteUpRow = 102,       // one sprdUP row
    WriteTextRow = 103,     // one sprdTD row, then read back
    WriteClockRows = 104,   // sprdUP_DT rows CmdIndex to CmdIndexEnd
    WriteUpRows = 150,      // sprdUP rows CmdIndex to CmdIndexEnd
    SendUp = 151,           // bulk send: the parameter block
    SendText = 152,
    SendPattern = 153,
    SendSegment = 154,
    WritePatternWord = 201,   // one pattern word, then read back
    WriteSegmentWords = 202,  // segment words CmdIndex to CmdIndexEnd, then read back
    WriteSegmentCount = 203,  // a pattern's word, then its segments from SegmentNo
    RewriteSegments = 204,
    WritePattern = 205,       // a whole pattern row, then refresh
    WriteProgram = 211,       // a whole pattern and its segments, then read back
    WriteProgramSegment = 212,
    MachineRunMethod = 311,   // the multi-chamber console's writes to PollSlot
    MachineRun = 312,         // RRP row 1
    MachineStep = 313,        // RRP row 2
    MachineHold = 314,        // RRP row 3
    MachineTempAT = 315,      // RRP row 4
    MachineHumiAT = 316,      // RRP row 5
    MachineStartPattern = 321, // RRP row 8
    MachineStartSegment = 322, // RRP row 9
    MachineTempPid = 323,      // RRP row 6
    MachineHumiPid = 324,      // RRP row 7
    MachineTempSV = 325,       // RRP row 12
    MachineRow10 = 326,        // RRP row 10
    MachineHumiSV = 327,       // RRP row 13
    MachineRow11 = 328,        // RRP row 11
    WriteCurve = 400,          // sprdUP rows CmdIndex to CmdIndexEnd, one by one
    WriteCurveBlock = 401,     // Modbus RTU: the same as one block
    RecvUpPieces = 5101,       // Modbus RTU bulk receive of the block: 5101 to 5105
    RecvUpLastPiece = 5105,
    RecvTextInputs = 5199,     // Modbus RTU bulk receive of the texts: rows 1 to 8,
    RecvTextInfo = 5200,       // rows 9 to 11,
    RecvNames = 5201,          // then ten names a read: 5201 to 5210 for 100 patterns,
    RecvNamesMax = 5230,       // on to 5230 for 300
    SendUpPieces = 1511,       // Modbus RTU bulk send of the block: 1511 to 1515
    SendUpLastPiece = 1515,
    ReadNames = 9001,          // Modbus RTU: ten names a read, 9001 to 9010
    ReadNamesLast = 9010,
};
} // namespace Cmd

// The bulk transfers and the screens that drive them (BulkFormName).
enum class BulkJob { None, ParameterReceive, ParameterSend, ProgramFetch };
QString bulkFormName(BulkJob job);

// Where a bulk transfer stands, as numbers; the screens word it.
enum class BulkTable { Parameters, Texts, Patterns, Segments };
struct BulkProgress {
    BulkJob job = BulkJob::None;
    BulkTable table = BulkTable::Parameters;
    int done = 0;          // rows, patterns or segments through so far
    int total = 0;         // of how many
    bool finished = false; // this table is through
    bool failed = false;   // the machine stopped answering; the chain keeps trying
};
Q_DECLARE_METATYPE(BulkProgress)

// Why a screen capture gave no picture. After a bad frame or a missing reply
// the link asks again by itself; a picture that cannot be written ends the
// capture.
enum class CaptureFault {
    BadFrame,      // the reply failed its check (end bytes or sum), or was noise
    NoReply,       // the reply did not come, or stopped coming
    FileNotWritten // the picture came but its file could not be written
};
Q_DECLARE_METATYPE(CaptureFault)

// The requests of the screens: one call per kind. Each fills the mailbox of
// the scheduler (ReqCmd, ReqIndex, ReqData) and the variables its chain
// reads (CmdIndexEnd, WriteBlock, PatternNo ...) together, with the wire
// address worked out from the protocol and the firmware's layout. The
// mailbox has one slot: a later request before the next tick replaces an
// earlier one, and no one is told.
class Requests {
public:
    explicit Requests(ConsoleState &state) : m_s(state) {}

    // True while a request of this kind waits in the mailbox or its chain
    // runs: a screen that writes in steps posts the next one when the
    // previous is through, since a new request would cut a chain short.
    bool underway(Cmd::State kind) const;

    // Ends whatever transfer runs; polling resumes.
    void stop();
    // A fresh read of the foreground machine's parameter block.
    void readParameters();

    // One row of sprdRRP of the foreground machine.
    void writeRunWord(int row, quint16 word);

    // One parameter: its image cell takes cellText (the word's decimal text
    // when empty) and the row goes to the controller at the parameter's wire
    // address. False, with nothing posted, when the firmware has no such row.
    // A field written on purpose otherwise than it is read names its
    // addressing (the plain row, or the legacy row, in every protocol).
    bool writeParameter(ParamRef ref, quint16 word, const QString &cellText = {},
                        RowAddressing addressing = RowAddressing::Normal);
    // sprdUP rows first to last as the image holds them: one WUP a row in
    // PC Link, one block in Modbus RTU.
    void writeParameterRows(int firstRow, int lastRow);
    // A revision curve, sprdUP rows first to last: as writeParameterRows, with
    // the page refreshed and the controller given its time to store at the end.
    void writeCurveRows(int firstRow, int lastRow);
    // The clock and reserved-start rows first to last of sprdUP_DT.
    void writeClockRows(int firstRow, int lastRow);

    // One text row of sprdTD as the image holds it, read back after the write.
    void writeTextRow(int row);
    // sprdTD rows first to last. Modbus RTU reads fixed blocks: the block
    // holding the first row and the rest of the chain behind it.
    void readTextRows(int firstRow, int lastRow);
    // The single-chamber console's request for a pattern's name (its text
    // row, pattern + 11). Modbus RTU reads the names of patterns 1 to 100
    // only; for others nothing is posted.
    void readPatternName(int pattern);

    // The controller's screen image (PC Link only; nothing goes out in Modbus RTU).
    void readScreen();

    // Programs, written word by word and read back.
    void writePatternWord(int pattern, int word, quint16 value);
    // Words first to last of a segment: the first with value, the others as
    // sprdSD holds them; the last is read back.
    void writeSegmentWords(int pattern, int segment, int firstWord, int lastWord, quint16 value);
    // Word 1 of a pattern (its segment count) as count, then every segment
    // from firstSegment to lastSegment as sprdSD holds it, then the count and
    // the last segment read back. With firstSegment past lastSegment only the
    // count is written.
    void writeSegmentCount(int pattern, int firstSegment, int lastSegment, quint16 count);
    // A whole pattern row as sprdPD holds it, then the screen refreshed.
    void writePattern(int pattern);
    // A whole pattern and its segments 1 to segmentCount as the image holds
    // them, then read back.
    void writeProgram(int pattern, int segmentCount);

    // The multi-chamber console: one word to the machine of a slot.
    void writeMachineWord(int slot, Cmd::State what, quint16 word);

    // Bulk transfers of the foreground machine.
    void startParameterReceive(bool withPrograms);
    void startParameterSend(bool withPrograms);
    // The program fetch: names from a text row on, or patterns from one on.
    void startNameFetch(int firstRow);
    void startPatternFetch(int pattern);

private:
    void post(int code, int index, quint16 word = 0);
    void fillBlock(const class TextTable &table, int firstRow, int lastRow);
    void setBulk(BulkJob job);

    ConsoleState &m_s;
};
