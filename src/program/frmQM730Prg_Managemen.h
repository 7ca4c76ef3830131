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
class QLineEdit;
class QPushButton;
class QTableWidget;
struct ScreenContext;

// "程式管理": copies a pattern onto another, copies a run of segments to any
// place of any pattern (the same one included, overlapping or not), and
// clears a pattern, on the foreground machine. The image takes the change
// first, then the controller gets the pattern (and the segments it now
// holds) and the result is read back. The list of patterns and the curve of
// the source pattern help to choose.
class frmQM730Prg_Managemen : public QDialog {
    Q_OBJECT
public:
    explicit frmQM730Prg_Managemen(ScreenContext &context, QWidget *parent = nullptr);
    ~frmQM730Prg_Managemen() override;

    ProgramCurve *curve() const { return m_curve; }

    // What each entry box becomes when its entry is complete.
    struct Choice {
        int sourcePattern, firstSegment, lastSegment, targetPattern, targetSegment;
    };
    Choice choice() const;

public slots:
    void tmrRefresh_Timer();

protected:
    void done(int result) override;

private:
    void buildControls();
    void load();
    void unload();
    void sourcePatternEntered();
    void sourceSegmentsEntered();
    void targetPatternEntered();
    void targetSegmentEntered();
    void showSource(int pattern);
    void showTarget(int pattern);
    void copyPattern();
    void copySegments();
    void clearPattern();
    int countOf(int pattern) const;

    ScreenContext &m_ctx;
    ConsoleState &m_state;
    std::unique_ptr<ProgramWriter> m_writer;
    bool m_unloaded = false;
    TextTable sprdRunSeg_List{QStringLiteral("sprdRunSeg_List"), 5, 0};
    // The copied words, so that a copy within one pattern may overlap.
    TextTable sprdCopyBuf{QStringLiteral("sprdCopyBuf"), 2900, 1};

    QTimer tmrRefresh{this};
    QTimer tmrRefresh_ID{this};
    QTimer tmrUnload{this};

    QLabel *lblMC_No;
    QLineEdit *txtSource_Pattern;
    QLabel *lblSource_SegCnt;
    QLineEdit *txtSource_Seg1;
    QLineEdit *txtSource_Seg2;
    QLineEdit *txtTarget_Pattern;
    QLabel *lblTarget_SegCnt;
    QLineEdit *txtTarget_Seg1;
    QPushButton *btnCopyPattern;
    QPushButton *btnCopySegments;
    QPushButton *btnInit_Pattern;
    QTableWidget *sprdPattern;
    ProgramCurve *m_curve;
    QCheckBox *btn3D;
    QPushButton *btnClose;
};
