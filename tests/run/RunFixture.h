#pragma once
#include "ConsoleState.h"
#include "Dictionary.h"
#include "LiveStatus.h"
#include "RunLogger.h"
#include "ScreenBench.h"
#include "Widgets.h"
#include "frmQM730_RunSimple.h"
#include <QApplication>
#include <QFont>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <memory>

// A console with one machine (number 7) in the foreground, online, its tables
// filled by hand as a stopped chamber in fixed mode at 25.00 degrees and 60.0 %
// would leave them. The screen is made on demand, after the test has set the
// tables it wants the load to see.
struct RunBench {
    QTemporaryDir home;
    ScreenBench bench{home.path(), {}};
    ConsoleState &state = bench.state;
    RunLogger &logger = bench.recorder.runLog();
    std::unique_ptr<frmQM730_RunSimple> form;

    explicit RunBench(double firmware = 2.3)
    {
        state.setMachines({{7, {}, true}});
        state.CurrentMachine = 7;
        state.image.applyFirmware(firmware);
        state.image.setTempDecimals(2);
        for (int r = 1; r <= Rrp::Count; ++r)
            rrp(r, 0);
        for (int r = 1; r <= Rcv::Count; ++r)
            rcv(r, 0);
        rrp({{Rrp::TempPID, 1}, {Rrp::HumiPID, 1}, {Rrp::StartPattern, 1}, {Rrp::StartSegment, 1},
             {Rrp::TempTargetSV, 12500}, {Rrp::HumiTargetSV, 600}});
        rcv({{Rcv::TempSV, 12500}, {Rcv::TempPV, 12450}, {Rcv::TempMV, 1250}, {Rcv::HumiSV, 600}, {Rcv::HumiPV, 583},
             {Rcv::HumiMV, 3020}, {Rcv::RunMode, 1}});
        up(Param::btnSensorType2, 0, 1);   // a humidity sensor: not temperature-only
        up(Param::txtT_SV, 0, 1);
        up(Param::txtH_SV, 0, 1);
        up(Param::txtDryTemp_Range, 1, 18000); // humidity controlled from 5 to 80 degrees
        up(Param::txtDryTemp_Range, 0, 10500);
        up(Param::btnAT_Button, 0, 1);
    }

    void rrp(int row, qint64 v) { state.image.sprdRRP.setNumber(1, row, v); }
    void rcv(int row, qint64 v) { state.image.sprdRCV.setNumber(1, row, v); }
    void rrp(std::initializer_list<std::pair<int, qint64>> rows)
    {
        for (const auto &[row, v] : rows)
            rrp(row, v);
    }
    void rcv(std::initializer_list<std::pair<int, qint64>> rows)
    {
        for (const auto &[row, v] : rows)
            rcv(row, v);
    }
    void up(Param p, int i, qint64 v)
    {
        state.image.sprdUP.setNumber(1, RowOf(p, i, state.FirmwareVersion()), v);
    }

    frmQM730_RunSimple &open()
    {
        form = std::make_unique<frmQM730_RunSimple>(bench.ctx);
        return *form;
    }
    void tick() { form->tmrDisp_Timer(); }
    // A tick of the graph timer, then of the display.
    void graphTick()
    {
        form->tmrDispGraph_Timer();
        form->tmrDisp_Timer();
    }
    void setOnline(bool on) { state.machines[0].MachineOnline = on; }

    template <typename T = QWidget>
    T *find(const char *name) const
    {
        return form->findChild<T *>(QLatin1String(name));
    }
    // A member of a control array by its index.
    template <typename T = QWidget>
    T *find(const char *name, int index) const
    {
        return indexed<T>(*form, name, index);
    }
    QString text(const char *name) const
    {
        if (auto *l = find<QLabel>(name))
            return l->text();
        if (auto *e = find<QLineEdit>(name))
            return e->text();
        return {};
    }
    // Visible within the screen, whether or not the screen itself is shown.
    bool shown(const char *name) const
    {
        QWidget *w = find(name);
        return w && w->isVisibleTo(form.get());
    }
    bool lit(const char *name, int index = -1) const
    {
        auto *b = index < 0 ? find<QPushButton>(name) : find<QPushButton>(name, index);
        return b->property("Lit").toBool();
    }
    // The names among these that are not shown, so a failure says which.
    QStringList hidden(std::initializer_list<const char *> names) const
    {
        QStringList out;
        for (const char *n : names)
            if (!shown(n))
                out << QLatin1String(n);
        return out;
    }
    void view(int index) { find<QPushButton>("btnSelectView", index)->click(); }

    // The operator types a value into a field and presses Enter.
    void enter(const char *name, const QString &value)
    {
        auto *e = find<QLineEdit>(name);
        e->selectAll();
        QTest::keyClicks(e, value);
        QTest::keyClick(e, Qt::Key_Return);
    }

    // The mailbox as the scheduler will take it: code, index and data word.
    int word() const { return (quint8(state.ReqData[0]) << 8) | quint8(state.ReqData[1]); }
    QList<int> mail() const { return {state.ReqCmd, state.ReqIndex, word()}; }
    void click(const char *name, int index = -1)
    {
        QTest::mouseClick(index < 0 ? find<QPushButton>(name) : find<QPushButton>(name, index), Qt::LeftButton);
    }
};

// Traditional Chinese shapes for screens that render text.
inline void useChineseFont()
{
    QApplication::setFont(QFont(QStringLiteral("Noto Sans CJK TC")));
}
