#pragma once
#include <QDialog>
#include <QTimer>
#include <QVector>

class ConsoleState;
class ProgramWriter;
class QFrame;
class QLabel;
class QLineEdit;
class QPushButton;
struct ScreenContext;

// "時間信號設定": the eight time signals of one segment side by side, larger
// than the segment editor's table. A signal is off, on for the whole segment,
// or timed: then its two times (each two numbers, hours and minutes below
// firmware 2.51, minutes and seconds from it) say when it switches. Every
// change goes out at once through the segment editor's writer, as the words
// of the signal, and the segment editor follows by the read-back.
class frmQM730Prg_SEG_TS : public QDialog {
    Q_OBJECT
public:
    // writer: the segment editor's; without one (or without a segment) the
    // screen only shows.
    explicit frmQM730Prg_SEG_TS(ScreenContext &context, QWidget *parent = nullptr, ProgramWriter *writer = nullptr,
                                int pattern = 0, int segment = 0);

    // Signal k = 1..8: its panel of times is active (the signal is timed).
    bool panelActive(int k) const;

public slots:
    void tmrRefresh_Timer();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    struct Signal {
        QLabel *lblTSNo;
        QPushButton *btnON;
        QPushButton *btnOFF;
        QFrame *picTime;
        QLineEdit *txt[4]; // txtLT1, txtLT2, txtRT1, txtRT2
        QLabel *lbl[4];    // lblLT1, lblLT2, lblRT1, lblRT2
        QString kept[4];   // the entries as last accepted
        bool active = false;
    };
    void buildControls();
    void setPanelActive(Signal &signal, bool active);
    void switchedOnOff(int k, bool on);
    void madeTimed(int k);
    void timeEntered(int k, int field);
    void send(int firstWord, int lastWord); // words of the segment as the image holds them

    ConsoleState &m_state;
    ProgramWriter *m_writer;
    int m_pattern;
    int m_segment;
    bool m_newFirmware;
    QVector<Signal> m_signals;
    QLabel *lblSegment;
    QLabel *Label6;
    QPushButton *btnClose;
    QTimer tmrRefresh{this};
};
