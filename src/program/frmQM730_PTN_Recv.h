#pragma once
#include "Requests.h"
#include <QDateTime>
#include <QDialog>
#include <QTimer>

class QLabel;
class QPushButton;
struct ScreenContext;

// The wait screen that fills the program image of the foreground machine
// before an editor opens: it fetches from the controller every pattern name
// and every pattern (with its segments) not loaded yet, and only those, so a
// second opening reads nothing. lblMSG tells how far the fetch is; tmrEnd
// closes the screen when it says "接收完了". btnStop ("停止") ends the fetch,
// raises ReceptionStopped, and the editor closes without saving the cache;
// closing the window any other way counts as the same stop.
//
// With a number other than 0 on the first line of WChkTime.INI each
// completed read appends a timing note to PTN_PASS.TM.
class frmQM730_PTN_Recv : public QDialog {
    Q_OBJECT
public:
    static inline const QString Done = QStringLiteral("接收完了");

    explicit frmQM730_PTN_Recv(ScreenContext &context, QWidget *parent = nullptr);

    QString message() const;
    bool timingNoteOn() const { return m_timing; }

    void reject() override; // the stop

public slots:
    void tmrEnd_Timer();
    void btnStop_Click();

private:
    void start();
    void progress(const BulkProgress &p);
    void writeTimingNote();

    ScreenContext &m_ctx;
    QLabel *lblMSG;
    QPushButton *btnStop;
    QTimer tmrEnd{this};
    QDateTime StartTime;
    QDateTime EndTime;
    bool m_timing = false;
    bool m_ended = false;
};
