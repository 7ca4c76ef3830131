// The status board: blocks of three rows, its figures and the humidity rule,
// a silent machine, the colours and their file.
#include "MultiFixture.h"
#include "Files.h"
#include "Dictionary.h"
#include "MultiColor.h"
#include "frmQM730_TMon.h"
#include <QAction>
#include <QItemSelectionModel>
#include <QMenu>

using Bench = MultiBench<frmQM730_TMon>;
using B = frmQM730_TMon;

namespace {
QString colourPath(const Bench &b)
{
    return programPath(b.home.path(), QStringLiteral("CFG/MultiColor.CFG"));
}
QColor windows(int bgr)
{
    return QColor(bgr & 0xFF, (bgr >> 8) & 0xFF, (bgr >> 16) & 0xFF);
}
} // namespace

class TestBoard : public QObject {
    Q_OBJECT
private slots:
    void blocksOfThreeRows()
    {
        Bench b;
        b.rcv(1, Rcv::TempPV, 65535);
        B &form = b.open();
        QCOMPARE(form.sheet().rows(), 9);
        QCOMPARE(b.text(1, B::ColLink), QStringLiteral("003"));
        QCOMPARE(b.text(4, B::ColLink), QStringLiteral("007"));
        for (int slot = 0; slot < 3; ++slot) {
            const int row = B::figureRow(slot);
            QCOMPARE(b.text(row, B::ColLink), QStringLiteral("良好"));
            QCOMPARE(b.text(row - 1, B::ColTempMV), QStringLiteral("MV"));
            QCOMPARE(b.text(row - 1, B::ColHumiSV), QStringLiteral("SV"));
        }
        // Burn-out of one figure (machine 7's temperature): the others of the block stay numbers.
        const std::tuple<int, int, const char *> cells[] = {
            {2, B::ColTempPV, "24.50"}, {2, B::ColTempMV, "12.50"}, {2, B::ColTempSV, "25.00"},
            {2, B::ColHumiPV, "58.3"},  {2, B::ColHumiMV, "30.20"}, {2, B::ColHumiSV, "60.0"},
            {5, B::ColTempPV, "---.--"}, {5, B::ColTempSV, "25.00"}, {5, B::ColHumiMV, "30.20"}};
        for (const auto &[row, col, text] : cells)
            QVERIFY2(b.text(row, col) == QLatin1String(text), qPrintable(QStringLiteral("%1,%2").arg(row).arg(col)));

        // Read-only: a double click selects nothing.
        doubleClickCell(b.view("sprdList"), 2, B::ColTempPV);
        QVERIFY(b.view("sprdList")->selectionModel()->selectedIndexes().isEmpty());

        // Machine 3 falls silent: "不良" on red, its figures kept; the others go on.
        b.silenceWhileReadingsMove(0);
        form.tmrRefresh_Timer();
        QCOMPARE(b.text(2, B::ColLink), QStringLiteral("不良"));
        QCOMPARE(b.cell(2, B::ColLink).back, QColor(255, 0, 0));
        QCOMPARE(b.text(2, B::ColTempPV), QStringLiteral("24.50"));
        QCOMPARE(b.text(5, B::ColTempPV), QStringLiteral("30.00"));
    }

    void humidityOutOfControlRange_data()
    {
        QTest::addColumn<int>("tempPv");
        QTest::addColumn<int>("humiSv");
        QTest::addColumn<int>("humiPv");
        QTest::addColumn<bool>("limits"); // 5 to 80 degrees in words 70 and 71
        QTest::addColumn<QString>("shown");
        QTest::newRow("inside") << 12450 << 600 << 583 << true << "58.3";
        QTest::newRow("burn-out") << 12450 << 600 << 65535 << true << "---.-";
        QTest::newRow("no humidity SV") << 12450 << 0 << 583 << true << "---.-";
        QTest::newRow("SV 100") << 12450 << 1000 << 583 << true << "---.-";
        QTest::newRow("below the lower limit") << 10400 << 600 << 583 << true << "---.-";
        QTest::newRow("above the upper limit") << 18100 << 600 << 583 << true << "---.-";
        QTest::newRow("at the upper limit") << 18000 << 600 << 583 << true << "58.3";
        QTest::newRow("above 100 degrees, no limits read") << 20100 << 600 << 583 << false << "---.-";
        QTest::newRow("cold, no limits read") << 5000 << 600 << 583 << false << "58.3";
    }

    void humidityOutOfControlRange()
    {
        QFETCH(int, tempPv);
        QFETCH(int, humiSv);
        QFETCH(int, humiPv);
        QFETCH(bool, limits);
        QFETCH(QString, shown);
        Bench b;
        if (limits) {
            b.state.image.sprdUP.setNumber(1, 70, 18000);
            b.state.image.sprdUP.setNumber(1, 71, 10500);
        }
        b.rcv(2, Rcv::TempPV, tempPv);
        b.rcv(2, Rcv::HumiSV, humiSv);
        b.rcv(2, Rcv::HumiPV, humiPv);
        b.open();
        QCOMPARE(b.text(B::figureRow(2), B::ColHumiPV), shown);
    }

    void colourChangePaintsTheGroupAndIsKept()
    {
        // A file from an earlier day: machine 7's line is damaged.
        Bench b;
        QVERIFY(writeTextLinesAtomic(colourPath(b), {"255,65535,0,16777215", "garbage", "16711680,0,65280,255", "1,2,3,4"}));
        B &form = b.open();
        QCOMPARE(b.cell(2, 3).back, windows(255));
        QCOMPARE(b.cell(5, 3).back, windows(B::defaultColours().tempBack));
        QCOMPARE(b.cell(8, 9).fore, windows(255));

        // Right button on column 8 of machine 7: the humidity group takes the colour.
        QList<QColor> asked;
        form.setColourPicker([&](const QColor &present) {
            asked << present;
            return QColor(0x12, 0x34, 0x56);
        });
        QMetaObject::invokeMethod(b.view("sprdList"), "customContextMenuRequested",
                                  Q_ARG(QPoint, cellCentre(b.view("sprdList"), 5, 8)));
        auto *menu = child<QMenu>(form, "mEditColor");
        QTRY_VERIFY(menu->isVisible());
        child<QAction>(form, "mEditBackColor")->trigger();
        menu->close();
        QCOMPARE(asked, QList<QColor>{windows(B::defaultColours().humiBack)});
        for (int row = 4; row <= 6; ++row)
            for (int col = 7; col <= 10; ++col)
                QVERIFY(b.cell(row, col).back == QColor(0x12, 0x34, 0x56));
        QCOMPARE(b.cell(5, 5).back, windows(B::defaultColours().tempBack)); // the other group stands
        QCOMPARE(b.cell(8, 8).back, windows(65280));                       // and the other machines

        // Written whole: one line per machine, the damaged one now whole.
        const auto lines = readTextLines(colourPath(b));
        QVERIFY(lines);
        const BlockColours d = B::defaultColours();
        QCOMPARE(*lines, (QStringList{"255,65535,0,16777215",
                                      QStringLiteral("%1,%2,%3,%4").arg(d.tempBack).arg(d.tempFore).arg(0x563412).arg(d.humiFore),
                                      "16711680,0,65280,255"}));
        // The next opening shows the same.
        b.form.reset();
        b.open();
        QCOMPARE(b.cell(5, 10).back, QColor(0x12, 0x34, 0x56));
    }
};

QTEST_MAIN(TestBoard)
#include "tst_board.moc"
