// The wait screen of the program fetch: it asks only for what is not loaded,
// words the link's progress, ends, stops, and writes the timing note.
#include "CommLink.h"
#include "Files.h"
#include "ProgramFixture.h"
#include "Widgets.h"
#include "frmQM730_PTN_Recv.h"
#include <QFile>
#include <QPushButton>
#include <QRegularExpression>
#include <QtTest>

class FetchScreenTest : public QObject {
    Q_OBJECT
private slots:
    void onlyRowsNotLoadedAreAskedFor_data()
    {
        QTest::addColumn<QString>("protocol");
        QTest::addColumn<int>("nameCode");
        QTest::newRow("pclink") << QStringLiteral("PC Link") << int(Cmd::RecvText);
        QTest::newRow("modbus") << QStringLiteral("Modbus RTU") << int(Cmd::RecvTextInputs);
    }
    void onlyRowsNotLoadedAreAskedFor()
    {
        QFETCH(QString, protocol);
        QFETCH(int, nameCode);
        ProgramBench b(2.31, protocol);
        ControllerImage &img = b.state.image;
        b.loadAll();
        // Names of patterns 1 to 3 are in, that of pattern 4 is not.
        img.PatternNameLoaded[3] = false;
        img.sprdTD.setText(1, 13, QStringLiteral("已讀"));
        img.sprdTD.setText(1, 15, QStringLiteral("舊名"));
        {
            frmQM730_PTN_Recv screen(b.bench.ctx);
            QCOMPARE(QList<int>({b.state.ReqCmd, b.state.ReqIndex, b.state.CmdIndexEnd}), QList<int>({nameCode, 15, 111}));
            // What was read stays; the row about to be read is emptied.
            QCOMPARE(img.sprdTD.text(1, 13), QStringLiteral("已讀"));
            QVERIFY(img.sprdTD.isEmpty(1, 15));
        }
        // Every name in: the first pattern not loaded, and only its count emptied.
        b.loadAll();
        img.PatternLoaded[6] = img.PatternLoaded[8] = false;
        img.sprdPD.setNumber(1, 5, 4);
        img.sprdPD.setNumber(1, 9, 4);
        b.clearMailbox();
        {
            frmQM730_PTN_Recv screen(b.bench.ctx);
            QCOMPARE(b.state.ReqCmd, int(Cmd::RecvPattern));
            QCOMPARE(b.state.PatternNo, 7);
            QCOMPARE(img.sprdPD.text(1, 5), QStringLiteral("4"));
            QVERIFY(img.sprdPD.isEmpty(1, 9));
        }
    }

    void progressIsWordedAndTheEndClosesTheScreen()
    {
        ProgramBench b;
        frmQM730_PTN_Recv screen(b.bench.ctx);
        screen.show();
        CommLink &link = b.bench.link;
        auto report = [&](BulkTable t, int done, bool failed = false) {
            emit link.bulkProgress(BulkProgress{BulkJob::ProgramFetch, t, done, 100, false, failed});
        };
        report(BulkTable::Texts, 3);
        QCOMPARE(screen.message(), QStringLiteral("程式組名稱 接收中... [3/100]"));
        report(BulkTable::Patterns, 42);
        QCOMPARE(screen.message(), QStringLiteral("程式組資料 接收中... [42/100]"));
        // A silent machine leaves the line standing; another job's news is not this screen's.
        report(BulkTable::Patterns, 42, true);
        emit link.bulkProgress(BulkProgress{BulkJob::ParameterReceive, BulkTable::Texts, 1, 111});
        emit link.bulkFinished(BulkJob::ParameterReceive);
        QTest::qWait(50);
        QCOMPARE(screen.message(), QStringLiteral("程式組資料 接收中... [42/100]"));
        QVERIFY(screen.isVisible());

        emit link.bulkFinished(BulkJob::ProgramFetch);
        QCOMPARE(screen.message(), frmQM730_PTN_Recv::Done);
        QTRY_VERIFY(!screen.isVisible());
        QCOMPARE(screen.result(), int(QDialog::Accepted));
        QVERIFY(!b.state.ReceptionStopped);
    }

    void stopRaisesTheFlagAndEndsTheFetch()
    {
        ProgramBench b;
        for (bool button : {true, false}) {
            b.state.ReceptionStopped = false;
            frmQM730_PTN_Recv screen(b.bench.ctx);
            screen.show();
            QCOMPARE(b.state.ReqCmd, int(Cmd::RecvText));
            if (button)
                QTest::mouseClick(child<QPushButton>(screen, "btnStop"), Qt::LeftButton);
            else
                QTest::keyClick(&screen, Qt::Key_Escape); // closing the window is the same stop
            QVERIFY(b.state.ReceptionStopped);
            QCOMPARE(b.state.ReqCmd, int(Cmd::Poll));
            QVERIFY(!screen.isVisible());
            QCOMPARE(screen.result(), int(QDialog::Rejected));
        }
    }

    // The note of the fetch's timing is written only when WChkTime.INI says 1,
    // and only when something was read.
    void timingNoteOnlyWhenAskedFor()
    {
        ProgramBench b;
        const QString note = b.home.path() + QStringLiteral("/PTN_PASS.TM");
        const QString switchFile = b.home.path() + QStringLiteral("/WChkTime.INI");
        auto fetchOnce = [&] {
            frmQM730_PTN_Recv screen(b.bench.ctx);
            emit b.bench.link.bulkFinished(BulkJob::ProgramFetch);
            screen.exec();
        };
        fetchOnce(); // no WChkTime.INI, then one that says 0
        writeTextLinesAtomic(switchFile, {QStringLiteral("0")});
        fetchOnce();
        QVERIFY(!QFile::exists(note));
        writeTextLinesAtomic(switchFile, {QStringLiteral("1")});
        b.state.CommBaud = QStringLiteral("38400");
        fetchOnce();
        fetchOnce();
        const auto lines = readTextLines(note);
        QVERIFY(lines);
        QCOMPARE(lines->size(), 2);
        static const QRegularExpression form(
            QStringLiteral("^BAUD:38400\\tSTART:\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d\\tEND:\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d$"));
        QVERIFY2(form.match(lines->first()).hasMatch(), qPrintable(lines->first()));

        // Everything loaded: the screen asks nothing, ends at once, writes no note.
        QFile::remove(note);
        b.loadAll();
        b.clearMailbox();
        frmQM730_PTN_Recv screen(b.bench.ctx);
        QCOMPARE(b.state.ReqCmd, 0);
        QCOMPARE(screen.message(), frmQM730_PTN_Recv::Done);
        QCOMPARE(screen.exec(), int(QDialog::Accepted));
        QVERIFY(!b.state.ReceptionStopped);
        QVERIFY(!QFile::exists(note));
    }
};

QTEST_MAIN(FetchScreenTest)
#include "tst_fetch_screen.moc"
