#pragma once
#include <QByteArray>
#include <QDialog>
#include <optional>

class EntryBinding;
class EntryField;
class QLabel;
class QPushButton;
struct ScreenContext;

// "資料登錄": asks one value for one machine (a set value, a start pattern or
// segment, a PID number), clamps it to the range of its kind and turns it
// into the word the controller takes. The caller gives the kind as the
// title, the machine and the present value; "確認" leaves the word in
// InputWord and emits entered(), on which the caller sends it; "取消" sends
// nothing.
class frmQM730_DataInput : public QDialog {
    Q_OBJECT
public:
    explicit frmQM730_DataInput(ScreenContext &context, QWidget *parent = nullptr);

    // What a kind of value allows and how it becomes a word:
    // word = value x 10^pow10 + offset, rounded half to even.
    struct Kind {
        double low;
        double high;
        int pow10;
        int offset;
    };
    // The kind a title names: "TEMP. SV" (-100 to 200), "HUMI. SV" (0 to 100),
    // "START PTN" (1 to the pattern count), "START SEG" (1 to 100), "TEMP. PID"
    // and "HUMI. PID" (1 to 16); the multi-chamber console's own titles
    // "溫度 SV", "濕度 SV", "溫度 PID", "濕度 PID" name the same kinds. Any
    // other title has no clamp and gives the word 0.
    static std::optional<Kind> kindOf(const QString &title, int patternCount);

    void ask(const QString &kind, int machine, const QString &present);
    // The two bytes of the last accepted word, high byte first.
    QByteArray InputWord() const { return m_inputWord; }

signals:
    void entered(quint16 word);

private:
    void btnOK_Click();

    ScreenContext &m_ctx;
    QByteArray m_inputWord{2, '\0'};
    QLabel *lblMC_No;
    QLabel *lblOld;
    EntryField *txtNew;
    EntryBinding *m_entry;
    QPushButton *btnOK;
    QPushButton *btnCancel;
};
