// The page binder, once for every parameter page: a field bound to a
// parameter loads, clamps, commits and keeps a pair in order; an option group
// shows and writes its row; table cells are bound to rows. (The page frame
// taking the refresh over and giving it back: the menu walk in tests/app, the
// pages opened from pages in tests/pages.)
#include "../pages/PageFixture.h"
#include "EntryField.h"
#include "PageBinder.h"
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
        QCOMPARE(QStringList({scaleHigh->text(), limit->text(), filter->text()}), QStringList({"150.50", "100.00", ""})); // the filter not read yet
        // The controller's resolution; the limit has a fixed pattern.
        k.s.image.setTempDecimals(1);
        k.binder.load();
        QCOMPARE(QStringList({scaleHigh->text(), limit->text()}), QStringList({"150.5", "100.00"}));
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

    // (The row's address by layout and protocol: tests/image and tests/link.)
    void enterStoresTheCellAndWritesTheRow()
    {
        Kit k(2.31, QStringLiteral("Modbus RTU"));
        k.binder.field(k.edit("txtBias1"), Param::txtBias1_RTD);
        k.enter("txtBias1", "-1.255");
        // OFS: value x 100 + 10000; the cell keeps the exact value, the word is rounded half to even.
        QCOMPARE(k.cell(Param::txtBias1_RTD), QStringLiteral("9874.5"));
        QCOMPARE(k.mail(), (Mail{102, 40132, 9874}));
        k.enterAll({{"txtBias1", -1, "300", {102, 40132, 20000}, "100.00"}}); // Enter clamps as leaving does
    }

    void aPairKeepsHighAboveLow()
    {
        Kit k;
        EntryField *high = k.edit("high"), *low = k.edit("low");
        k.binder.pair(k.binder.field(high, {Param::txtScale1, 1}), k.binder.field(low, {Param::txtScale1, 0}));
        k.up({Param::txtScale1, 1}, 25000);
        k.up({Param::txtScale1, 0}, 5000);
        k.binder.load();
        k.enterAll({{"low", -1, "120", {102, 29, 22000}}}); // below 150: taken
        // A high value at or below the low one takes back its old text and writes it again.
        k.enterAll({{"high", -1, "110", {102, 28, 25000}, "150.00"}, {"low", -1, "150", {102, 29, 22000}, "120"}});
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
};

QTEST_MAIN(BinderTest)
#include "tst_binder.moc"
