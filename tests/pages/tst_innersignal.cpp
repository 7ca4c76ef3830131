// The inner signal page's own rules: the signal number steps round and
// chooses the seven rows shown, the band is clamped on commit by source and
// type, the pictures follow firmware and type, and the ON/OFF table keeps
// each line's set values in order.
#include "ButtonColour.h"
#include "EntryField.h"
#include "PageFixture.h"
#include "frmQM730SYS_InnerNew.h"
#include <QLabel>
#include <QPushButton>

namespace {

// The seven rows of signal n under the current layout.
int row(int n, int k) { return 209 + 7 * (n - 1) + k; }

QPushButton *button(const QWidget &page, const char *name, int index) { return indexed<QPushButton>(page, name, index); }

} // namespace

class InnerSignalTest : public QObject {
    Q_OBJECT
private slots:
    void theSignalNumberStepsRoundAndChoosesTheRows()
    {
        PageFixture f(2.31, QStringLiteral("PC Link"), 1);
        // Signal 1: temperature, TSV, 5.0 to -5.0, inside, 2 min 30 s.
        for (auto [k, word] : QList<QPair<int, int>>{{0, 1}, {1, 0}, {2, 1050}, {3, 950}, {4, 0}, {5, 2}, {6, 30}})
            f.up(row(1, k), word);
        // Signal 8: humidity, PV2, 90.0 to 10.0, outside, 0 min 5 s.
        for (auto [k, word] : QList<QPair<int, int>>{{0, 2}, {1, 3}, {2, 1900}, {3, 1100}, {4, 1}, {5, 0}, {6, 5}})
            f.up(row(8, k), word);
        auto page = f.open<frmQM730SYS_InnerNew>();
        auto *no = child<EntryField>(*page, "txtIS_NO");
        auto *high = indexed<EntryField>(*page, "txtIS_Range", 1);
        auto *low = indexed<EntryField>(*page, "txtIS_Range", 0);
        auto *seconds = indexed<EntryField>(*page, "txtIS_Delay", 1);
        QCOMPARE(no->text(), QStringLiteral("1"));
        QCOMPARE(high->text(), QStringLiteral("5.0"));
        QCOMPARE(seconds->text(), QStringLiteral("30"));
        QCOMPARE(ButtonColour::of(button(*page, "btnIS_SOURCE", 1)), ButtonColour::Selected);

        QTest::mouseClick(child<QPushButton>(*page, "btnIS_DN"), Qt::LeftButton); // 1 -> 8
        QCOMPARE(no->text(), QStringLiteral("8"));
        QCOMPARE(high->text(), QStringLiteral("90.0"));
        QCOMPARE(low->text(), QStringLiteral("10.0"));
        QCOMPARE(seconds->text(), QStringLiteral("5"));
        QCOMPARE(ButtonColour::of(button(*page, "btnIS_SOURCE", 2)), ButtonColour::Selected);
        QCOMPARE(ButtonColour::of(button(*page, "btnIS_Type", 3)), ButtonColour::Selected);
        QCOMPARE(ButtonColour::of(button(*page, "btnIS_Direct", 1)), ButtonColour::Selected);
        QCOMPARE(child<QLabel>(*page, "lblUnit_IS")->text(), QStringLiteral("[%]"));
        QCOMPARE(f.s.ReqCmd, 0); // a new signal is a reload, not a write
        QVERIFY(f.s.RefreshOnOpen);
        PageFixture::enter(seconds, QStringLiteral("7"));
        QCOMPARE(f.mail(), (QList<int>{102, 264, 7})); // signal 8 ends at row 264

        QTest::mouseClick(child<QPushButton>(*page, "btnIS_UP"), Qt::LeftButton); // 8 -> 1
        QCOMPARE(no->text(), QStringLiteral("1"));
        QCOMPARE(high->text(), QStringLiteral("5.0"));
        QTest::mouseClick(child<QPushButton>(*page, "btnIS_UP"), Qt::LeftButton);
        QCOMPARE(page->signalNo(), 2);

        f.clearMail();
        PageFixture::enter(no, QStringLiteral("12")); // typed beyond the last signal
        QCOMPARE(no->text(), QStringLiteral("8"));
        QCOMPARE(high->text(), QStringLiteral("90.0"));
        PageFixture::enter(no, QStringLiteral("0"));
        QCOMPARE(no->text(), QStringLiteral("1"));
        QCOMPARE(f.s.ReqCmd, 0);
    }

    void theBandIsClampedOnCommitBySourceAndType_data()
    {
        QTest::addColumn<int>("source");
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("index");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("shown");
        QTest::newRow("PV2 temperature high above 600") << 1 << 3 << 1 << "700" << "300.0";
        QTest::newRow("PV2 temperature high up to 600") << 1 << 3 << 1 << "550" << "550";
        QTest::newRow("PV2 temperature high below 0") << 1 << 3 << 1 << "-5" << "0.0";
        QTest::newRow("PV2 temperature low") << 1 << 3 << 0 << "-150" << "-100.0";
        QTest::newRow("PV2 humidity low") << 2 << 3 << 0 << "0" << "0.1";
        QTest::newRow("PV2 humidity high") << 2 << 3 << 1 << "101" << "100.0";
        QTest::newRow("TSV temperature high") << 1 << 0 << 1 << "250" << "200.0";
        QTest::newRow("NSV humidity high") << 2 << 1 << 1 << "0" << "0.1";
        QTest::newRow("source off: not checked") << 0 << 0 << 1 << "250" << "250";
    }
    void theBandIsClampedOnCommitBySourceAndType()
    {
        QFETCH(int, source);
        QFETCH(int, type);
        QFETCH(int, index);
        QFETCH(QString, typed);
        QFETCH(QString, shown);
        PageFixture f(2.31, QStringLiteral("PC Link"), 1);
        f.up(row(1, 0), source);
        f.up(row(1, 1), type);
        auto page = f.open<frmQM730SYS_InnerNew>();
        auto *field = indexed<EntryField>(*page, "txtIS_Range", index);
        QCOMPARE(field->isEnabled(), index == 1 || type == 3); // the low end is a PV2 value only
        if (!field->isEnabled())
            field->setEnabled(true);
        field->setFocus();
        field->selectAll();
        QTest::keyClicks(field, typed);
        child<EntryField>(*page, "txtIS_NO")->setFocus(); // leaving does not clamp
        QCOMPARE(field->text(), typed);
        PageFixture::enter(field, typed);
        QCOMPARE(field->text(), shown);
        QCOMPARE(f.mail(), (QList<int>{102, row(1, index == 1 ? 2 : 3), int(wordFromText(Encoding::TZ, shown))}));
    }

    void picturesAndValuesFollowTheFirmware_data()
    {
        QTest::addColumn<double>("firmware");
        QTest::addColumn<int>("type");
        QTest::addColumn<bool>("newPicture");
        QTest::addColumn<bool>("table");
        QTest::addColumn<bool>("onOffButton");
        QTest::addColumn<int>("wordOf25"); // txtIS_Range 1 given 25
        QTest::newRow("2.1, no ON/OFF type yet") << 2.1 << 0 << false << false << false << 12500;
        QTest::newRow("2.15, ON/OFF") << 2.15 << 4 << true << false << true << 12500;
        QTest::newRow("2.15, PV2") << 2.15 << 3 << false << false << true << 12500;
        QTest::newRow("2.3, the table instead") << 2.3 << 0 << false << true << false << 12500;
        QTest::newRow("2.31, a stored ON/OFF type") << 2.31 << 4 << false << true << false << 1250;
    }
    void picturesAndValuesFollowTheFirmware()
    {
        QFETCH(double, firmware);
        QFETCH(int, type);
        QFETCH(bool, newPicture);
        QFETCH(bool, table);
        QFETCH(bool, onOffButton);
        QFETCH(int, wordOf25);
        PageFixture f(firmware, QStringLiteral("PC Link"), 1);
        const int base = firmware >= 2.2 ? 209 : 183;
        f.up(base, 1);
        f.up(base + 1, type);
        auto page = f.open<frmQM730SYS_InnerNew>();
        QCOMPARE(child<QWidget>(*page, "picIS_New")->isVisible(), newPicture);
        QCOMPARE(child<QWidget>(*page, "picIS_Old")->isVisible(), !newPicture);
        QCOMPARE(child<QWidget>(*page, "lblPlus")->isVisible(), newPicture);
        QCOMPARE(child<QWidget>(*page, "picT_OnOff")->isVisible(), table);
        QCOMPARE(button(*page, "btnIS_Type", 4)->isVisible(), onOffButton);
        QCOMPARE(ButtonColour::of(button(*page, "btnIS_Type", 4)), type == 4 ? ButtonColour::Selected : ButtonColour::FaceColour);
        EntryField *high = newPicture ? child<EntryField>(*page, "txtSV_High") : indexed<EntryField>(*page, "txtIS_Range", 1);
        PageFixture::enter(high, QStringLiteral("25"));
        QCOMPARE(f.mail(), (QList<int>{102, base + 2, wordOf25}));
        if (newPicture) {
            // The middle value is a value of the band in the delay's row, clamped to 200.
            PageFixture::enter(child<EntryField>(*page, "txtSV_Middle"), QStringLiteral("300"));
            QCOMPARE(f.mail(), (QList<int>{102, base + 5, 30000}));
        }
    }

    void theOnOffTableKeepsEachLineInOrder_data()
    {
        QTest::addColumn<QString>("protocol");
        QTest::addColumn<int>("offset");
        QTest::newRow("PC Link") << "PC Link" << 0;
        QTest::newRow("Modbus RTU") << "Modbus RTU" << 40100;
    }
    void theOnOffTableKeepsEachLineInOrder()
    {
        QFETCH(QString, protocol);
        QFETCH(int, offset);
        PageFixture f(2.31, protocol, 1);
        for (int j = 0; j < 5; ++j) {
            f.up(265 + 5 * j, 1100); // L.SV 10.0
            f.up(266 + 5 * j, 1200); // M.SV 20.0
            f.up(267 + 5 * j, 1300); // H.SV 30.0
        }
        auto page = f.open<frmQM730SYS_InnerNew>();
        auto *msv = indexed<EntryField>(*page, "txtT_MSV", 1);
        QCOMPARE(msv->text(), QStringLiteral("20.0"));
        PageFixture::enter(msv, QStringLiteral("50")); // above its H.SV
        QCOMPARE(msv->text(), QStringLiteral("30.0"));
        QCOMPARE(f.mail(), (QList<int>{102, offset + 271, 1300}));
        PageFixture::enter(indexed<EntryField>(*page, "txtT_LSV", 2), QStringLiteral("25")); // above its M.SV
        QCOMPARE(f.mail(), (QList<int>{102, offset + 275, 1200}));
        // The humidity line has the smaller ranges.
        PageFixture::enter(indexed<EntryField>(*page, "txtT_HSV", 4), QStringLiteral("150"));
        QCOMPARE(f.mail(), (QList<int>{102, offset + 287, 2000}));
        PageFixture::enter(indexed<EntryField>(*page, "txtT_Lu", 4), QStringLiteral("150"));
        QCOMPARE(f.mail(), (QList<int>{102, offset + 288, 1000}));
        PageFixture::enter(indexed<EntryField>(*page, "txtT_Lu", 3), QStringLiteral("150"));
        QCOMPARE(f.mail(), (QList<int>{102, offset + 283, 1500}));
    }
};

QTEST_MAIN(InnerSignalTest)
#include "tst_innersignal.moc"
