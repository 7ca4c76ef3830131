#pragma once
#include "ScreenRefresh.h"
#include <QObject>
#include <QString>
#include <QTimer>
#include <QVector>

class ConsoleState;
class TextTable;
struct ScreenContext;

// How the program editors change the controller's programs, one word at a
// time. While the operator types, each change goes straight into the cell of
// the program image (CellDirty: stored, not sent). Leaving the cell sends the
// word as the image holds it; the link writes it, reads the same word back
// into the image and then starts the screen's tmrRefresh, so the screen shows
// what the controller kept, not what was typed. A few entries (toggles, the
// alarm type) store and send at once.
//
// The writer holds the screen's tmrRefresh as the link's ActiveRefreshTimer
// for as long as it lives, and gives the refresh back as it found it.
class ProgramWriter : public QObject {
    Q_OBJECT
public:
    ProgramWriter(ScreenContext &context, QTimer &tmrRefresh, QObject *parent = nullptr);
    ~ProgramWriter() override;

    // ---- Entering: the image takes the value, nothing goes out ----
    void storePatternWord(int pattern, int word, qint64 value);
    void storeSegmentWord(int pattern, int segment, int word, qint64 value);
    // The name of a pattern, cut between characters to the bytes its row
    // carries on this line (29 in PC Link, 24 in Modbus RTU), a character
    // outside Big5 replaced by "?"; the text kept.
    QString storeName(int pattern, const QString &text);
    bool cellDirty() const { return m_dirty; }
    // The entry was abandoned: the cells stored since the last send take back
    // what they held before.
    void revert();

    // ---- Sending: CellDirty is cleared, the write and its read-back posted ----
    void sendPatternWord(int pattern, int word);                // as the image holds it
    void sendPatternWord(int pattern, int word, quint16 value); // a value other than the image's
    // Words first to last of a segment as the image holds them; the last is read back.
    void sendSegmentWords(int pattern, int segment, int firstWord, int lastWord);
    void sendName(int pattern);
    // Word 1 of a pattern (its segment count) as the image holds it, then its
    // segments first to last; the count and the last segment are read back.
    // With first past last only the count goes out.
    void sendSegmentCount(int pattern, int firstSegment, int lastSegment);
    // A whole pattern row as the image holds it, then the refresh.
    void sendPattern(int pattern);
    // A whole pattern with its segments 1 to its count, then read back.
    void sendProgram(int pattern);

    // What the last send touched: its pattern, and the word (0 for a name).
    int changedPattern() const { return m_changedPattern; }
    int ChangedWord() const { return m_changedWord; }
    bool nameChanged() const { return m_nameChanged; }

    // Bytes of a pattern name on this line.
    int nameWidth() const;

private:
    struct Saved {
        TextTable *table;
        int col;
        int row;
        QString text;
    };
    void remember(TextTable &table, int col, int row);
    void sent(int pattern, int word, bool name);

    ScreenContext &m_ctx;
    ConsoleState &m_state;
    RefreshRegistration m_refresh;
    bool m_dirty = false;
    QVector<Saved> m_saved; // cells as they were before the entry
    int m_changedPattern = 0;
    int m_changedWord = 0;
    bool m_nameChanged = false;
};
