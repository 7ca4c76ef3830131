#pragma once
#include "MultiColor.h"
#include <QDialog>
#include <QTimer>
#include <array>
#include <functional>

class ConsoleState;
class GroupHeaderView;
class QAction;
class QLabel;
class QMenu;
class QPushButton;
class QTableView;
class SheetModel;
struct ScreenContext;

// "多機監控": the wall display. Each machine of the list has a block of three
// rows in sprdList: titles, the large figures (temperature PV, MV, SV in
// columns 2, 3, 5; humidity PV, MV, SV in 7, 8, 10) and a gap. The two
// groups of a block take the colours the operator chose with the right
// mouse button, kept in CFG/MultiColor.CFG. It commands nothing; a machine
// that does not answer shows "不良" on red and keeps its last figures.
class frmQM730_TMon : public QDialog {
    Q_OBJECT
public:
    static constexpr int ColumnCount = 10;
    enum Column { ColLink = 1, ColTempPV = 2, ColTempMV = 3, ColTempSV = 5, ColHumiPV = 7, ColHumiMV = 8, ColHumiSV = 10 };
    // The sheet row of a slot's figures; its titles stand in the row above.
    static int figureRow(int slot) { return 3 * slot + 2; }

    // Colours of a block the board starts with when the file has none.
    static BlockColours defaultColours();

    explicit frmQM730_TMon(ScreenContext &context, QWidget *parent = nullptr);
    ~frmQM730_TMon() override;

    SheetModel &sheet() const { return *m_sheet; }
    // The colour dialog, replaceable (tests): the present colour in, the chosen
    // one out, an invalid colour when the operator cancels.
    void setColourPicker(std::function<QColor(const QColor &)> picker) { m_pick = std::move(picker); }

public slots:
    void tmrRefresh_Timer();
    // The pop-up menu's choices for the cell last clicked with the right button.
    void mEditFontColor_Click();
    void mEditBackColor_Click();

protected:
    void done(int result) override;

private:
    using RowSource = std::array<QString, 7>; // sprdRCV rows 1 to 6 and the limits

    void buildSheet();
    void drawSlot(int slot, const QString &limits, double upper, double lower, bool limitsKnown);
    void paintGroup(int slot, bool humidity, const BlockColours &colours);
    BlockColours blockColours(int slot) const;
    void saveColours();
    void showMenu(const QPoint &pos);
    void editColour(bool fore);

    ScreenContext &m_ctx;
    ConsoleState &m_state;
    SheetModel *m_sheet;
    QTableView *sprdList;
    GroupHeaderView *m_header;
    QMenu *mEditColor;
    QAction *mEditFontColor;
    QAction *mEditBackColor;
    QLabel *Label1;
    QPushButton *btnClose;
    QVector<RowSource> m_drawn;
    QVector<int> m_linkShown;
    QVector<BlockColours> m_colours;
    int m_menuRow = 0; // the cell of the pop-up menu
    int m_menuCol = 0;
    std::function<QColor(const QColor &)> m_pick;
    bool m_loaded = false;

    QTimer tmrRefresh{this};
};
