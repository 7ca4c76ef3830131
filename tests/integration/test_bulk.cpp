// The bulk chains against the simulator in both link families: the parameter
// block received and sent, and the programs fetched row by row with their
// loaded flags, ending in the program cache.
#include "ProgramImage.h"
#include "SimConsole.h"
#include <QSignalSpy>
#include <QtTest>

class BulkTest : public QObject {
    Q_OBJECT

    SimConsole m_line;

    ConsoleState &bringUp(const QString &protocol)
    {
        m_line.startSim(protocol);
        return m_line.startConsole();
    }

private slots:
    void cleanup() { m_line.stop(); }

    void protocols_data()
    {
        QTest::addColumn<QString>("protocol");
        QTest::newRow("pclink") << QStringLiteral("PC Link");
        QTest::newRow("modbus") << QStringLiteral("Modbus RTU");
    }

    void parameterBlockReceivedAndSent_data() { protocols_data(); }
    void parameterBlockReceivedAndSent()
    {
        QFETCH(QString, protocol);
        ConsoleState &s = bringUp(protocol);
        QTRY_VERIFY_WITH_TIMEOUT(s.CmdState == 1 || s.CmdState == 2, 5000);
        QSignalSpy progress(&m_line.core->link(), &CommLink::bulkProgress);
        QSignalSpy finished(&m_line.core->link(), &CommLink::bulkFinished);
        auto last = [&progress] { return progress.last().at(0).value<BulkProgress>(); };

        s.image.sprdUP.clearCells();
        s.requests().startParameterReceive(false);
        QCOMPARE(s.BulkFormName, QStringLiteral("frmQM730_P_Recv"));
        QTRY_COMPARE_WITH_TIMEOUT(finished.size(), 1, 8000);
        QCOMPARE(finished.last().at(0).value<BulkJob>(), BulkJob::ParameterReceive);
        // The parameter block is through ("接收完了" on the screen).
        QCOMPARE(last().job, BulkJob::ParameterReceive);
        QCOMPARE(last().table, BulkTable::Parameters);
        QVERIFY(last().finished);
        QCOMPARE(s.image.sprdUP.text(1, 506), m_line.sim->command(QStringLiteral("get 1 up 506")));
        QCOMPARE(s.image.sprdUP.text(1, 300), m_line.sim->command(QStringLiteral("get 1 up 300")));

        s.image.sprdUP.setNumber(1, 25, 9);
        s.requests().startParameterSend(false);
        QTRY_COMPARE_WITH_TIMEOUT(finished.size(), 2, 8000);
        QCOMPARE(finished.last().at(0).value<BulkJob>(), BulkJob::ParameterSend);
        QCOMPARE(last().job, BulkJob::ParameterSend); // "傳送完了"
        QVERIFY(last().finished);
        QCOMPARE(m_line.sim->command(QStringLiteral("get 1 up 25")), QStringLiteral("9"));
        QTRY_VERIFY(s.CmdState == 1 || s.CmdState == 2);
    }

    void programsFetchedWhereNotLoaded_data() { protocols_data(); }
    void programsFetchedWhereNotLoaded()
    {
        QFETCH(QString, protocol);
        const bool modbus = protocol == QLatin1String("Modbus RTU");
        ConsoleState &s = bringUp(protocol);
        QTRY_VERIFY_WITH_TIMEOUT(s.CmdState == 1 || s.CmdState == 2, 5000);
        // Everything is loaded but the names and data of patterns 1 and 2.
        s.image.PatternLoaded.fill(true);
        s.image.PatternNameLoaded.fill(true);
        for (int p : {0, 1})
            s.image.PatternLoaded[p] = s.image.PatternNameLoaded[p] = false;
        QSignalSpy progress(&m_line.core->link(), &CommLink::bulkProgress);
        QSignalSpy finished(&m_line.core->link(), &CommLink::bulkFinished);
        s.requests().startNameFetch(12);
        QTRY_COMPARE_WITH_TIMEOUT(finished.size(), 1, 15000);

        QVERIFY(s.image.PatternLoaded[0] && s.image.PatternLoaded[1] && s.image.PatternNameLoaded[0]);
        QCOMPARE(s.image.sprdTD.text(1, 12), m_line.sim->command(QStringLiteral("get 1 td 12")));
        const int segments = m_line.sim->command(QStringLiteral("get 1 pd 1 1")).toInt();
        QVERIFY(segments > 0);
        QCOMPARE(int(s.image.sprdPD.number(1, 1)), segments);
        QCOMPARE(s.image.sprdSD.text(Sd::column(segments, 1), 1),
                 m_line.sim->command(QStringLiteral("get 1 sd 1 %1 1").arg(segments)));
        QCOMPARE(s.image.sprdPD.text(8, 2), m_line.sim->command(QStringLiteral("get 1 pd 2 8")));
        // Pattern 3 was flagged as loaded, so it was not asked for.
        QVERIFY(s.image.sprdPD.isEmpty(1, 3));
        if (!modbus) {
            // The first name of the fetch: "程式組名稱 接收中... [1/100]".
            const auto first = progress.first().at(0).value<BulkProgress>();
            QCOMPARE(first.job, BulkJob::ProgramFetch);
            QCOMPARE(first.table, BulkTable::Texts);
            QCOMPARE(QList<int>({first.done, first.total}), QList<int>({1, 100}));
        }
        QVERIFY(QFile::exists(programCachePath(m_line.home->path(), 1, u"SD")));
    }
};

QTEST_GUILESS_MAIN(BulkTest)
#include "test_bulk.moc"
