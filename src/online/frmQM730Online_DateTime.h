#pragma once
#include <QDateTime>
#include <QDialog>
#include <functional>
#include <optional>

class ParamPage;
class QLabel;
class QPushButton;
class QTableWidget;
class QTimer;
struct ScreenContext;

// "日期/時間設定": the controller's clock and its reserved start ("預約運轉",
// a date and time at which the controller starts by itself).
//
// sprdDT holds the date and time to set the clock to, sprdDT_Reserve the
// reserved start; btnSameDT1 and btnSameDT2 make them follow the computer's
// clock, and editing a cell turns its toggle off. btnSet sends the clock,
// btnReserve_Set 0 "設定" sets the reserved start and 1 "解除" clears it,
// neither while the machine runs ("運轉中不可變更"). The rows are staged in
// sprdUP_DT (12 to 17 the clock, 18 to 22 the reserved start, 23 its enable)
// and go out as one block; the page frame reloads the reserved start from the
// parameter block when the write is answered. lblMeterDT shows the
// controller's own clock as the parameter block last brought it, so a set
// clock can be seen coming back.
class frmQM730Online_DateTime : public QDialog {
    Q_OBJECT
public:
    explicit frmQM730Online_DateTime(ScreenContext &context, QWidget *parent = nullptr);
    ~frmQM730Online_DateTime() override;

    // The computer's clock (tests give their own).
    void setClock(std::function<QDateTime()> clock);

    // Handlers, public so that tests can drive them.
    void tmrDT_Timer();
    void loadValues();
    void btnSet_Click();
    void btnReserve_Set_Click(int index);

    // A date cell and a time cell joined by a blank, read as a date and time:
    // year, month and day separated by "-" or "/", hours, minutes and
    // optional seconds by ":". None when it is no valid date and time.
    static std::optional<QDateTime> parseCells(const QString &date, const QString &time);

private:
    void toggle(QPushButton *button);
    bool following(const QPushButton *button) const;
    void fill(QTableWidget *table, const QString &date, const QString &time);
    QString cell(const QTableWidget *table, int column) const;
    void cellEdited(QTableWidget *table);
    bool machineRuns() const;
    void showMeterClock();

    ScreenContext &m_ctx;
    ParamPage *m_page;
    std::function<QDateTime()> m_clock;
    bool m_filling = false;         // the page itself is writing cells
    bool m_reserveEdited = false;   // the operator changed the reserved start: reloads leave it alone

    QLabel *lblDT;
    QLabel *lblMeterDT;
    QLabel *lblMsg;
    QTableWidget *sprdDT;
    QTableWidget *sprdDT_Reserve;
    QPushButton *btnSameDT1;
    QPushButton *btnSameDT2;
    QPushButton *btnSet;
    QPushButton *btnReserve_Set[2];
    QTimer *tmrDT;
};
