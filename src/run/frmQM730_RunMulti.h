#pragma once
#include "Requests.h"
#include <QByteArray>
#include <QDialog>
#include <QTimer>
#include <array>

class ConsoleState;
class GroupHeaderView;
class QModelIndex;
class QPushButton;
class QTableView;
class SaveSettingsPanel;
class SheetModel;
struct ScreenContext;

// "多機操作": every machine of the list on one row of sprdMulti, with its link
// state, present values, mode, run, hold, step, start position, tuning and
// PID numbers, run time and outputs. A click on a button cell posts one
// command for that row's machine through the mailbox; a double click on a
// value asks the new value in frmQM730_DataInput and tmrNextCMD sends it.
// A row whose machine does not answer shows "不良" on red, keeps its last
// values and takes no commands.
class frmQM730_RunMulti : public QDialog {
    Q_OBJECT
public:
    // Columns of sprdMulti, from 1.
    enum Column {
        ColLink = 1,
        ColTempPV, ColHumiPV, ColTempSV, ColHumiSV,
        ColProgram, ColFixed, ColRun, ColStop, ColHold, ColStep,
        ColStartPattern, ColRunPattern, ColStartSegment, ColRunSegment,
        ColTempAT, ColHumiAT, ColTempPID, ColHumiPID,
        ColRunTime, ColTempMV, ColHumiMV,
        ColumnCount = ColHumiMV
    };

    explicit frmQM730_RunMulti(ScreenContext &context, QWidget *parent = nullptr);
    ~frmQM730_RunMulti() override;

    SheetModel &sheet() const { return *m_sheet; }
    // The value asked in frmQM730_DataInput, high byte first.
    QByteArray InputWord() const { return m_inputWord; }

    // Whether a button cell of a row is lit (green).
    bool isLit(int row, int col) const;

public slots:
    void Timer1_Timer();
    void tmrNextCMD_Timer();

    // The operator's clicks on a cell (row and column from 1).
    void sprdMulti_Click(int row, int col);
    void sprdMulti_DblClick(int row, int col);

protected:
    void done(int result) override;

private:
    // The words a row is drawn from, as the tables hold them.
    static constexpr int RcvSources[] = {1, 2, 3, 4, 5, 6, 13, 14, 15, 16, 21, 22};
    static constexpr int RrpSources[] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    static constexpr int SourceCount = std::size(RcvSources) + std::size(RrpSources);
    using RowSource = std::array<QString, SourceCount>;

    void buildSheet();
    void drawRow(int slot);
    void setLamp(int row, int col, bool lit);
    bool refused(int row) const;
    void post(int row, Cmd::State what, quint16 word);
    void askValue(int row, int col, const QString &title, Cmd::State what);

    ScreenContext &m_ctx;
    ConsoleState &m_state;
    SheetModel *m_sheet;
    QTableView *sprdMulti;
    GroupHeaderView *m_header;
    SaveSettingsPanel *m_saveSettings;
    QPushButton *btnClose;
    QVector<RowSource> m_drawn; // per slot: the words the row shows
    QVector<int> m_linkShown;   // per slot: -1 not drawn, 0 不良, 1 良好
    bool m_loaded = false;

    // The command the value dialog asked for.
    QByteArray m_inputWord{2, '\0'};
    int m_pendingMachine = 0;
    Cmd::State m_pendingCmd = Cmd::Poll;

    QTimer Timer1{this};
    QTimer tmrNextCMD{this};
    QTimer tmrRefresh_CFG{this};
};
