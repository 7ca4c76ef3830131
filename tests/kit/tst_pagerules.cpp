// What a page adds to the binder: tables of cells bound to rows, fields with
// bounds, patterns, encodings and commit rules of the page's own, option
// groups whose row follows the page's mode, and edits dropped when the
// fields change rows.
#include "ButtonColour.h"
#include "CellEdit.h"
#include "EntryField.h"
#include "PageBinder.h"
#include "ParamTable.h"
#include "ScreenBench.h"
#include <QDialog>
#include <QPushButton>
#include <QTemporaryDir>
#include <QtTest>

namespace {

struct Bench {
    QTemporaryDir dir;
    ScreenBench bench{dir.path()};
    ConsoleState &s = bench.state;
    QDialog dialog;
    PageBinder binder{bench.ctx};

    explicit Bench(double firmware = 2.31)
    {
        s.CurrentMachine = 1;
        s.image.applyFirmware(firmware);
        s.image.setTempDecimals(2);
    }
    void up(int row, qint64 word) { s.image.sprdUP.setNumber(1, row, word); }
    QList<int> mail() const
    {
        return {s.ReqCmd, s.ReqIndex, (quint8(s.ReqData[0]) << 8) | quint8(s.ReqData[1])};
    }
    void enter(EntryField *e, const QString &text)
    {
        e->selectAll();
        QTest::keyClicks(e, text);
        QTest::keyClick(e, Qt::Key_Return);
    }
};

} // namespace

class PageRulesTest : public QObject {
    Q_OBJECT
private slots:
    void aTableCellShowsClampsAndWritesItsRow()
    {
        Bench b;
        auto *table = new QTableWidget(2, 2, &b.dialog);
        ParamTable t(b.binder, table);
        t.param(1, 1, ParamRef(Param::sprdSystem_SV, 1)); // row 107, AL10 at 2.31
        t.param(1, 2, Param::txtLPF1);                     // row 25, 2 to 180
        b.up(107, 3255);
        b.binder.load();
        QCOMPARE(cellText(table, 1, 1), QStringLiteral("25.5"));
        QCOMPARE(cellText(table, 1, 2), QString()); // not read yet

        QVERIFY(editCell(table, 1, 2, QStringLiteral("500")));
        QCOMPARE(b.mail(), (QList<int>{102, 25, 180}));
        QCOMPARE(cellText(table, 1, 2), QStringLiteral("180"));
        QVERIFY(editCell(table, 1, 1, QStringLiteral("-12.25")));
        QCOMPARE(b.mail(), (QList<int>{102, 107, 2878})); // 2877.5, half to even
        QCOMPARE(cellText(table, 1, 1), QStringLiteral("-12.2")); // reloaded from the image's cell

        // An edit that changes nothing, or one dropped with Escape, writes nothing.
        b.s.ReqCmd = 0;
        QVERIFY(editCell(table, 1, 2, QStringLiteral("180")));
        QVERIFY(editCell(table, 1, 2, QStringLiteral("90"), Qt::Key_Escape));
        QCOMPARE(b.s.ReqCmd, 0);
        QCOMPARE(cellText(table, 1, 2), QStringLiteral("180"));
        // Cells nothing is bound to take no edit.
        QVERIFY(!editCell(table, 2, 2, QStringLiteral("1")));
    }

    void theLoadLeavesTheCellBeingEditedAlone()
    {
        Bench b;
        auto *table = new QTableWidget(1, 1, &b.dialog);
        ParamTable t(b.binder, table);
        t.param(1, 1, Param::txtLPF1);
        b.up(25, 10);
        b.binder.load();
        QLineEdit *editor = typeInCell(table, 1, 1, QStringLiteral("33"));
        QVERIFY(editor);
        b.up(25, 12);
        b.binder.load();
        QCOMPARE(cellText(table, 1, 1), QStringLiteral("10"));
        QTest::keyClick(editor, Qt::Key_Return);
        QCoreApplication::processEvents();
        QCOMPARE(b.mail(), (QList<int>{102, 25, 33}));
        b.up(25, 31);
        b.binder.load();
        QCOMPARE(cellText(table, 1, 1), QStringLiteral("31"));
    }

    void checkRadioButtonAndLockedCells()
    {
        Bench b;
        auto *table = new QTableWidget(2, 3, &b.dialog);
        ParamTable t(b.binder, table);
        bool on = false;
        int chosen = -1;
        int opened = 0;
        int loads = 0;
        t.check(1, 1, [&on] { return on; }, [&on](bool v) { on = v; });
        t.setText(2, 1, QStringLiteral("溫度"));
        t.setText(2, 2, QStringLiteral("濕度"));
        t.radio(2, {1, 2}, [&chosen] { return chosen; }, [&chosen](int i) { chosen = i; });
        t.button(1, 2, [] { return QStringLiteral("05"); }, [&opened] { ++opened; });
        t.edit(1, 3, [] { return QStringLiteral("x"); }, [](const QString &) { QFAIL("a locked cell committed"); });
        t.setLocked(1, 3, true);
        b.binder.onChange([&loads] { ++loads; });
        b.dialog.resize(400, 200);
        table->resize(400, 200);
        b.dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&b.dialog));
        b.binder.load();
        QCOMPARE(cellText(table, 1, 2), QStringLiteral("05"));
        QCOMPARE(cellText(table, 2, 2), QStringLiteral("濕度")); // radio cells keep their texts
        QVERIFY(!cellChecked(table, 1, 1) && !cellChecked(table, 2, 1) && !cellChecked(table, 2, 2));

        clickCell(table, 1, 1);
        QVERIFY(on && cellChecked(table, 1, 1));
        clickCell(table, 1, 1);
        QVERIFY(!on && !cellChecked(table, 1, 1));
        clickCell(table, 2, 2);
        QCOMPARE(chosen, 1);
        QVERIFY(cellChecked(table, 2, 2) && !cellChecked(table, 2, 1));
        clickCell(table, 1, 2);
        QCOMPARE(opened, 1);
        QCOMPARE(loads, 5); // the page reloads after every commit

        clickCell(table, 1, 3);
        QVERIFY(!editCell(table, 1, 3, QStringLiteral("y")));
        QVERIFY(t.isLocked(1, 3));
        t.setLocked(2, 2, true);
        clickCell(table, 2, 1);
        clickCell(table, 2, 2);
        QCOMPARE(chosen, 0); // the locked one did not choose
    }

    void aFieldsOwnBoundsPatternEncodingAndRule()
    {
        Bench b;
        double ceiling = 50;
        auto *scale = new EntryField(QStringLiteral("txtScale1"), &b.dialog);
        EntryBinding *f = b.binder.field(scale, {Param::txtScale1, 1}); // row 28, T100
        b.binder.setRange(f, [&ceiling] { return std::optional<EntryBinding::Range>({0, ceiling, QStringLiteral("0.0")}); });
        b.up(28, 12345);
        b.binder.load();
        QCOMPARE(scale->text(), QStringLiteral("23.5")); // the page's pattern, not the resolution's "0.00"
        b.enter(scale, QStringLiteral("70"));
        QCOMPARE(b.mail(), (QList<int>{102, 28, 15000}));
        ceiling = 80; // bounds worked out at each commit
        b.enter(scale, QStringLiteral("70"));
        QCOMPARE(b.mail(), (QList<int>{102, 28, 17000}));

        auto *delay = new EntryField(QStringLiteral("txtDelay"), &b.dialog);
        EntryBinding *d = b.binder.field(delay, ParamRef(Param::InnerSignal, 1, IsDelayMin)); // row 214
        b.binder.setEncoding(d, [] { return Encoding::TZ; });
        b.binder.adjust(d, [](const QString &text) { return text == QLatin1String("999") ? QStringLiteral("300.0") : text; });
        b.up(214, 1250);
        b.binder.load();
        QCOMPARE(delay->text(), QStringLiteral("25.0"));
        b.enter(delay, QStringLiteral("999"));
        QCOMPARE(delay->text(), QStringLiteral("300.0"));
        QCOMPARE(b.mail(), (QList<int>{102, 214, 4000}));
    }

    void aGroupAndFieldsFollowTheModeOfThePage()
    {
        Bench b;
        int n = 1;
        QList<QAbstractButton *> buttons{new QPushButton(&b.dialog), new QPushButton(&b.dialog)};
        OptionGroup *g = b.binder.options([&n] { return std::optional<ParamRef>(ParamRef(Param::InnerSignal, n, IsDirect)); },
                                          buttons, {0, 1});
        auto *delay = new EntryField(QStringLiteral("txtDelay"), &b.dialog);
        b.binder.field(delay, [&n] { return std::optional<ParamRef>(ParamRef(Param::InnerSignal, n, IsDelaySec)); });
        b.up(213, 1); // signal 1: outside
        b.up(215, 5);
        b.up(220, 0); // signal 2: inside
        b.up(222, 40);
        b.binder.load();
        QCOMPARE(g->selected(), 1);
        delay->selectAll();
        QTest::keyClicks(delay, QStringLiteral("17")); // an edit of signal 1, not committed

        n = 2;
        b.binder.discardEdits();
        b.binder.load();
        QCOMPARE(g->selected(), 0);
        QCOMPARE(delay->text(), QStringLiteral("40"));
        QTest::mouseClick(buttons[1], Qt::LeftButton);
        QCOMPARE(b.mail(), (QList<int>{102, 220, 1}));
        QCOMPARE(g->param(), ParamRef(Param::InnerSignal, 2, IsDirect));
    }
};

QTEST_MAIN(PageRulesTest)
#include "tst_pagerules.moc"
