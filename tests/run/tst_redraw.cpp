// The once-a-second redraw of the single-chamber console from the tables.
#include "RunFixture.h"
#include "RunPictures.h"
#include "ButtonColour.h"
#include "LampStrip.h"
#include "TrendChart.h"
#include <QTabWidget>
#include <QTimer>

// Present values and what decides whether humidity is under control.
struct Reading {
    double firmware;
    int targetHumidity; // value x 10
    int tempPv;         // (value + 100) x 100
    int humiPv;         // value x 10
    int upperLimit;     // the dry-bulb range of humidity control, encoded as tempPv
    const char *temperature, *humidity;
};
Q_DECLARE_METATYPE(Reading)
// Row 27's flags; the pictures the screen shows for them, the soak and wait texts.
struct Ramp {
    int flags;
    QString rampCell, temperaturePicture, humidityPicture, soak, wait;
};
Q_DECLARE_METATYPE(Ramp)

namespace {
QStringList lampCaptions(const RunBench &b)
{
    QStringList out;
    for (int i = 0; i < 6; ++i)
        if (auto *l = b.find<QLabel>("lblSTS_TT", i); l->isVisibleTo(b.form.get()))
            out << l->text();
    return out;
}
QList<int> litLamps(const RunBench &b, const char *strip)
{
    QList<int> on;
    auto *s = b.find<LampStrip>(strip);
    for (int n = 1; n <= s->count(); ++n)
        if (s->isLit(n))
            on << n;
    return on;
}
} // namespace

class TestRunRedraw : public QObject {
    Q_OBJECT
private slots:
    void wordsReachTheirControls()
    {
        RunBench b;
        b.rcv({{Rcv::RunHours, 12}, {Rcv::RunMinutes, 5}, {Rcv::RunSeconds, 9}, {Rcv::SegElapsedHours, 1},
               {Rcv::SegElapsedMinutes, 2}, {Rcv::SegTotalHours, 3}, {Rcv::SegTotalMinutes, 4}, {Rcv::RunPattern, 5},
               {Rcv::RunSegment, 6}, {Rcv::PatternRepeatDone, 1}, {Rcv::PatternRepeatTotal, 2},
               {Rcv::SegmentRepeatDone, 3}, {Rcv::SegmentRepeatTotal, 4}, {Rcv::TempSV, 11000}, {Rcv::HumiSV, 450}});
        b.rrp(Rrp::TempPID, 3);
        b.open();
        // Stopped, the setpoint fields show the targets.
        QCOMPARE(b.differ({{"lblTPV", "24.50"}, {"lblNSV_T", "10.00"}, {"lblSV_T", "25.00"}, {"lblMV_T", "12.50"},
                           {"lblHPV", "58.3"}, {"lblNSV_H", "45.0"}, {"lblSV_H", "60.0"}, {"lblMV_H", "30.20"},
                           {"lblPID_T", "03"}, {"lblTonly_Sts_PID", "03"}, {"txtPID_T", "3"},
                           {"lblRunTime", "0012:05:09"}, {"lblRunTime_STS", "0012:05:09"},
                           {"lblSeg_Time", "0001:02/0003:04"}, {"lblPTN_SEG", "005:006"}, {"lblPTN_RPT", "001/002"},
                           {"lblSEG_RPT", "003/004"}, {"lblG_SV_T", "溫度 SV : 10.00"}, {"lblG_PV_H", "濕度 PV : 58.3"},
                           {"txtTSV", "25.00"}, {"txtTOnly_Ctrl_SV", "25.00"}, {"txtHSV", "60.0"}}),
                 QString());

        // Running, the present setpoints, with the controller's resolution.
        b.rrp(Rrp::Run, 1);
        b.state.image.setTempDecimals(1);
        b.tick();
        QCOMPARE(b.differ({{"txtTSV", "10.0"}, {"txtTOnly_Ctrl_SV", "10.0"}, {"txtHSV", "45.0"}, {"lblTPV", "24.5"}}),
                 QString());
        QVERIFY(b.find<QPushButton>("btnDate")->text().startsWith(QDate::currentDate().toString(Qt::ISODate)));
    }

    // A present value is dashed and its ramp picture hidden on a burn-out, and humidity also
    // outside its control range; the next good reading brings both back.
    void dashedPresentValues_data()
    {
        QTest::addColumn<Reading>("r");
        QTest::newRow("under control") << Reading{2.3, 600, 12450, 583, 18000, "24.50", "58.3"};
        QTest::newRow("burn-out") << Reading{2.3, 600, 65535, 65535, 18000, "---.--", "---.-"};
        QTest::newRow("target 0") << Reading{2.3, 0, 12450, 583, 18000, "24.50", "---.-"};
        QTest::newRow("target 100") << Reading{2.3, 1000, 12450, 583, 18000, "24.50", "---.-"};
        QTest::newRow("below the lower limit") << Reading{2.3, 600, 10400, 583, 18000, "4.00", "---.-"};
        QTest::newRow("above the upper limit") << Reading{2.3, 600, 18100, 583, 18000, "81.00", "---.-"};
        QTest::newRow("above 100 degrees") << Reading{2.3, 600, 20100, 583, 25000, "101.00", "---.-"};
        QTest::newRow("legacy rows, under control") << Reading{2.1, 600, 12450, 583, 18000, "24.50", "58.3"};
        QTest::newRow("legacy rows, above the limit") << Reading{2.1, 600, 18100, 583, 18000, "81.00", "---.-"};
    }

    void dashedPresentValues()
    {
        QFETCH(Reading, r);
        RunBench b(r.firmware); // lower limit 5 degrees
        b.open();
        // The rows of the other layout hold limits that would decide otherwise.
        for (int row : r.firmware < 2.2 ? QList<int>{70, 71} : QList<int>{52, 53})
            b.state.image.sprdUP.setNumber(1, row, 10000);
        b.up(Param::txtDryTemp_Range, 1, r.upperLimit);
        b.rrp(Rrp::HumiTargetSV, r.targetHumidity);
        b.rcv({{Rcv::TempPV, r.tempPv}, {Rcv::HumiPV, r.humiPv}});
        b.tick();
        const char *t = r.temperature, *h = r.humidity;
        QCOMPARE(b.differ({{"lblTPV", t}, {"lblPV_T", t}, {"lblHPV", h}, {"lblPV_H", h}}), QString());
        QCOMPARE(b.shown("picUPDN_T"), t[0] != '-');
        QCOMPARE(b.shown("picUPDN_H"), h[0] != '-');

        b.up(Param::txtDryTemp_Range, 1, 18000);
        b.rrp(Rrp::HumiTargetSV, 600);
        b.rcv({{Rcv::TempPV, 12000}, {Rcv::HumiPV, 500}});
        b.tick();
        QCOMPARE(b.differ({{"lblTPV", "20.00"}, {"lblHPV", "50.0"}}), QString());
        QVERIFY(b.shown("picUPDN_T") && b.shown("picUPDN_H"));
    }

    void runStatusOnlyZeroOrOne()
    {
        RunBench b;
        frmQM730_RunSimple &form = b.open();
        // Any word other than 0 and 1 leaves the buttons and ChamberRunning as they were.
        for (auto [word, running] : {std::pair{0, false}, {2, false}, {1, true}, {2, true}, {65535, true}, {0, false}}) {
            b.rrp(Rrp::Run, word);
            b.tick();
            QCOMPARE(form.ChamberRunning(), running);
            QCOMPARE(b.lit("btnRun"), running);
            QCOMPARE(b.lit("btnStop"), !running);
        }
    }

    void linkLostFreezesTheScreen()
    {
        RunBench b;
        b.rrp(Rrp::Run, 1);
        frmQM730_RunSimple &form = b.open();
        auto *smile = b.find<QLabel>("Image1");
        b.graphTick();
        const int points = form.graph()->pointCount();
        QVERIFY(points > 0);

        b.setOnline(false);
        b.rcv(Rcv::TempPV, 13000);
        b.rrp(Rrp::Run, 0);
        b.graphTick();
        QCOMPARE(smile->toolTip(), QStringLiteral("通訊 : 不良"));
        QCOMPARE(smile->pixmap().toImage(), RunPictures::load(RunPictures::SmileNg).toImage());
        QCOMPARE(b.text("lblTPV"), QStringLiteral("24.50"));
        QVERIFY(b.lit("btnRun"));
        QCOMPARE(form.graph()->pointCount(), points);

        b.setOnline(true);
        b.tick();
        QCOMPARE(smile->toolTip(), QStringLiteral("通訊 : 良好"));
        QCOMPARE(smile->pixmap().toImage(), RunPictures::load(RunPictures::SmileOk).toImage());
        QCOMPARE(b.text("lblTPV"), QStringLiteral("30.00"));
        QVERIFY(b.lit("btnStop"));
    }

    void modeDecidesWhatIsShown()
    {
        RunBench b;
        b.up(Param::txtT_SV, 0, 0); // no present-SV row of temperature in a fixed run
        b.open();
        auto *tab = b.find<QTabWidget>("SSTab1");
        const auto programRows = {"txtTSV", "lblTSV_T", "txtHSV", "lblHSV_T", "lblRunPTN_LBL",
                                  "lblRunSEG_LBL", "lblRunPTN", "lblRunSEG", "btnStep", "btnHold"};
        // Fixed and stopped: setpoints editable, no auto-tuning.
        QVERIFY(b.lit("btnRunMode", 1) && !b.lit("btnRunMode", 0));
        QVERIFY(tab->isTabVisible(1) && !tab->isTabVisible(0));
        QCOMPARE(b.hidden({"txtTSV", "lblTSV_T", "txtHSV", "lblHSV_T"}), QStringList());
        QVERIFY(!b.find<QLineEdit>("txtTSV")->isReadOnly());
        QVERIFY(!b.shown("btnTAT") && !b.shown("btnHAT"));
        b.view(1);
        QVERIFY(!b.shown("lblNSV_T") && b.shown("lblNSV_H"));
        b.view(0);

        // Fixed and running: auto-tuning exactly when the parameter offers it.
        b.rrp(Rrp::Run, 1);
        b.tick();
        QVERIFY(b.shown("btnTAT") && b.shown("btnHAT"));
        b.up(Param::btnAT_Button, 0, 0);
        b.tick();
        QVERIFY(!b.shown("btnTAT") && !b.shown("btnHAT"));

        // Program and running; then stopped, when all of them go.
        b.rcv(Rcv::RunMode, 0);
        b.tick();
        QVERIFY(tab->isTabVisible(0) && !tab->isTabVisible(1));
        QVERIFY(b.lit("btnRunMode", 0) && b.find<QLineEdit>("txtTSV")->isReadOnly());
        QCOMPARE(b.hidden(programRows), QStringList());
        b.view(1);
        QVERIFY(b.shown("lblNSV_T"));
        b.view(0);
        b.rrp(Rrp::Run, 0);
        b.tick();
        QCOMPARE(b.hidden(programRows).size(), int(programRows.size()));
    }

    void temperatureOnlyView()
    {
        RunBench b;
        b.up(Param::btnSensorType2, 0, 0);
        b.open();
        // Fixed mode: only TEMP.SV, no present SV.
        QCOMPARE(b.hidden({"picTOnly_Ctrl", "txtTOnly_Ctrl_SV", "lblTOnly_CtrlPV"}), QStringList());
        QVERIFY(!b.shown("lblHPV") && !b.shown("txtTOnly_Ctrl_PTN") && !b.shown("txtTOnly_Ctrl_SEG"));
        QCOMPARE(b.text("lblTOnly_CtrlPV"), QStringLiteral("24.50"));
        b.view(1);
        QVERIFY(b.shown("picTOnly_Sts") && !b.shown("lblTonly_Sts_NSV"));
        QCOMPARE(b.differ({{"lblTonly_Sts_TSV", "25.00"}, {"lblTonly_Sts_MV", "12.50"}}), QString());

        // Program mode: pattern, segment and the present SV.
        b.rcv(Rcv::RunMode, 0);
        b.tick();
        QVERIFY(b.shown("lblTonly_Sts_NSV"));
        b.view(0);
        QCOMPARE(b.hidden({"txtTOnly_Ctrl_PTN", "txtTOnly_Ctrl_SEG"}), QStringList());
        QVERIFY(!b.shown("txtTOnly_Ctrl_SV"));

        // A humidity sensor has the normal display; so has any firmware below 2.2.
        b.up(Param::btnSensorType2, 0, 2);
        b.tick();
        QVERIFY(!b.shown("picTOnly_Ctrl") && b.shown("lblHPV"));
        RunBench legacy(2.1);
        legacy.state.image.sprdUP.setNumber(1, 46, 0);
        legacy.open();
        QVERIFY(!legacy.shown("picTOnly_Ctrl"));
    }

    void lampsAndPanelPages()
    {
        RunBench b;
        b.rcv({{Rcv::IsOnBits, 0x5205}, {Rcv::TsDsDrBits, 0x0680}, {Rcv::AlarmBits, 0x0021}, {Rcv::DiBits, 0x0080}});
        b.open();
        const std::pair<const char *, QList<int>> lamps[] = {
            {"sprdIS", {1, 3}}, {"sprdTON", {2}}, {"sprdHON", {1, 3}}, {"sprdTS", {8}}, {"sprdDS", {2}},
            {"sprdDR", {1}},    {"sprdPAS", {1}}, {"sprdSAS", {2}},    {"sprdDI", {8}}};
        for (const auto &[strip, on] : lamps)
            QCOMPARE(litLamps(b, strip), on);

        // A click on a caption turns the page.
        b.view(1);
        const QStringList first{"D/I", "T/S", "P.AS", "S.AS"};
        QCOMPARE(lampCaptions(b), first);
        QVERIFY(b.shown("sprdPAS") && !b.shown("sprdTON"));
        QTest::mouseClick(b.find<QLabel>("lblSTS_TT", 3), Qt::LeftButton);
        QCOMPARE(lampCaptions(b), (QStringList{"D/I", "I/S", "T.ON", "D/S"}));
        QCOMPARE(b.hidden({"sprdDI", "sprdIS", "sprdTON", "sprdHON", "sprdDS", "sprdDR"}), QStringList());
        QVERIFY(!b.shown("sprdPAS"));
        QTest::mouseClick(b.find<QLabel>("lblSTS_TT", 0), Qt::LeftButton);
        QCOMPARE(lampCaptions(b), first);

        // Below firmware 2.2 the panel has one page, whatever is clicked.
        RunBench legacy(2.1);
        legacy.rcv(Rcv::AlarmBits, 0x0021);
        frmQM730_RunSimple &old = legacy.open();
        legacy.view(1);
        const QStringList captions{"I/S", "T/S", "D/I", "A/S"};
        QCOMPARE(lampCaptions(legacy), captions);
        QVERIFY(legacy.shown("sprdAS") && !legacy.shown("sprdPAS"));
        QCOMPARE(litLamps(legacy, "sprdAS"), (QList<int>{1, 6}));
        QWidget *panel = legacy.find("lblSTS_TT", 0)->parentWidget(); // not the clock above it
        const QImage before = panel->grab().toImage();
        QTest::mouseClick(legacy.find<QLabel>("lblSTS_TT", 1), Qt::LeftButton);
        legacy.tick();
        QCOMPARE(old.StatusPage(), 1);
        QCOMPARE(lampCaptions(legacy), captions);
        QCOMPARE(panel->grab().toImage(), before);
    }

    void rampFlags_data()
    {
        QTest::addColumn<Ramp>("r");
        using namespace RunPictures;
        const QString no;
        QTest::newRow("temperature rising") << Ramp{0x80, RampUpCell, TempUp, no, no, no};
        QTest::newRow("temperature soak") << Ramp{0x40, no, no, no, "T", no};
        QTest::newRow("temperature falling") << Ramp{0x20, RampDownCell, TempDown, no, no, no};
        QTest::newRow("temperature wait reads H") << Ramp{0x10, no, no, no, no, "H"};
        QTest::newRow("humidity rising") << Ramp{0x08, RampUpCell, no, HumiUp, no, no};
        QTest::newRow("humidity soak") << Ramp{0x04, no, no, no, "H", no};
        QTest::newRow("humidity falling") << Ramp{0x02, RampDownCell, no, HumiDown, no, no};
        QTest::newRow("humidity wait") << Ramp{0x01, no, no, no, no, "H"};
        QTest::newRow("temperature up, humidity down") << Ramp{0x82, RampDownCell, TempUp, HumiDown, no, no};
    }

    void rampFlags()
    {
        QFETCH(Ramp, r);
        RunBench b;
        b.rcv(Rcv::RampFlags, r.flags);
        b.open();
        auto picture = [](const QString &name) { return name.isEmpty() ? QImage() : RunPictures::load(name).toImage(); };
        auto *updn = b.find<LampStrip>("sprdUPDN");
        QCOMPARE(updn->isLit(1), !r.rampCell.isEmpty());
        QCOMPARE(updn->cellPixmap().toImage(), picture(r.rampCell));
        QCOMPARE(b.find<QLabel>("picUPDN_T")->pixmap().toImage(), picture(r.temperaturePicture));
        QCOMPARE(b.find<QLabel>("picUPDN_H")->pixmap().toImage(), picture(r.humidityPicture));
        for (const auto &[name, text] : {std::pair{"sprdSOAK", r.soak}, std::pair{"sprdWAIT", r.wait}}) {
            QCOMPARE(b.find<LampStrip>(name)->cellText(), text);
            QCOMPARE(b.find<LampStrip>(name)->isLit(1), !text.isEmpty());
        }
    }

    void reservationPanel()
    {
        RunBench b;
        const int fields[] = {2026, 3, 1, 8, 5};
        for (int i = 1; i <= 5; ++i)
            b.up(Param::sprdDT_Reserve, i, fields[i - 1]);
        frmQM730_RunSimple &form = b.open();
        auto *blink = form.findChild<QTimer *>(QStringLiteral("tmrPreDate"));
        QVERIFY(!b.shown("picPreDate") && !blink->isActive());

        b.state.ParamChanged = true;
        b.tick();
        QVERIFY(b.shown("picPreDate"));
        QCOMPARE(b.differ({{"lblPreMsg", "預約運轉"}, {"lblReservedDate", "2026-03-01"}, {"lblReservedTime", "08:05:00"}}),
                 QString());
        QVERIFY(blink->isActive());
        // Each blink swaps the colours of the panel and of its message.
        auto colour = [&](const char *name) { return b.find(name)->palette().color(QPalette::Window); };
        form.tmrPreDate_Timer();
        const QColor panel = colour("picPreDate"), message = colour("lblPreMsg");
        QVERIFY(panel != message);
        form.tmrPreDate_Timer();
        QCOMPARE(colour("picPreDate"), message);
        QCOMPARE(colour("lblPreMsg"), panel);

        b.state.ParamChanged = false;
        b.tick();
        QVERIFY(!b.shown("picPreDate") && !blink->isActive());
    }

    void picturesBesideTheProgramWin()
    {
        QTemporaryDir folder;
        QDir(folder.path()).mkpath(QStringLiteral("Image"));
        QImage own(5, 7, QImage::Format_RGB32);
        own.fill(Qt::magenta);
        QVERIFY(own.save(folder.filePath(QStringLiteral("Image/BT_UP.bmp")), "BMP"));
        QCOMPARE(RunPictures::load(RunPictures::RampUpCell, folder.path()).size(), QSize(5, 7));
        // Missing beside the program: the built-in copy.
        const QPixmap builtIn = RunPictures::load(RunPictures::SmileNg, folder.path());
        QVERIFY(!builtIn.isNull());
        QCOMPARE(builtIn.toImage(), RunPictures::builtIn(RunPictures::SmileNg).toImage());
    }
};

QTEST_MAIN(TestRunRedraw)
#include "tst_redraw.moc"
