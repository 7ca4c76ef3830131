#pragma once
#include "TextTable.h"
#include <QDialog>
#include <QTimer>
#include <memory>

class ConsoleState;
class ProgramCurve;
class ProgramWriter;
class QCheckBox;
class QLabel;
class QPrinter;
class QPushButton;
class QTableWidget;
class QTableWidgetItem;
struct ScreenContext;

// "程式設定(程式段設定)": the segments of a pattern on the foreground machine.
// sprdPattern chooses the pattern; sprdSegment shows its segments, one row
// each (set values, time, wait flag, alarms, time signals), and takes new
// ones: typing in a row past the last segment adds the rows up to it, a click
// on a row heading deletes that segment and moves the later ones up.
// sprdTimeSignal shows the eight time signals of the selected segment. Every
// change goes out at once as words of the segment (or the new count with the
// segments behind it), each read back; the screen then shows what the
// controller kept. The curve and the sheet can be printed.
class frmQM730Prg_SEG : public QDialog {
    Q_OBJECT
public:
    // Columns of sprdSegment, from 0.
    enum SegmentColumn {
        ColTemp,
        ColHumi,
        ColHours,
        ColMinutes,
        ColWait,
        ColSpare, // hidden
        ColAlarm1,
        ColSignal1 = ColAlarm1 + 4,
        SegmentColumns = ColSignal1 + 8
    };
    // Columns of sprdTimeSignal, from 0: the ON and OFF cells, the two
    // numbers of the first time and of the second.
    enum SignalColumn { ColOn, ColOff, ColTime1First, ColTime1Second, ColTime2First, ColTime2Second, SignalColumns };

    // Opened from the menu the screen opens the program image itself; the
    // pattern editor, which has it open, passes imageOpen and its pattern
    // (0 for none chosen).
    explicit frmQM730Prg_SEG(ScreenContext &context, QWidget *parent = nullptr, int pattern = 0,
                             bool imageOpen = false);
    ~frmQM730Prg_SEG() override;

    int selectedPattern() const;  // lblPattern, 0 while none
    int selectedSegment() const;  // lblSegment, 0 while none
    int shownSegmentCount() const; // lblSegCount
    bool CellDirty() const;
    int ChangedWord() const;
    ProgramCurve *curve() const { return m_curve; }

    // The sheet (the segments of the selected pattern as a table) and the
    // curve on a printer, a PDF file included.
    // False when the printer (or file) can't be opened.
    bool printSheet(QPrinter &printer);
    bool printGraph(QPrinter &printer);
    // Both into a PDF file; false when the file can't be written.
    Q_INVOKABLE bool printSheetToPdf(const QString &path);
    Q_INVOKABLE bool printGraphToPdf(const QString &path);

public slots:
    void tmrRefresh_Timer();

protected:
    void done(int result) override;

private:
    void buildControls();
    void load(int pattern);
    void unload();

    void selectPattern(int pattern);
    void clearSegments();
    void fillSegmentRow(int segment);
    void fillTimeSignals(int segment);
    void segmentClicked(int row, int column);
    void headingClicked(int row);
    void enteringCell(int row, int column);
    void toggleWait(int segment);
    void toggleAlarm(int segment, int column);
    void openTimeSignals(int segment);
    QString segmentChanged(int segment, int column, const QString &text);
    void segmentFinished(int segment, int column, const QString &text);
    void addSegments(int lastSegment);
    void deleteSegment(int segment);
    void signalClicked(int row, int column);
    QString signalChanged(int row, int column, const QString &text);
    void signalFinished(int row, int column, const QString &text);
    void abandoned(QTableWidget *table);
    void print(bool sheet);
    QString cellText(QTableWidget *table, int row, int column) const;
    int patternWordOf(int word) const;
    int segmentWordOf(int segment, int word) const;

    ScreenContext &m_ctx;
    ConsoleState &m_state;
    std::unique_ptr<ProgramWriter> m_writer;
    bool m_fromPatternEditor;
    bool m_unloaded = false;
    TextTable sprdRunSeg_List{QStringLiteral("sprdRunSeg_List"), 5, 0};

    QTimer tmrRefresh{this};
    QTimer tmrRefresh_ID{this};
    QTimer tmrUnload{this};

    QLabel *lblMC_No;
    QLabel *lblPattern;
    QLabel *lblSegment;
    QLabel *lblSegCount;
    QLabel *lblMSG;
    QTableWidget *sprdPattern;
    QTableWidget *sprdSegment;
    QTableWidget *sprdTimeSignal;
    ProgramCurve *m_curve;
    QCheckBox *btn3D;
    QPushButton *btnPrintGraph;
    QPushButton *btnPrintSheet;
    QPushButton *btnClose;
};
