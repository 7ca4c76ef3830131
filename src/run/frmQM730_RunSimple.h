#pragma once
#include <QDateTime>
#include <QDialog>
#include <QPointer>
#include <QTimer>
#include <array>
#include <functional>
#include <optional>

#include "Encodings.h"
#include "EntryField.h"
#include "ScreenRefresh.h"
#include <memory>
#include <vector>

class ConsoleState;
struct ScreenContext;
class LampStrip;
class QCheckBox;
class QLabel;
class QPushButton;
class QStackedWidget;
class QTabWidget;
class QTableWidget;
class QHBoxLayout;
class RunLogger;
class SaveSettingsPanel;
class TextTable;
class TrendChart;

// "單機操作": the operator's console for the foreground machine
// (CurrentMachine). Once a second it shows that machine's status image; every
// operator action is a request in the scheduler's mailbox, never a frame.
//
// Opening: the main window first asks for a read of the UP block (request 3)
// and raises RefreshOnOpen, then opens this dialog modally. Construction is
// the screen's load: it takes the refresh timer of the link, fills the tables
// and draws once. Closing (or destruction) is its unload.
//
// Widgets carry their control names as object names; the members of a
// control array (btnSelectView, btnRunMode, lblSTS_TT) share one name and
// carry their index in the dynamic property "Index".
class frmQM730_RunSimple : public QDialog {
    Q_OBJECT
public:
    explicit frmQM730_RunSimple(ScreenContext &context, QWidget *parent = nullptr);
    ~frmQM730_RunSimple() override;

    // The fields whose edits keep the refresh away, in the order of EditFlags.
    enum EditField { TSV, HSV, S_PTN, S_SEG, PID_T, PID_H, EditFieldCount };
    bool editFlag(EditField f) const;

    // Screen state.
    int SlotIndex() const { return m_slot; }
    bool ChamberRunning() const { return m_running; }
    int StatusPage() const { return m_statusPage; }
    int LastPatternAsked() const { return m_lastPatternAsked; }
    int GraphPoints() const { return m_graphPoints; }
    bool GraphTick() const { return m_graphTick; }
    TrendChart *graph() const { return m_graph; }

    // The clock of the date button and the graph's time labels.
    void setClock(std::function<QDateTime()> clock);

    // Names of the series, the screen uses these for its graph captions.
    static QStringList seriesNames();

public slots:
    // Timer handlers. Each stops its own timer for the length of the handler.
    void tmrDisp_Timer();
    void tmrDispGraph_Timer();
    void tmrPreDate_Timer();
    void tmrRefresh_Timer();
    void tmrRefresh_CFG_Timer();

protected:
    void done(int result) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void buildControls();
    QWidget *buildControlPage();
    QWidget *buildStatusPage();
    QWidget *buildGraphPage();
    QWidget *buildSaveSettings();
    void load();
    void unload();

    // Cells of the machine's columns; empty when the cell has not been read.
    std::optional<qint64> rrp(int row) const;
    std::optional<qint64> rcv(int row) const;
    std::optional<qint64> up(int row) const;
    bool online() const;
    QDateTime now() const;

    // The redraw, steps in order.
    void redraw();
    void drawRunStatus();
    void drawControlMode();
    void drawTempOnlyView();
    void drawSetpoints();
    void drawSvRows();
    void drawPresentValues();
    void drawRampFlags();
    void drawLamps();
    void drawLampPanel();
    void drawTimes();
    void drawButtonColours();
    void drawModeVisibility();
    void drawPatternName();
    void drawReservation();
    void drawSmile(bool good);
    void graphStep();
    void addGraphPoint();

    // Edits and commands.
    void bindRunField(EditField flag, EntryField *field, int row, Encoding encoding, const EntryBinding::Range &range);
    void postRunWord(int row, int word);
    void toggle(QPushButton *button, int row);
    void selectView(int index);
    void openGraphViewer();
    void showNotice(const QString &text);

    ScreenContext &m_ctx;
    ConsoleState &m_state;
    RunLogger &m_logger;
    std::function<QDateTime()> m_clock;
    bool m_loaded = false;

    // Per-instance state.
    int m_slot = -1;
    bool m_running = false;
    bool m_fixedMode = false;
    bool m_tempOnly = false;
    std::array<EntryBinding *, EditFieldCount> m_flagOwner{}; // the first field of each flag
    std::vector<EntryBinding *> m_edits;
    std::unique_ptr<RefreshRegistration> m_refresh;
    int m_statusPage = 0;
    int m_lastPatternAsked = 0;
    int m_graphPoints = 0;
    bool m_graphTick = false;
    bool m_preBlink = false;
    int m_panelLayout = -1; // which arrangement the lamp panel has

    // Children of the screen, so that they are found by name.
    QTimer tmrDisp{this};
    QTimer tmrDispGraph{this};
    QTimer tmrPreDate{this};
    QTimer tmrRefresh{this};
    QTimer tmrRefresh_CFG{this};

    // Top bar.
    QPushButton *btnDate;
    QLabel *Image1;
    std::array<QPushButton *, 3> btnSelectView;
    QPushButton *btnClose;
    QStackedWidget *m_pages;

    // Control page.
    QStackedWidget *m_valueStack;
    QLabel *lblTPV, *lblHPV, *picUPDN_T, *picUPDN_H;
    QLabel *lblTSV_T, *lblHSV_T;
    EntryField *txtTSV, *txtHSV, *txtPID_T, *txtPID_H;
    std::array<QPushButton *, 2> btnRunMode;
    QTabWidget *SSTab1;
    EntryField *txtS_PTN, *txtS_SEG;
    QLabel *lblPTN_Name, *lblRunPTN_LBL, *lblRunSEG_LBL, *lblRunPTN, *lblRunSEG, *lblRunTime;
    QPushButton *btnRun, *btnStop, *btnStep, *btnHold, *btnTAT, *btnHAT;
    QWidget *picTOnly_Ctrl;
    EntryField *txtTOnly_Ctrl_SV, *txtTOnly_Ctrl_PTN, *txtTOnly_Ctrl_SEG;
    QLabel *lblTOnly_CtrlPV;
    QWidget *m_tonlySvRow, *m_tonlyPtnRow, *m_tonlySegRow;
    QWidget *picPreDate;
    QLabel *lblPreMsg, *lblReservedDate, *lblReservedTime;

    // Status page.
    QWidget *picStatus;
    QStackedWidget *m_statusStack;
    QWidget *m_rowNSV_T, *m_rowNSV_H;
    QLabel *lblPV_T, *lblNSV_T, *lblSV_T, *lblMV_T, *lblPID_T;
    QLabel *lblPV_H, *lblNSV_H, *lblSV_H, *lblMV_H, *lblPID_H;
    QWidget *picTOnly_Sts;
    QWidget *m_tonlyNsvRow;
    QLabel *lblTonly_Sts_PV, *lblTonly_Sts_NSV, *lblTonly_Sts_TSV, *lblTonly_Sts_MV, *lblTonly_Sts_PID;
    QLabel *lblRunTime_STS, *lblSeg_Time, *lblPTN_SEG, *lblPTN_RPT, *lblSEG_RPT;
    LampStrip *sprdUPDN, *sprdSOAK, *sprdWAIT;
    LampStrip *sprdIS, *sprdTON, *sprdHON, *sprdTS, *sprdDS, *sprdDR, *sprdPAS, *sprdSAS, *sprdAS, *sprdDI;
    std::array<QLabel *, 6> lblSTS_TT;
    std::array<QHBoxLayout *, 6> m_lampRows;

    // Graph page.
    QWidget *picGraph;
    TrendChart *m_graph;
    std::array<QLabel *, 4> m_graphLabels; // lblG_SV_T, lblG_SV_H, lblG_PV_T, lblG_PV_H
    std::array<QString, 4> m_graphTexts;   // the value each label shows
    EntryField *txtGrpInterval;
    QCheckBox *chb3D, *chbScroll;

    // Save settings.
    SaveSettingsPanel *m_saveSettings;
    QPushButton *btnGrpView;
};
