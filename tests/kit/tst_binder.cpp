// The page binder and the page frame, once for every parameter page: how a
// field bound to a parameter loads, clamps, commits and keeps a pair in
// order, how an option group shows and writes its row, and how a page takes
// the refresh over and gives it back.
#include "ButtonColour.h"
#include "EntryField.h"
#include "PageBinder.h"
#include "ParamPage.h"
#include "ScreenBench.h"
#include <QApplication>
#include <QDialog>
#include <QPushButton>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QtTest>

namespace {

int mailWord(const ConsoleState &s)
{
    return (quint8(s.ReqData[0]) << 8) | quint8(s.ReqData[1]);
}

void leave(QWidget *w)
{
    QFocusEvent out(QEvent::FocusOut, Qt::TabFocusReason);
    QApplication::sendEvent(w, &out);
}

// A page with a few fields over a bench whose machine has the given firmware.
struct Page {
    QTemporaryDir dir;
    ScreenBench bench{dir.path()};
    ConsoleState &s = bench.state;
    QDialog dialog;
    PageBinder binder{bench.ctx};

    explicit Page(double firmware = 2.31, const QString &protocol = QStringLiteral("PC Link"))
    {
        s.CurrentMachine = 1;
        s.CommProtocol = protocol;
        s.image.applyFirmware(firmware);
        s.image.setTempDecimals(2);
    }
    EntryField *edit(const char *name) { return new EntryField(QLatin1String(name), &dialog); }
    void up(ParamRef ref, qint64 word) { s.image.sprdUP.setNumber(1, RowOf(ref, s.FirmwareVersion()), word); }
    QString cell(ParamRef ref) const { return s.image.sprdUP.text(1, RowOf(ref, s.FirmwareVersion())); }
    QList<int> mail() const { return {s.ReqCmd, s.ReqIndex, mailWord(s)}; }
    void type(EntryField *e, const QString &text)
    {
        e->selectAll();
        QTest::keyClicks(e, text);
    }
    void enter(EntryField *e, const QString &text)
    {
        type(e, text);
        QTest::keyClick(e, Qt::Key_Return);
    }
};

} // namespace

class BinderTest : public QObject {
    Q_OBJECT
private slots:
    void fieldShowsItsRowByEncodingAndResolution()
    {
        Page p;
        EntryField *scaleHigh = p.edit("txtScale1");
        EntryField *limit = p.edit("txtTempOutV");
        EntryField *filter = p.edit("txtLPF1");
        p.binder.field(scaleHigh, {Param::txtScale1, 1});
        p.binder.field(limit, {Param::txtTempOutV, 1});
        p.binder.field(filter, Param::txtLPF1);
        p.up({Param::txtScale1, 1}, 25050); // T100: 150.5 degrees
        p.up({Param::txtTempOutV, 1}, 10500); // LIM: 100.00 %
        p.binder.load();
        QCOMPARE(scaleHigh->text(), QStringLiteral("150.50"));
        QCOMPARE(limit->text(), QStringLiteral("100.00"));
        QCOMPARE(filter->text(), QString()); // not read yet
        p.s.image.setTempDecimals(1);
        p.binder.load();
        QCOMPARE(scaleHigh->text(), QStringLiteral("150.5")); // the controller's resolution
        QCOMPARE(limit->text(), QStringLiteral("100.00"));   // a fixed pattern
    }

    void leavingClampsToTheParameterRange()
    {
        Page p;
        EntryField *filter = p.edit("txtLPF1");
        EntryField *bias = p.edit("txtBias1");
        p.binder.field(filter, Param::txtLPF1);     // 2 to 180
        p.binder.field(bias, Param::txtBias1_RTD);  // -100.00 to 100.00, "0.00"
        for (const auto &[typed, shown] : QList<QPair<QString, QString>>{
                 {"1", "2"}, {"500", "180"}, {"abc", "2"}, {"90", "90"}}) {
            p.type(filter, typed);
            leave(filter);
            QCOMPARE(filter->text(), shown);
        }
        p.type(bias, "-250");
        leave(bias);
        QCOMPARE(bias->text(), QStringLiteral("-100.00"));
        QCOMPARE(p.s.ReqCmd, 0); // leaving sends nothing
    }

    void enterStoresTheCellAndWritesTheRow_data()
    {
        QTest::addColumn<double>("firmware");
        QTest::addColumn<QString>("protocol");
        QTest::addColumn<int>("address");
        QTest::newRow("current, PC Link") << 2.31 << "PC Link" << 32;
        QTest::newRow("current, Modbus RTU") << 2.31 << "Modbus RTU" << 40132;
        QTest::newRow("legacy, Modbus RTU") << 2.1 << "Modbus RTU" << 34;
    }
    void enterStoresTheCellAndWritesTheRow()
    {
        QFETCH(double, firmware);
        QFETCH(QString, protocol);
        QFETCH(int, address);
        Page p(firmware, protocol);
        EntryField *bias = p.edit("txtBias1");
        p.binder.field(bias, Param::txtBias1_RTD);
        p.enter(bias, "-1.255");
        // OFS: value x 100 + 10000; the cell keeps the exact value, the word is rounded half to even.
        QCOMPARE(p.cell(Param::txtBias1_RTD), QStringLiteral("9874.5"));
        QCOMPARE(p.mail(), (QList<int>{102, address, 9874}));
        p.enter(bias, "300"); // Enter clamps as leaving does
        QCOMPARE(bias->text(), QStringLiteral("100.00"));
        QCOMPARE(p.mail(), (QList<int>{102, address, 20000}));
    }

    void aPairKeepsHighAboveLow()
    {
        Page p;
        EntryField *high = p.edit("txtScale1_1");
        EntryField *low = p.edit("txtScale1_0");
        p.binder.pair(p.binder.field(high, {Param::txtScale1, 1}), p.binder.field(low, {Param::txtScale1, 0}));
        p.up({Param::txtScale1, 1}, 25000);
        p.up({Param::txtScale1, 0}, 5000);
        p.binder.load();
        p.enter(low, "120"); // below 150: taken
        QCOMPARE(p.mail(), (QList<int>{102, 29, 22000}));
        p.s.ReqCmd = 0;
        // A high value at or below the low one takes back its old text and writes it again.
        p.enter(high, "110");
        QCOMPARE(high->text(), QStringLiteral("150.00"));
        QCOMPARE(p.mail(), (QList<int>{102, 28, 25000}));
        p.enter(low, "150");
        QCOMPARE(low->text(), QStringLiteral("120"));
        QCOMPARE(p.mail(), (QList<int>{102, 29, 22000}));
    }

    void theRefreshLeavesAFieldBeingEditedAlone()
    {
        Page p;
        EntryField *filter = p.edit("txtLPF1");
        p.binder.field(filter, Param::txtLPF1);
        p.up(Param::txtLPF1, 10);
        p.binder.load();
        p.type(filter, "33");
        leave(filter); // left without Enter: still being edited
        p.binder.load();
        QCOMPARE(filter->text(), QStringLiteral("33"));
        QTest::keyClick(filter, Qt::Key_Return);
        p.up(Param::txtLPF1, 31); // the controller's own value after the write
        p.binder.load();
        QCOMPARE(filter->text(), QStringLiteral("31"));
    }

    void aFieldFollowsTheModeOfThePage()
    {
        Page p;
        bool rtd = true;
        EntryField *bias = p.edit("txtBias1");
        p.binder.field(bias, [&rtd] { return std::optional<ParamRef>(rtd ? Param::txtBias1_RTD : Param::txtBias1_V); });
        p.up(Param::txtBias1_RTD, 10150);
        p.up(Param::txtBias1_V, 9900);
        p.binder.load();
        QCOMPARE(bias->text(), QStringLiteral("1.50"));
        rtd = false;
        p.binder.load();
        QCOMPARE(bias->text(), QStringLiteral("-1.00"));
        p.enter(bias, "2");
        QCOMPARE(p.mail(), (QList<int>{102, 33, 10200}));
    }

    void anOptionGroupShowsAndWritesItsRow()
    {
        Page p(2.1, QStringLiteral("Modbus RTU"));
        QList<QAbstractButton *> buttons{new QPushButton(&p.dialog), new QPushButton(&p.dialog)};
        OptionGroup *group = p.binder.options(Param::btnSensorType2, buttons, {1, 2}, {0, 1});
        int rules = 0;
        p.binder.onChange([&rules] { ++rules; });
        p.binder.load();
        QCOMPARE(group->selected(), -1); // not read yet: no button chosen
        QCOMPARE(rules, 1);
        p.up(Param::btnSensorType2, 1); // legacy words: 0 and 1
        p.binder.load();
        QCOMPARE(group->selected(), 1);
        QCOMPARE(ButtonColour::of(buttons[1]), 65280);
        QCOMPARE(ButtonColour::of(buttons[0]), ButtonColour::FaceColour);
        p.up(Param::btnSensorType2, 7); // a word that fits no button
        p.binder.load();
        QCOMPARE(group->selected(), -1);

        QTest::mouseClick(buttons[0], Qt::LeftButton);
        QCOMPARE(group->selected(), 0);
        QCOMPARE(p.cell(Param::btnSensorType2), QStringLiteral("0"));
        QCOMPARE(p.mail(), (QList<int>{102, 37, 0})); // legacy row, plain address in every protocol
        QCOMPARE(rules, 4);

        p.s.image.applyFirmware(2.31); // the current layout has its own words and row
        QTest::mouseClick(buttons[1], Qt::LeftButton);
        QCOMPARE(p.mail(), (QList<int>{102, 40146, 2}));
    }

    void fieldsClampWhenTheirPageSays()
    {
        Page p;
        EntryField *filter = p.edit("txtLPF1");
        EntryField *point = p.edit("txtAdjustX");
        p.binder.field(filter, Param::txtLPF1)->setClampAt(EntryBinding::ClampAt::Enter);
        p.binder.field(point, {Param::txtAdjustX_T, 1})->setClampAt(EntryBinding::ClampAt::Never);
        p.type(filter, "1");
        leave(filter);
        QCOMPARE(filter->text(), QStringLiteral("1")); // leaving leaves it
        QTest::keyClick(filter, Qt::Key_Return);
        QCOMPARE(filter->text(), QStringLiteral("2"));
        QCOMPARE(p.mail(), (QList<int>{102, 25, 2}));
        p.enter(point, "300"); // REV: 300 x 10 + 2000, not clamped to 266.4
        QCOMPARE(point->text(), QStringLiteral("300"));
        QCOMPARE(p.mail(), (QList<int>{102, 40, 5000}));
    }

    void aRangeCanFollowAnotherField()
    {
        Page p;
        EntryField *first = p.edit("txtTempZone");
        EntryField *second = p.edit("txtTempZone");
        p.binder.field(first, {Param::txtTempZone, 1});
        EntryBinding *b = p.binder.field(second, {Param::txtTempZone, 2});
        p.binder.setRange(b, [first]() -> std::optional<EntryBinding::Range> {
            return EntryBinding::Range{first->text().toDouble(), 200, {}};
        });
        first->setText(QStringLiteral("50.0"));
        p.enter(second, "20");
        QCOMPARE(second->text(), QStringLiteral("50.0")); // the encoding's pattern
        QCOMPARE(p.mail(), (QList<int>{102, 299, 1500}));
        first->setText(QStringLiteral("10.0"));
        p.enter(second, "20");
        QCOMPARE(p.mail(), (QList<int>{102, 299, 1200}));
    }

    void aCheckRefusesAValueAndTheOldOneIsWrittenAgain()
    {
        Page p;
        EntryField *point = p.edit("txtAdjustY");
        EntryBinding *b = p.binder.field(point, {Param::txtAdjustY_T, 2});
        p.binder.check(b, [](double v) { return v > 0 && v < 50; });
        p.up({Param::txtAdjustY_T, 2}, 2200); // 20
        p.binder.load();
        p.enter(point, "60");
        QCOMPARE(point->text(), QStringLiteral("20"));
        QCOMPARE(p.mail(), (QList<int>{102, 35, 2200}));
        p.enter(point, "25.5");
        QCOMPARE(p.mail(), (QList<int>{102, 35, 2255}));
        // A field never loaded has nothing to write again.
        EntryField *empty = p.edit("txtAdjustY");
        p.binder.check(p.binder.field(empty, {Param::txtAdjustY_T, 3}), [](double) { return false; });
        p.s.ReqCmd = 0;
        p.enter(empty, "5");
        QCOMPARE(empty->text(), QString());
        QCOMPARE(p.s.ReqCmd, 0);
    }

    void aFieldCanBeWrittenOtherwiseThanItIsRead_data()
    {
        QTest::addColumn<double>("firmware");
        QTest::addColumn<QString>("protocol");
        QTest::addColumn<int>("addressing");
        QTest::addColumn<int>("address");
        QTest::newRow("plain row, current, Modbus") << 2.31 << "Modbus RTU" << int(RowAddressing::PlainRow) << 73;
        QTest::newRow("plain row, legacy, Modbus") << 2.1 << "Modbus RTU" << int(RowAddressing::PlainRow) << 55;
        QTest::newRow("normal, current, Modbus") << 2.31 << "Modbus RTU" << int(RowAddressing::Normal) << 40173;
        QTest::newRow("legacy row, current, Modbus") << 2.31 << "Modbus RTU" << int(RowAddressing::LegacyRow) << 55;
        QTest::newRow("legacy row, current, PC Link") << 2.31 << "PC Link" << int(RowAddressing::LegacyRow) << 55;
    }
    void aFieldCanBeWrittenOtherwiseThanItIsRead()
    {
        QFETCH(double, firmware);
        QFETCH(QString, protocol);
        QFETCH(int, addressing);
        QFETCH(int, address);
        Page p(firmware, protocol);
        EntryField *period = p.edit("txtTempOutPeriod");
        EntryBinding *b = p.binder.field(period, Param::txtTempOutPeriod);
        p.binder.setAddressing(b, RowAddressing(addressing));
        p.up(Param::txtTempOutPeriod, 4);
        p.binder.load();
        QCOMPARE(period->text(), QStringLiteral("4")); // read from its own row
        p.enter(period, "9");
        QCOMPARE(p.mail(), (QList<int>{102, address, 9}));
        QCOMPARE(p.s.image.sprdUP.text(1, address % 40100), QStringLiteral("9"));
    }

    void anOptionGroupWithWordsOfItsOwn()
    {
        Page p(2.1);
        QList<QAbstractButton *> buttons{new QPushButton(&p.dialog), new QPushButton(&p.dialog),
                                         new QPushButton(&p.dialog)};
        // Legacy: button 0 has no word; 0 is button 1, anything above 0 button 2.
        OptionGroup *group = p.binder.options(Param::btnSensorType1, buttons, {0, 1, 2}, {-1, 0, 1});
        group->setIndexOfWord([](qint64 word) { return word == 0 ? 1 : 2; });
        for (const auto &[word, chosen] : QList<QPair<int, int>>{{0, 1}, {1, 2}, {5, 2}}) {
            p.up(Param::btnSensorType1, word);
            p.binder.load();
            QCOMPARE(group->selected(), chosen);
        }
        p.s.ReqCmd = 0;
        QTest::mouseClick(buttons[0], Qt::LeftButton);
        QCOMPARE(p.s.ReqCmd, 0);
        QCOMPARE(group->selected(), 2);
    }

    void aPageTakesTheRefreshOverAndGivesItBack()
    {
        QTemporaryDir dir;
        ScreenBench bench(dir.path());
        ConsoleState &s = bench.state;
        QTimer mainRefresh;
        s.MainRefreshTimer = &mainRefresh;
        s.setActiveRefreshTimer(nullptr);
        s.image.applyFirmware(2.31);
        {
            QDialog outer;
            ParamPage page(bench.ctx, &outer);
            EntryField *filter = new EntryField(QStringLiteral("txtLPF1"), &outer);
            page.binder().field(filter, Param::txtLPF1);
            s.image.sprdUP.setNumber(1, 25, 12);
            page.open();
            QCOMPARE(filter->text(), QStringLiteral("12"));
            QVERIFY(s.ParamPageOpen);
            auto *own = outer.findChild<QTimer *>(QStringLiteral("tmrRefresh"));
            QCOMPARE(s.ActiveRefreshTimer.data(), own);
            {
                // A page opened from this one takes the refresh and gives it back to this one.
                QDialog inner;
                ParamPage sub(bench.ctx, &inner);
                sub.open();
                QVERIFY(s.ActiveRefreshTimer.data() != own);
            }
            QCOMPARE(s.ActiveRefreshTimer.data(), own);
            QVERIFY(s.ParamPageOpen);
            // The link starts the timer when the reply is in; its tick reloads.
            s.image.sprdUP.setNumber(1, 25, 40);
            s.startActiveRefresh();
            QTRY_COMPARE(filter->text(), QStringLiteral("40"));
            QVERIFY(!own->isActive());
        }
        QCOMPARE(s.ActiveRefreshTimer.data(), &mainRefresh);
        QVERIFY(!s.ParamPageOpen);
    }
};

QTEST_MAIN(BinderTest)
#include "tst_binder.moc"
