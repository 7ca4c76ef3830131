#pragma once
#include "TextTable.h"
#include <QDialog>
#include <QTimer>
#include <memory>
#include <optional>

class ConsoleState;
class ProgramCurve;
class ProgramWriter;
class QCheckBox;
class QGroupBox;
class QLabel;
class QPushButton;
class QTableWidget;
class QTableWidgetItem;
struct ScreenContext;

// "程式設定(程式組設定)": everything of a pattern but its segments, on the
// foreground machine. sprdPattern lists the patterns (name, wait bands and
// time, repeats, link, start mode and start values); a click on a row
// selects the pattern, whose four alarms (sprdAlarm) and 20 partial repeats
// (sprdRepeat) show in the frame "警報/部分循環" beside its curve. Each
// finished cell goes to the controller at once as a one-word write with its
// read-back; there is no save button. The screen holds no program data of
// its own: it shows sprdPD and sprdTD.
class frmQM730Prg_PTN : public QDialog {
    Q_OBJECT
public:
    // Columns of sprdPattern, from 0.
    enum PatternColumn {
        ColName,
        ColTempLabel,
        ColWaitTemp,
        ColHumiLabel,
        ColWaitHumi,
        ColWaitHours,
        ColWaitMinutes,
        ColRepeatAll,
        ColLinkPattern,
        ColStartSV,
        ColStartPV,
        ColStartTemp,
        ColStartHumi,
        PatternColumns
    };
    // Columns of sprdAlarm and sprdRepeat, from 0.
    enum AlarmColumn { ColTempObject, ColHumiObject, ColAlarmType, ColAlarmSV, ColAlarmHyst, AlarmColumns };
    enum RepeatColumn { ColRepeatStart, ColRepeatEnd, ColRepeatCount, RepeatColumns };

    explicit frmQM730Prg_PTN(ScreenContext &context, QWidget *parent = nullptr);
    ~frmQM730Prg_PTN() override;

    // The selected pattern (lblPattern), 0 while none is.
    int selectedPattern() const;
    bool CellDirty() const;
    int ChangedWord() const;
    bool RegraphPending() const { return m_regraphPending; }
    ProgramCurve *curve() const { return m_curve; }
    const TextTable &runSegList() const { return sprdRunSeg_List; }

    // Limits of an alarm cell for the object (0 temperature, 1 humidity) and
    // type of its row; none for the other columns.
    struct Limits {
        double low;
        double high;
    };
    static std::optional<Limits> alarmLimits(int column, int object, int type, double firmwareVersion,
                                             bool patternSelected = true);

public slots:
    void tmrRefresh_Timer();
    void tmrRegraph_Timer();

protected:
    void done(int result) override;

private:
    void buildControls();
    void load();
    void unload();

    // sprdPattern
    void fillPatternList();
    void fillPatternCell(int pattern, int column);
    QString patternCellText(int pattern, int column) const;
    void selectPattern(int pattern);
    void startModeClicked(int pattern, int column);
    QString patternChanged(int pattern, int column, const QString &text);
    void patternFinished(int pattern, int column, const QString &text);
    qint64 patternEntryWord(int pattern, int column, const QString &text) const;

    // sprdAlarm and sprdRepeat
    void fillAlarms();
    void fillRepeats();
    void alarmClicked(int row, int column);
    void chooseAlarmType(int row);
    QString alarmChanged(int row, int column, const QString &text);
    void alarmFinished(int row, int column, const QString &text);
    qint64 alarmEntryWord(int column, const QString &text) const;
    QString repeatChanged(int row, int column, const QString &text);
    void repeatFinished(int row, int column, const QString &text);

    void abandoned(QTableWidget *table, int row, int column);
    void openSegments();
    QTableWidgetItem *cell(QTableWidget *table, int row, int column);

    ScreenContext &m_ctx;
    ConsoleState &m_state;
    std::unique_ptr<ProgramWriter> m_writer;
    bool m_regraphPending = false;
    bool m_unloaded = false;
    TextTable sprdRunSeg_List{QStringLiteral("sprdRunSeg_List"), 5, 0};

    QTimer tmrRefresh{this};
    QTimer tmrRefresh_ID{this};
    QTimer tmrUnload{this};
    QTimer tmrRegraph{this};

    QLabel *lblMC_No;
    QLabel *lblPattern;
    QTableWidget *sprdPattern;
    QGroupBox *fraAlarm;
    QTableWidget *sprdAlarm;
    QTableWidget *sprdRepeat;
    ProgramCurve *m_curve;
    QCheckBox *btn3D;
    QPushButton *btnGo_Segment;
    QPushButton *btnClose;
};
