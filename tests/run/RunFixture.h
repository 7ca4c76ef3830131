#pragma once
#include "ConsoleState.h"
#include "Dictionary.h"
#include "LiveStatus.h"
#include "ScreenBench.h"
#include "Widgets.h"
#include "frmQM730_RunSimple.h"
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <memory>

// Machine 7 in the foreground, online, its tables as a chamber stopped in
// fixed mode at 25.00 degrees and 60.0 % leaves them. The screen is made by
// open(), after the test has set the tables its load should see.
struct RunBench {
    using Rows = std::initializer_list<std::pair<int, qint64>>;
    QTemporaryDir home;
    ScreenBench bench{home.path(), {}};
    ConsoleState &state = bench.state;
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
        up(Param::btnSensorType2, 0, 1);       // a humidity sensor: not temperature-only
        up(Param::txtT_SV, 0, 1);
        up(Param::txtH_SV, 0, 1);
        up(Param::txtDryTemp_Range, 1, 18000); // humidity controlled from 5 to 80 degrees
        up(Param::txtDryTemp_Range, 0, 10500);
        up(Param::btnAT_Button, 0, 1);
    }

    void rrp(int row, qint64 v) { state.image.sprdRRP.setNumber(1, row, v); }
    void rcv(int row, qint64 v) { state.image.sprdRCV.setNumber(1, row, v); }
    void rrp(Rows rows) { for (const auto &[r, v] : rows) rrp(r, v); }
    void rcv(Rows rows) { for (const auto &[r, v] : rows) rcv(r, v); }
    void up(Param p, int i, qint64 v) { state.image.sprdUP.setNumber(1, RowOf(p, i, state.FirmwareVersion()), v); }

    frmQM730_RunSimple &open()
    {
        form = std::make_unique<frmQM730_RunSimple>(bench.ctx);
        return *form;
    }
    void tick() { form->tmrDisp_Timer(); }
    void graphTick() // the graph timer, then the display tick
    {
        form->tmrDispGraph_Timer();
        form->tmrDisp_Timer();
    }
    void setOnline(bool on) { state.machines[0].MachineOnline = on; }

    // A control by name, or a member of a control array by its index.
    template <typename T = QWidget> T *find(const char *name, int index = -1) const
    {
        return index < 0 ? form->findChild<T *>(QLatin1String(name)) : indexed<T>(*form, name, index);
    }
    QString text(const char *name) const
    {
        if (auto *l = find<QLabel>(name))
            return l->text();
        auto *e = find<QLineEdit>(name);
        return e ? e->text() : QString();
    }
    // The expected texts the screen does not show, with what it shows instead; empty when all match.
    QString differ(std::initializer_list<std::pair<const char *, const char *>> expected) const
    {
        QStringList out;
        for (const auto &[name, want] : expected)
            if (text(name) != QString::fromUtf8(want))
                out << QStringLiteral("%1 = %2, not %3").arg(QLatin1String(name), text(name), QString::fromUtf8(want));
        return out.join(QStringLiteral("; "));
    }
    // Visible within the screen, whether or not the screen itself is shown.
    bool shown(const char *name) const
    {
        QWidget *w = find(name);
        return w && w->isVisibleTo(form.get());
    }
    bool lit(const char *name, int index = -1) const { return find<QPushButton>(name, index)->property("Lit").toBool(); }
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
    void click(const char *name, int index = -1) { QTest::mouseClick(find<QPushButton>(name, index), Qt::LeftButton); }
    // The operator types a value into a field and presses Enter.
    void enter(const char *name, const QString &value)
    {
        auto *e = find<QLineEdit>(name);
        e->selectAll();
        QTest::keyClicks(e, value);
        QTest::keyClick(e, Qt::Key_Return);
    }
    // The mailbox as the scheduler will take it: code, index and data word.
    QList<int> mail() const
    {
        return {state.ReqCmd, state.ReqIndex, (quint8(state.ReqData[0]) << 8) | quint8(state.ReqData[1])};
    }
};
