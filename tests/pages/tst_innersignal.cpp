// The inner signal page: the signal number steps round and chooses the seven
// rows shown, the band is clamped on commit by source and type, the pictures
// follow firmware and type, and the ON/OFF table keeps each line in order.
#include "EntryField.h"
#include "PageFixture.h"
#include "frmQM730SYS_InnerNew.h"

namespace {

// The seven rows of signal n under the current layout.
int row(int n, int k) { return 209 + 7 * (n - 1) + k; }

} // namespace

struct Band {
    int source, type, index;
    QString typed, shown;
};
struct Pictures {
    double firmware;
    int type;
    bool newPicture, table, onOffButton;
    int wordOf25;
};
Q_DECLARE_METATYPE(Band)
Q_DECLARE_METATYPE(Pictures)

class InnerSignalTest : public QObject {
    Q_OBJECT
private slots:
    void theSignalNumberStepsRoundAndChoosesTheRows()
    {
        PageFixture f(2.31, QStringLiteral("PC Link"), 1);
        // Signal 1: temperature, TSV, 5.0 to -5.0, inside, 2 min 30 s.
        // Signal 8: humidity, PV2, 90.0 to 10.0, outside, 0 min 5 s.
        const QList<int> one{1, 0, 1050, 950, 0, 2, 30}, eight{2, 3, 1900, 1100, 1, 0, 5};
        for (int k = 0; k < 7; ++k)
            f.up({{row(1, k), one[k]}, {row(8, k), eight[k]}});
        auto *page = f.open<frmQM730SYS_InnerNew>();
        // The number, the high end, the delay's seconds.
        auto shown = [&] { return QStringList({f.text("txtIS_NO"), f.text("txtIS_Range", 1), f.text("txtIS_Delay", 1)}); };
        QCOMPARE(shown(), QStringList({"1", "5.0", "30"}));
        QVERIFY(f.chosen("btnIS_SOURCE", 1));
        f.typeAndLeave("txtIS_Delay", "17", 1); // an edit of signal 1, not committed

        f.click("btnIS_DN"); // 1 -> 8: the edit is dropped
        QCOMPARE(shown(), QStringList({"8", "90.0", "5"}));
        QCOMPARE(f.text("txtIS_Range", 0), QStringLiteral("10.0"));
        QVERIFY(f.chosen("btnIS_SOURCE", 2) && f.chosen("btnIS_Type", 3) && f.chosen("btnIS_Direct", 1));
        QCOMPARE(f.label("lblUnit_IS"), QStringLiteral("[%]"));
        QCOMPARE(f.s.ReqCmd, 0); // a new signal is a reload, not a write
        QVERIFY(f.s.RefreshOnOpen);
        f.enterAll({{"txtIS_Delay", 1, "7", {102, 264, 7}}}); // signal 8 ends at row 264

        f.click("btnIS_UP"); // 8 -> 1
        QCOMPARE(shown(), QStringList({"1", "5.0", "30"}));
        f.click("btnIS_UP");
        QCOMPARE(page->signalNo(), 2);

        f.clearMail();
        f.enter("txtIS_NO", QStringLiteral("12")); // typed beyond the last signal
        QCOMPARE(shown(), QStringList({"8", "90.0", "7"}));
        f.enter("txtIS_NO", QStringLiteral("0"));
        QCOMPARE(f.text("txtIS_NO"), QStringLiteral("1"));
        QCOMPARE(f.s.ReqCmd, 0);
    }

    void theBandIsClampedOnCommitBySourceAndType_data()
    {
        QTest::addColumn<Band>("c"); // source, type, index of the end, typed, shown
        QTest::newRow("PV2 temperature high above 600") << Band{1, 3, 1, "700", "300.0"};
        QTest::newRow("PV2 temperature high up to 600") << Band{1, 3, 1, "550", "550"};
        QTest::newRow("PV2 temperature high below 0") << Band{1, 3, 1, "-5", "0.0"};
        QTest::newRow("PV2 temperature low") << Band{1, 3, 0, "-150", "-100.0"};
        QTest::newRow("PV2 humidity low") << Band{2, 3, 0, "0", "0.1"};
        QTest::newRow("PV2 humidity high") << Band{2, 3, 1, "101", "100.0"};
        QTest::newRow("TSV temperature high") << Band{1, 0, 1, "250", "200.0"};
        QTest::newRow("NSV humidity high") << Band{2, 1, 1, "0", "0.1"};
        QTest::newRow("source off: not checked") << Band{0, 0, 1, "250", "250"};
    }
    void theBandIsClampedOnCommitBySourceAndType()
    {
        QFETCH(Band, c);
        const auto &[source, type, index, typed, shown] = c;
        PageFixture f(2.31, QStringLiteral("PC Link"), 1);
        f.up({{row(1, 0), source}, {row(1, 1), type}});
        f.open<frmQM730SYS_InnerNew>();
        QLineEdit *field = f.field("txtIS_Range", index);
        QCOMPARE(field->isEnabled(), index == 1 || type == 3); // the low end is a PV2 value only
        field->setEnabled(true);
        QCOMPARE(f.typeAndLeave("txtIS_Range", typed, index), typed); // leaving does not clamp
        f.enter(field, typed);
        QCOMPARE(field->text(), shown);
        QCOMPARE(f.mail(), (Mail{102, row(1, index == 1 ? 2 : 3), int(wordFromText(Encoding::TZ, shown))}));
    }

    void picturesAndValuesFollowTheFirmware_data()
    {
        QTest::addColumn<Pictures>("c"); // firmware, type, new picture, table, ON/OFF button, txtIS_Range 1's word for 25
        QTest::newRow("2.1, no ON/OFF type yet") << Pictures{2.1, 0, false, false, false, 12500};
        QTest::newRow("2.15, ON/OFF") << Pictures{2.15, 4, true, false, true, 12500};
        QTest::newRow("2.15, PV2") << Pictures{2.15, 3, false, false, true, 12500};
        QTest::newRow("2.3, the table instead") << Pictures{2.3, 0, false, true, false, 12500};
        QTest::newRow("2.31, a stored ON/OFF type") << Pictures{2.31, 4, false, true, false, 1250};
    }
    void picturesAndValuesFollowTheFirmware()
    {
        QFETCH(Pictures, c);
        const auto &[firmware, type, newPicture, table, onOffButton, wordOf25] = c;
        PageFixture f(firmware, QStringLiteral("PC Link"), 1);
        const int base = firmware >= 2.2 ? 209 : 183;
        f.up({{base, 1}, {base + 1, type}});
        f.open<frmQM730SYS_InnerNew>();
        QCOMPARE(f.get<QWidget>("picIS_New")->isVisible(), newPicture);
        QCOMPARE(f.get<QWidget>("picIS_Old")->isVisible(), !newPicture);
        QCOMPARE(f.get<QWidget>("lblPlus")->isVisible(), newPicture);
        QCOMPARE(f.get<QWidget>("picT_OnOff")->isVisible(), table);
        QCOMPARE(f.button("btnIS_Type", 4)->isVisible(), onOffButton);
        QCOMPARE(ButtonColour::of(f.button("btnIS_Type", 4)), type == 4 ? ButtonColour::Selected : ButtonColour::FaceColour);
        f.enterAll({{newPicture ? "txtSV_High" : "txtIS_Range", newPicture ? -1 : 1, "25", {102, base + 2, wordOf25}}});
        // The middle value is a value of the band in the delay's row, clamped to 200.
        if (newPicture)
            f.enterAll({{"txtSV_Middle", -1, "300", {102, base + 5, 30000}}});
    }

    void theOnOffTableKeepsEachLineInOrder()
    {
        for (const int offset : {0, 40100}) {
            PageFixture f(2.31, offset ? QStringLiteral("Modbus RTU") : QStringLiteral("PC Link"), 1);
            for (int j = 0; j < 5; ++j) // L.SV 10.0, M.SV 20.0, H.SV 30.0
                f.up({{265 + 5 * j, 1100}, {266 + 5 * j, 1200}, {267 + 5 * j, 1300}});
            f.open<frmQM730SYS_InnerNew>();
            QCOMPARE(f.text("txtT_MSV", 1), QStringLiteral("20.0"));
            // Above its H.SV, above its M.SV; the humidity line (4) has the smaller ranges.
            f.enterAll({{"txtT_MSV", 1, "50", {102, offset + 271, 1300}, "30.0"},
                        {"txtT_LSV", 2, "25", {102, offset + 275, 1200}},
                        {"txtT_HSV", 4, "150", {102, offset + 287, 2000}},
                        {"txtT_Lu", 4, "150", {102, offset + 288, 1000}},
                        {"txtT_Lu", 3, "150", {102, offset + 283, 1500}}});
        }
    }
};

QTEST_MAIN(InnerSignalTest)
#include "tst_innersignal.moc"
