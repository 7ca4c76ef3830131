#pragma once
#include "ConsoleState.h"
#include "LiveStatus.h"
#include "ScreenBench.h"
#include "SheetModel.h"
#include "Widgets.h"
#include <QApplication>
#include <QFont>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <memory>

// A line of machines 3, 7 and 12 (slots 0, 1, 2), all online, each with its
// tables filled as a chamber stopped in fixed mode at 25.00 degrees and 60.0 %
// leaves them; the screen is made on demand.
template <class Screen>
struct MultiBench {
    QTemporaryDir home;
    ScreenBench bench{home.path(), {3, 7, 12}};
    ConsoleState &state = bench.state;
    std::unique_ptr<Screen> form;

    MultiBench()
    {
        QApplication::setFont(QFont(QStringLiteral("Noto Sans CJK TC")));
        state.image.applyFirmware(2.3);
        for (int slot = 0; slot < 3; ++slot) {
            for (int r = 1; r <= Rrp::Count; ++r)
                rrp(slot, r, 0);
            for (int r = 1; r <= Rcv::Count; ++r)
                rcv(slot, r, 0);
            for (auto [r, v] : {std::pair{Rrp::TempPID, 1}, {Rrp::StartPattern, 1}, {Rrp::StartSegment, 1}})
                rrp(slot, r, v);
            for (auto [r, v] : {std::pair{Rcv::TempSV, 12500}, {Rcv::TempPV, 12450}, {Rcv::TempMV, 1250},
                                {Rcv::HumiSV, 600}, {Rcv::HumiPV, 583}, {Rcv::HumiMV, 3020}, {Rcv::RunMode, 1}})
                rcv(slot, r, v);
        }
    }

    void rrp(int slot, int row, qint64 v) { state.image.sprdRRP.setNumber(slot + 1, row, v); }
    void rcv(int slot, int row, qint64 v) { state.image.sprdRCV.setNumber(slot + 1, row, v); }
    void setOnline(int slot, bool on) { state.machines[slot].MachineOnline = on; }
    // One machine falls silent while new readings of 130.00 arrive for the first two slots.
    void silenceWhileReadingsMove(int slot)
    {
        setOnline(slot, false);
        rcv(0, Rcv::TempPV, 13000);
        rcv(1, Rcv::TempPV, 13000);
    }

    Screen &open()
    {
        form = std::make_unique<Screen>(bench.ctx);
        form->show();
        if (!QTest::qWaitForWindowExposed(form.get()))
            qFatal("screen not shown");
        return *form;
    }
    QTableView *view(const char *name) const { return child<QTableView>(*form, name); }
    const SheetModel::Cell &cell(int row, int col) const { return form->sheet().cell(row, col); }
    QString text(int row, int col) const { return cell(row, col).text; }

    // The mailbox as the scheduler will take it: code, index, data word and the slot it goes to.
    int word() const { return (quint8(state.ReqData[0]) << 8) | quint8(state.ReqData[1]); }
    QList<int> mail() const { return {state.ReqCmd, state.ReqIndex, word(), state.NextPollSlot}; }
    void clearMail()
    {
        state.ReqCmd = 0;
        state.NextPollSlot = -1;
    }
};

// The operator's mouse on a cell of a sheet (row and column from 1).
inline QPoint cellCentre(QTableView *view, int row, int col)
{
    const QModelIndex index = view->model()->index(row - 1, col - 1);
    view->scrollTo(index);
    return view->visualRect(index).center();
}
inline void clickCell(QTableView *view, int row, int col, Qt::MouseButton button = Qt::LeftButton)
{
    QTest::mouseClick(view->viewport(), button, {}, cellCentre(view, row, col));
}
inline void doubleClickCell(QTableView *view, int row, int col)
{
    const QPoint at = cellCentre(view, row, col);
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, at);
    QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, at);
}
