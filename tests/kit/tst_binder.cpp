// The page binder and the page frame, once for every parameter page: a field
// bound to a parameter loads, clamps, commits and keeps a pair in order; an
// option group shows and writes its row; table cells are bound to rows; a
// page takes the refresh over and gives it back.
#include "../pages/PageFixture.h"
#include "EntryField.h"
#include "PageBinder.h"
#include "ParamPage.h"
#include "ParamTable.h"
#include <QPushButton>
#include <QTableWidget>

namespace {

// Fields and tables bound on a plain dialog, with no page of their own.
struct Kit : PageFixture {
    PageBinder binder{bench.ctx};
    explicit Kit(double firmware = 2.31, const QString &protocol = QStringLiteral("PC Link")) : PageFixture(firmware, protocol)
    {
        page = std::make_unique<QDialog>();
    }
    EntryField *edit(const char *name) { return new EntryField(QLatin1String(name), page.get()); }
    QString cell(ParamRef ref) const { return row(RowOf(ref, s.FirmwareVersion())); }
};

} // namespace

class BinderTest : public QObject {
    Q_OBJECT
private slots:
    void fieldShowsItsRowByEncodingAndResolution()
    {
        Kit k;
        EntryField *scaleHigh = k.edit("txtScale1"), *limit = k.edit("txtTempOutV"), *filter = k.edit("txtLPF1");
        k.binder.field(scaleHigh, {Param::txtScale1, 1});
        k.binder.field(limit, {Param::txtTempOutV, 1});
        k.binder.field(filter, Param::txtLPF1);
        k.up({Param::txtScale1, 1}, 25050);   // T100: 150.5 degrees
        k.up({Param::txtTempOutV, 1}, 10500); // LIM: 100.00 %
        k.binder.load();
        QCOMPARE(scaleHigh->text(), QStringLiteral("150.50"));
        QCOMPARE(limit->text(), QStringLiteral("100.00"));
        QCOMPARE(filter->text(), QString()); // not read yet
        k.s.image.setTempDecimals(1);
        k.binder.load();
        QCOMPARE(scaleHigh->text(), QStringLiteral("150.5")); // the controller's resolution
        QCOMPARE(limit->text(), QStringLiteral("100.00"));   // a fixed pattern
    }

    void leavingClampsToTheParameterRange()
    {
        Kit k;
        k.binder.field(k.edit("txtLPF1"), Param::txtLPF1);          // 2 to 180
        k.binder.field(k.edit("txtBias1"), Param::txtBias1_RTD);    // -100.00 to 100.00, "0.00"
        for (const auto &[typed, shown] : QList<QPair<QString, QString>>{{"1", "2"}, {"500", "180"}, {"abc", "2"}, {"90", "90"}})
            QCOMPARE(k.typeAndLeave("txtLPF1", typed), shown);
        QCOMPARE(k.typeAndLeave("txtBias1", "-250"), QStringLiteral("-100.00"));
        QCOMPARE(k.s.ReqCmd, 0); // leaving sends nothing
    }

    void enterStoresTheCellAndWritesTheRow_data()
    {
        QTest::addColumn<Layout>("c");
        QTest::newRow("current, PC Link") << Layout{2.31, "PC Link", 32};
        QTest::newRow("current, Modbus RTU") << Layout{2.31, "Modbus RTU", 40132};
        QTest::newRow("legacy, Modbus RTU") << Layout{2.1, "Modbus RTU", 34};
    }
    void enterStoresTheCellAndWritesTheRow()
    {
        QFETCH(Layout, c);
        const int address = c.address;
        Kit k(c.firmware, c.protocol);
        k.binder.field(k.edit("txtBias1"), Param::txtBias1_RTD);
        k.enter("txtBias1", "-1.255");
        // OFS: value x 100 + 10000; the cell keeps the exact value, the word is rounded half to even.
        QCOMPARE(k.cell(Param::txtBias1_RTD), QStringLiteral("9874.5"));
        QCOMPARE(k.mail(), (Mail{102, address, 9874}));
        k.enter("txtBias1", "300"); // Enter clamps as leaving does
        QCOMPARE(k.text("txtBias1"), QStringLiteral("100.00"));
        QCOMPARE(k.mail(), (Mail{102, address, 20000}));
    }

    void aPairKeepsHighAboveLow()
    {
        Kit k;
        EntryField *high = k.edit("high"), *low = k.edit("low");
        k.binder.pair(k.binder.field(high, {Param::txtScale1, 1}), k.binder.field(low, {Param::txtScale1, 0}));
        k.up({Param::txtScale1, 1}, 25000);
        k.up({Param::txtScale1, 0}, 5000);
        k.binder.load();
        k.enter(low, "120"); // below 150: taken
        QCOMPARE(k.mail(), (Mail{102, 29, 22000}));
        k.clearMail();
        // A high value at or below the low one takes back its old text and writes it again.
        k.enter(high, "110");
        QCOMPARE(high->text(), QStringLiteral("150.00"));
        QCOMPARE(k.mail(), (Mail{102, 28, 25000}));
        k.enter(low, "150");
        QCOMPARE(low->text(), QStringLiteral("120"));
        QCOMPARE(k.mail(), (Mail{102, 29, 22000}));
        // A refused field never loaded has nothing to write again.
        EntryField *empty = k.edit("empty");
        k.binder.check(k.binder.field(empty, {Param::txtAdjustY_T, 3}), [](double) { return false; });
        k.clearMail();
        k.enter(empty, "5");
        QCOMPARE(empty->text(), QString());
        QCOMPARE(k.s.ReqCmd, 0);
    }

    void theLoadLeavesAnEntryBeingMadeAlone()
    {
        Kit k;
        k.binder.field(k.edit("txtLPF1"), Param::txtLPF1);
        auto *table = new QTableWidget(1, 1, k.page.get());
        ParamTable t(k.binder, table);
        t.param(1, 1, Param::txtLPF2);
        k.up({{25, 10}, {47, 10}});
        k.binder.load();
        k.typeAndLeave("txtLPF1", "33"); // left without Enter: still being edited
        QLineEdit *editor = typeInCell(table, 1, 1, QStringLiteral("44"));
        QVERIFY(editor);
        k.up({{25, 12}, {47, 12}});
        k.binder.load();
        QCOMPARE(k.text("txtLPF1"), QStringLiteral("33"));
        QCOMPARE(cellText(table, 1, 1), QStringLiteral("10"));
        QTest::keyClick(editor, Qt::Key_Return);
        QCoreApplication::processEvents();
        QCOMPARE(k.mail(), (Mail{102, 47, 44}));
        QTest::keyClick(k.field("txtLPF1"), Qt::Key_Return);
        QCOMPARE(k.mail(), (Mail{102, 25, 33}));
        k.up({{25, 31}, {47, 41}}); // the controller's own values after the writes
        k.binder.load();
        QCOMPARE(k.text("txtLPF1"), QStringLiteral("31"));
        QCOMPARE(cellText(table, 1, 1), QStringLiteral("41"));
    }

    void anOptionGroupShowsAndWritesItsRow()
    {
        Kit k(2.1, QStringLiteral("Modbus RTU"));
        QList<QAbstractButton *> buttons{new QPushButton(k.page.get()), new QPushButton(k.page.get())};
        OptionGroup *group = k.binder.options(Param::btnSensorType2, buttons, {1, 2}, {0, 1});
        int rules = 0;
        k.binder.onChange([&rules] { ++rules; });
        k.binder.load();
        QCOMPARE(group->selected(), -1); // not read yet: no button chosen
        QCOMPARE(rules, 1);
        k.up(Param::btnSensorType2, 1); // legacy words: 0 and 1
        k.binder.load();
        QCOMPARE(group->selected(), 1);
        QCOMPARE(ButtonColour::of(buttons[1]), 65280);
        QCOMPARE(ButtonColour::of(buttons[0]), ButtonColour::FaceColour);
        k.up(Param::btnSensorType2, 7); // a word that fits no button
        k.binder.load();
        QCOMPARE(group->selected(), -1);
        QCOMPARE(ButtonColour::of(buttons[1]), ButtonColour::FaceColour);

        QTest::mouseClick(buttons[0], Qt::LeftButton);
        QCOMPARE(group->selected(), 0);
        QCOMPARE(k.cell(Param::btnSensorType2), QStringLiteral("0"));
        QCOMPARE(k.mail(), (Mail{102, 37, 0})); // legacy row, plain address in every protocol
        QCOMPARE(rules, 4);
        k.s.image.applyFirmware(2.31); // the current layout has its own words and row
        QTest::mouseClick(buttons[1], Qt::LeftButton);
        QCOMPARE(k.mail(), (Mail{102, 40146, 2}));
    }

    void aTableCellShowsClampsAndWritesItsRow()
    {
        Kit k;
        auto *table = new QTableWidget(2, 2, k.page.get());
        ParamTable t(k.binder, table);
        t.param(1, 1, ParamRef(Param::sprdSystem_SV, 1)); // row 107, AL10 at 2.31
        t.param(1, 2, Param::txtLPF1);                     // row 25, 2 to 180
        k.up(107, 3255);
        k.binder.load();
        QCOMPARE(cellText(table, 1, 1), QStringLiteral("25.5"));
        QCOMPARE(cellText(table, 1, 2), QString()); // not read yet
        QVERIFY(editCell(table, 1, 2, QStringLiteral("500")));
        QCOMPARE(k.mail(), (Mail{102, 25, 180}));
        QCOMPARE(cellText(table, 1, 2), QStringLiteral("180"));
        QVERIFY(editCell(table, 1, 1, QStringLiteral("-12.25")));
        QCOMPARE(k.mail(), (Mail{102, 107, 2878}));              // 2877.5, half to even
        QCOMPARE(cellText(table, 1, 1), QStringLiteral("-12.2")); // reloaded from the image's cell

        // An edit that changes nothing, or one dropped with Escape, writes nothing.
        k.clearMail();
        QVERIFY(editCell(table, 1, 2, QStringLiteral("180")));
        QVERIFY(editCell(table, 1, 2, QStringLiteral("90"), Qt::Key_Escape));
        QCOMPARE(k.s.ReqCmd, 0);
        QCOMPARE(cellText(table, 1, 2), QStringLiteral("180"));
        QVERIFY(!editCell(table, 2, 2, QStringLiteral("1"))); // nothing bound: no edit
    }

    void checkRadioAndLockedCells()
    {
        Kit k;
        auto *table = new QTableWidget(2, 3, k.page.get());
        ParamTable t(k.binder, table);
        bool on = false;
        int chosen = -1;
        t.check(1, 1, [&on] { return on; }, [&on](bool v) { on = v; });
        t.radio(2, {1, 2}, [&chosen] { return chosen; }, [&chosen](int i) { chosen = i; });
        t.edit(1, 3, [] { return QStringLiteral("x"); }, [](const QString &) { QFAIL("a locked cell committed"); });
        t.setLocked(1, 3, true);
        t.setLocked(2, 2, true);
        k.page->resize(400, 200);
        table->resize(400, 200);
        k.page->show();
        QVERIFY(QTest::qWaitForWindowExposed(k.page.get()));
        k.binder.load();
        clickCell(table, 1, 1);
        QVERIFY(on && cellChecked(table, 1, 1));
        clickCell(table, 1, 1);
        QVERIFY(!on && !cellChecked(table, 1, 1));
        QVERIFY(!editCell(table, 1, 3, QStringLiteral("y")));
        clickCell(table, 2, 2); // locked: does not choose
        QCOMPARE(chosen, -1);
        clickCell(table, 2, 1);
        QCOMPARE(chosen, 0);
        QVERIFY(cellChecked(table, 2, 1) && !cellChecked(table, 2, 2));
    }

    void aPageTakesTheRefreshOverAndGivesItBack()
    {
        PageFixture f;
        QTimer mainRefresh;
        f.s.MainRefreshTimer = &mainRefresh;
        f.s.setActiveRefreshTimer(nullptr);
        {
            QDialog outer;
            ParamPage page(f.bench.ctx, &outer);
            EntryField *filter = new EntryField(QStringLiteral("txtLPF1"), &outer);
            page.binder().field(filter, Param::txtLPF1);
            f.up(25, 12);
            page.open();
            QCOMPARE(filter->text(), QStringLiteral("12"));
            QVERIFY(f.s.ParamPageOpen);
            auto *own = outer.findChild<QTimer *>(QStringLiteral("tmrRefresh"));
            QCOMPARE(f.s.ActiveRefreshTimer.data(), own);
            {
                // A page opened from this one takes the refresh and gives it back to this one.
                QDialog inner;
                ParamPage sub(f.bench.ctx, &inner);
                sub.open();
                QVERIFY(f.s.ActiveRefreshTimer.data() != own);
            }
            QCOMPARE(f.s.ActiveRefreshTimer.data(), own);
            QVERIFY(f.s.ParamPageOpen);
            // The link starts the timer when the reply is in; its tick reloads.
            f.up(25, 40);
            f.s.startActiveRefresh();
            QTRY_COMPARE(filter->text(), QStringLiteral("40"));
            QVERIFY(!own->isActive());
        }
        QCOMPARE(f.s.ActiveRefreshTimer.data(), &mainRefresh);
        QVERIFY(!f.s.ParamPageOpen);
    }
};

QTEST_MAIN(BinderTest)
#include "tst_binder.moc"
