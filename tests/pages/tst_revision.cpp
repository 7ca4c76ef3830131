// The revision pages: points that must rise within their bounds, the offset
// row of the sensor type, "初始化" as one block (and the legacy offset after
// it), the graph, and the present value.
#include "PageFixture.h"
#include "frmQM730SYS_Revision.h"

namespace {

// The words of points (x 10 + 2000), as a list and as the bytes of a block.
QList<int> rev(const QList<double> &values)
{
    QList<int> w;
    for (double v : values)
        w << int(v * 10 + 2000);
    return w;
}
QByteArray bytes(const QList<int> &words)
{
    QByteArray b;
    for (int w : words)
        b.append(char(w >> 8)).append(char(w));
    return b;
}

} // namespace

class RevisionTest : public QObject {
    Q_OBJECT
private slots:
    void pointsMustRiseWithinTheirBounds()
    {
        PageFixture f(2.31, QStringLiteral("Modbus RTU"));
        const QList<int> base = rev({-100, -40, 20, 80, 140, 200});
        for (int i = 0; i < 6; ++i)
            f.up({{40 + i, base[i]}, {34 + i, base[i]}});
        f.open<frmQM730SYS_Sensor_RevisionT>();
        QCOMPARE(f.text("txtAdjustX", 2), QStringLiteral("20"));
        // Not above the point before it, or outside the bounds: the old text
        // is taken back (not clamped) and written again.
        f.enterAll({{"txtAdjustY", 2, "21.5", {102, 40136, 2215}},
                    {"txtAdjustX", 1, "-100", {102, 40141, 1600}, "-40"},
                    {"txtAdjustY", 3, "140", {102, 40137, 2800}, "80"},
                    {"txtAdjustY", 5, "300", {102, 40139, 4000}, "200"},
                    {"txtAdjustY", 5, "266.4", {102, 40139, 4664}}});
    }

    void theSensorOffsetFollowsTheType()
    {
        PageFixture f(2.31, QStringLiteral("Modbus RTU"));
        f.up({{46, 2}, {54, 10100}, {55, 9800}}); // humidity: voltage
        f.open<frmQM730SYS_Sensor_RevisionH>();
        QCOMPARE(f.text("txtOffset"), QStringLiteral("-2.00"));
        f.enter("txtOffset", QStringLiteral("1.25"));
        QCOMPARE(f.mail(), (Mail{102, 40155, 10125}));
        f.up(46, 1);
        f.reload();
        QCOMPARE(f.text("txtOffset"), QStringLiteral("1.00"));
        QCOMPARE(f.typeAndLeave("txtOffset", "-120"), QStringLiteral("-100.00"));
    }

    // (The block's requests: tests/link; on the controller in both protocols: tests/integration.)
    void initialiseWritesTheDefaultsAsOneBlock()
    {
        PageFixture f;
        f.up({{32, 10500}, {40, rev({-90})[0]}});
        auto &page = *f.open<frmQM730SYS_Sensor_RevisionT>();
        f.click("btnInit");
        const QList<int> points = rev({-100, -40, 20, 80, 140, 200});
        QList<int> image;
        for (int row = 32; row <= 45; ++row)
            image << f.row(row).toInt();
        QCOMPARE(image, (QList<int>{10000, 10000} + points + points));
        QCOMPARE(f.text("txtAdjustX", 0), QStringLiteral("-100"));
        QCOMPARE(f.mail().mid(0, 2), (Mail{400, 32}));
        // The line runs straight from corner to corner.
        const QList<QLineF> segments = page.curve().graph()->segments();
        QCOMPARE(segments.size(), 5);
        QCOMPARE(segments.first().p1(), QPointF(0, 0));
        QCOMPARE(segments.last().p2(), QPointF(RevisionGraph::Side, RevisionGraph::Side));
        for (const QLineF &l : segments)
            QCOMPARE(l.dx(), l.dy());
    }

    void theLegacyOffsetFollowsTheBlock()
    {
        PageFixture f(2.1);
        f.up(37, 1); // humidity: voltage
        f.open<frmQM730SYS_Sensor_RevisionH>();
        f.click("btnInit");
        QCOMPARE(f.mail().mid(0, 2), (Mail{400, 469}));
        QCOMPARE(f.s.CmdIndexEnd, 480);
        // A refresh while the block is written posts nothing.
        f.s.ReqCmd = 0;
        f.s.CmdState = 400;
        f.reload();
        QCOMPARE(f.s.ReqCmd, 0);
        // The block is through: the offset follows, once.
        f.s.CmdState = 1;
        f.reload();
        QCOMPARE(f.mail(), (Mail{102, 48, 10000}));
        f.s.ReqCmd = 0;
        f.reload();
        QCOMPARE(f.s.ReqCmd, 0);
    }

    void theRetransmissionCurves()
    {
        PageFixture f(2.31, QStringLiteral("Modbus RTU"));
        f.up(80, 1); // the sensor-break current, the block's first row
        f.open<frmQM730SYS_Control_RevisionT>();
        QVERIFY(!f.page->findChild<QLabel *>(QStringLiteral("lblPV"))); // no live value
        f.enter("txtOffset", QStringLiteral("-25"));
        QCOMPARE(f.text("txtOffset"), QStringLiteral("-20.00"));
        QCOMPARE(f.mail(), (Mail{102, 40181, 8000}));
        f.click("btnInit");
        QCOMPARE(f.mail().mid(0, 2), (Mail{401, 40180}));
        const QList<int> points = rev({-100, 50, 200});
        QCOMPARE(f.s.WriteBlock, bytes(QList<int>{1, 10000} + points + points));

        PageFixture legacy(2.09);
        legacy.open<frmQM730SYS_Control_RevisionH>();
        legacy.click("btnInit");
        QCOMPARE(legacy.mail().mid(0, 2), (Mail{400, 487}));
        QCOMPARE(legacy.s.CmdIndexEnd, 492);
    }

    void thePresentValueOfTheInput()
    {
        PageFixture f;
        f.s.image.sprdRCV.setNumber(1, 2, 65535);
        f.s.image.sprdRCV.setNumber(1, 5, 553);
        f.open<frmQM730SYS_Sensor_RevisionT>();
        QCOMPARE(f.label("lblPV"), QStringLiteral("--.-"));
        f.s.image.sprdRCV.setNumber(1, 2, 12550);
        f.reload();
        QCOMPARE(f.label("lblPV"), QStringLiteral("25.50"));
        f.s.image.setTempDecimals(1);
        f.open<frmQM730SYS_Sensor_RevisionH>();
        QCOMPARE(f.label("lblPV"), QStringLiteral("55.3"));
    }
};

QTEST_MAIN(RevisionTest)
#include "tst_revision.moc"
