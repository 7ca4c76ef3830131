// Renders the single-chamber console offscreen in its three views, one under
// the other, after ten minutes of a simulated program run (docs/run-simple.png):
//   QT_QPA_PLATFORM=offscreen run_simple_screenshot [out.png]
#include "RunFixture.h"
#include "RunLogger.h"
#include "SaveSettings.h"
#include <QPainter>
#include <cmath>
#include <cstdio>

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    QApplication::setFont(QFont(QStringLiteral("Noto Sans CJK TC")));
    const QString out = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QStringLiteral("run-simple.png");

    RunBench b;
    b.rrp({{Rrp::Run, 1}, {Rrp::StartPattern, 3}, {Rrp::TempPID, 2}, {Rrp::HumiPID, 4}, {Rrp::HumiTargetSV, 850}});
    b.rcv({{Rcv::RunMode, 0}, {Rcv::RunPattern, 3}, {Rcv::RunSegment, 2}, {Rcv::SegTotalHours, 1},
           {Rcv::SegTotalMinutes, 30}, {Rcv::PatternRepeatDone, 1}, {Rcv::PatternRepeatTotal, 5},
           {Rcv::SegmentRepeatTotal, 1}, {Rcv::IsOnBits, 0x1205}, {Rcv::TsDsDrBits, 0x0003}, {Rcv::DiBits, 0x0001},
           {Rcv::RampFlags, 0x88}});
    b.state.image.sprdTD.setText(1, 3 + 11, QStringLiteral("高溫高濕測試"));
    SaveSettings save = SaveSettings::defaults(b.home.path());
    save.SaveEnable = QStringLiteral("Yes");
    save.SaveFolder = QStringLiteral("C:\\QM730_DATA");
    b.bench.recorder.runLog().applySavedSettings(save);

    frmQM730_RunSimple &form = b.open();
    QDateTime clock(QDate(2026, 3, 1), QTime(8, 0, 0));
    form.setClock([&clock] { return clock; });
    form.show();
    if (!QTest::qWaitForWindowExposed(&form))
        return 1;

    // Ten minutes of a ramp from 25 to 60 degrees and from 60 to 85 %.
    for (int s = 0; s <= 600; ++s) {
        const double svT = 25 + 35 * s / 600.0, svH = 60 + 25 * s / 600.0;
        const double pvT = svT - 1.5 + 0.3 * std::sin(s / 9.0), pvH = svH - 3 + 0.8 * std::sin(s / 13.0);
        b.rcv({{Rcv::TempSV, std::lround((svT + 100) * 100)}, {Rcv::TempPV, std::lround((pvT + 100) * 100)},
               {Rcv::HumiSV, std::lround(svH * 10)}, {Rcv::HumiPV, std::lround(pvH * 10)},
               {Rcv::TempMV, std::lround((55 + 10 * std::sin(s / 30.0)) * 100)},
               {Rcv::HumiMV, std::lround((40 + 8 * std::cos(s / 25.0)) * 100)}, {Rcv::RunHours, 1},
               {Rcv::RunMinutes, 12 + s / 60}, {Rcv::RunSeconds, s % 60}, {Rcv::SegElapsedMinutes, s / 60}});
        b.graphTick();
        clock = clock.addSecs(1);
    }

    QImage sheet;
    for (int i = 0; i < 3; ++i) {
        b.view(i);
        QApplication::processEvents();
        const QImage view = form.grab().toImage();
        if (sheet.isNull()) {
            sheet = QImage(view.width(), view.height() * 3 + 16, QImage::Format_RGB32);
            sheet.fill(QColor(90, 90, 90));
        }
        QPainter(&sheet).drawImage(0, i * (view.height() + 8), view);
    }
    if (!sheet.save(out)) {
        std::fprintf(stderr, "cannot write %s\n", qPrintable(out));
        return 1;
    }
    std::printf("%s\n", qPrintable(out));
    return 0;
}
