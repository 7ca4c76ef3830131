// The program fetch and the pattern editor against the simulator, in PC Link
// and Modbus RTU: the editor opens on an empty image, the fetch is stopped
// half-way, the next opening goes on from where it stood and reads nothing
// twice, and a repeat count and a name typed into the list end up in the
// simulated controller's memory and, read back, on the screen.
#include "ModalDriver.h"
#include "ProgramImage.h"
#include "Screens.h"
#include "SimConsole.h"
#include "TableTyping.h"
#include "Widgets.h"
#include "frmQM730Prg_PTN.h"
#include "frmQM730_PTN_Recv.h"
#include <QLabel>
#include <QtTest>
#include <algorithm>
#include <memory>

namespace {

int loadedPatterns(const ControllerImage &img)
{
    return int(std::count(img.PatternLoaded.begin(), img.PatternLoaded.end(), true));
}

} // namespace

class ProgramEditTest : public QObject {
    Q_OBJECT

    SimConsole m_line;

private slots:
    void cleanup() { m_line.reset(); }

    void stoppedFetchResumesAndEditsReachTheController_data() { protocolRows({"PC Link", "Modbus RTU"}); }
    void stoppedFetchResumesAndEditsReachTheController()
    {
        QFETCH(QString, protocol);
        // Patterns 1 to 8 with two segments each, the other 92 empty.
        QVERIFY(m_line.bringUp(protocol, QStringLiteral("1"), {true}, {QStringLiteral("programs 1 8 2")}, {QStringLiteral("--no-pace")}));
        ConsoleState &s = m_line.core->state();
        ControllerImage &img = s.image;
        QTRY_VERIFY_WITH_TIMEOUT(polling(s), 5000);
        QCOMPARE(s.PatternCount(), 100);
        QCOMPARE(loadedPatterns(img), 0);

        // First opening: "停止" once a few patterns are in.
        {
            ModalDriver d;
            d.then([&](QWidget *w) {
                if (!QTest::qWaitFor([&] { return loadedPatterns(img) >= 5; }, 30000))
                    QTest::qFail("fewer than five patterns arrived", __FILE__, __LINE__);
                w->findChild<QPushButton *>(QStringLiteral("btnStop"))->click();
            });
            frmQM730Prg_PTN editor(m_line.core->context());
            QCOMPARE(d.met, QStringList({"frmQM730_PTN_Recv"}));
            QVERIFY(d.unexpected.isEmpty());
            QCOMPARE(editor.exec(), int(QDialog::Rejected)); // closes itself at once
        }
        QVERIFY(!s.ReceptionStopped);
        QVERIFY(!QFile::exists(programCachePath(m_line.home->path(), 1, u"PD")));
        QTRY_VERIFY_WITH_TIMEOUT(polling(s), 5000);
        const int before = loadedPatterns(img);
        QVERIFY2(before >= 5 && before < 100, qPrintable(QString::number(before)));
        QVERIFY(std::all_of(img.PatternNameLoaded.begin(), img.PatternNameLoaded.begin() + 100, [](bool b) { return b; }));
        QCOMPARE(img.sprdTD.text(1, patternNameRow(8)), QStringLiteral("程式8"));

        // Marks in rows already read: the second opening must leave them.
        img.sprdTD.setText(1, patternNameRow(1), QStringLiteral("舊名"));
        img.sprdPD.setNumber(Pd::RepeatAll, 1, 777);
        QVERIFY(m_line.ok(QStringLiteral("log clear")));

        ModalDriver d;
        d.then([](QWidget *w) { // the wait screen ends by itself
            if (!QTest::qWaitFor([w] { return !w->isVisible(); }, 30000)) {
                QTest::qFail("the wait screen stayed open", __FILE__, __LINE__);
                w->close();
            }
        });
        frmQM730Prg_PTN editor(m_line.core->context());
        editor.show();
        QCOMPARE(d.met, QStringList({"frmQM730_PTN_Recv"}));
        QCOMPARE(loadedPatterns(img), 100);
        QCOMPARE(img.sprdTD.text(1, patternNameRow(1)), QStringLiteral("舊名"));
        QCOMPARE(img.sprdPD.text(Pd::RepeatAll, 1), QStringLiteral("777"));
        QCOMPARE(img.sprdPD.text(Pd::SegmentCount, 8), QStringLiteral("2"));
        QCOMPARE(img.sprdSD.text(Sd::column(2, Sd::SegTempSV), 8), m_line.sim->command(QStringLiteral("get 1 sd 8 2 1")));
        QCOMPARE(img.sprdPD.text(Pd::SegmentCount, 100), QStringLiteral("0"));
        if (protocol == QLatin1String("PC Link")) {
            int patternReads = 0, nameReads = 0;
            for (const QByteArray &f : m_line.sim->frames()) {
                patternReads += f.mid(4, 3) == "RPD";
                nameReads += f.mid(4, 3) == "RTD";
            }
            QCOMPARE(patternReads, 100 - before);
            QCOMPARE(nameReads, 0);
        }
        QTRY_VERIFY_WITH_TIMEOUT(polling(s), 5000);

        // The repeat count of pattern 2, then the name of pattern 3.
        auto *list = child<QTableWidget>(editor, "sprdPattern");
        typeInto(list, 1, frmQM730Prg_PTN::ColRepeatAll, QStringLiteral("7"));
        QTRY_COMPARE_WITH_TIMEOUT(m_line.sim->command(QStringLiteral("get 1 pd 2 5")), QStringLiteral("7"), 5000);
        QTRY_VERIFY_WITH_TIMEOUT(polling(s), 5000);
        QCOMPARE(list->item(1, frmQM730Prg_PTN::ColRepeatAll)->text(), QStringLiteral("7"));
        typeInto(list, 2, frmQM730Prg_PTN::ColName, QStringLiteral("新程式名稱"));
        QTRY_COMPARE_WITH_TIMEOUT(m_line.sim->command(QStringLiteral("get 1 td 14")), QStringLiteral("新程式名稱"), 5000);
        QTRY_VERIFY_WITH_TIMEOUT(polling(s), 5000);
        QCOMPARE(list->item(2, frmQM730Prg_PTN::ColName)->text(), QStringLiteral("新程式名稱"));
        editor.close();
        QVERIFY(QFile::exists(programCachePath(m_line.home->path(), 1, u"PD")));
        QVERIFY(d.unexpected.isEmpty());
    }

    // Firmware with 300 patterns on Modbus RTU: the name blocks go on to the
    // last name. Register numbers are 16 bits, so patterns past 191 have none:
    // the fetch ends before them and a write to one is dropped; polling goes on.
    void threeHundredPatternsOnModbus()
    {
        QVERIFY(m_line.bringUp(QStringLiteral("Modbus RTU"), QStringLiteral("1:2.09"), {true}, {QStringLiteral("programs 1 300 1")},
                               {QStringLiteral("--no-pace")}));
        ConsoleState &s = m_line.core->state();
        ControllerImage &img = s.image;
        QTRY_VERIFY_WITH_TIMEOUT(polling(s), 5000);
        QCOMPARE(s.PatternCount(), 300);
        img.PatternLoaded.fill(true);
        for (int p = 190; p <= 193; ++p)
            img.PatternLoaded[size_t(p - 1)] = false;
        const QString bad = s.sprdCommState.text(2, 1);
        {
            frmQM730_PTN_Recv fetch(m_line.core->context());
            QTimer::singleShot(20000, &fetch, &QDialog::reject); // a hang fails below, not the run
            QCOMPARE(fetch.exec(), int(QDialog::Accepted));
        }
        QVERIFY(std::all_of(img.PatternNameLoaded.begin(), img.PatternNameLoaded.end(), [](bool b) { return b; }));
        QCOMPARE(img.sprdTD.text(1, patternNameRow(300)), QStringLiteral("程式300"));
        QCOMPARE(img.sprdTD.text(1, patternNameRow(291)), QStringLiteral("程式291"));
        QVERIFY(img.PatternLoaded[189] && img.PatternLoaded[190]);
        QVERIFY(!img.PatternLoaded[191] && !img.PatternLoaded[192]);
        QCOMPARE(img.sprdPD.text(Pd::SegmentCount, 191), QStringLiteral("1"));

        QVERIFY(m_line.ok(QStringLiteral("log clear")));
        s.requests().writePatternWord(250, Pd::RepeatAll, 9);
        const int polls = int(s.sprdCommState.number(1, 1));
        QTRY_VERIFY_WITH_TIMEOUT(s.sprdCommState.number(1, 1) > polls + 2, 5000);
        for (const QByteArray &f : m_line.sim->frames())
            QCOMPARE(int(quint8(f[1])), 3); // reads only
        QCOMPARE(m_line.sim->command(QStringLiteral("get 1 pd 250 5")), QStringLiteral("1"));
        QCOMPARE(s.sprdCommState.text(2, 1), bad);
    }
};

QTEST_MAIN(ProgramEditTest)
#include "test_program_edit.moc"
