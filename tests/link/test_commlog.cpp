// The service logs beside the program, line by line: CommData.Mon (every
// frame both ways, once switched on) and Err.LOG (the routines that guard
// themselves).
#include "LinkHarness.h"
#include <QtTest>

class CommLogTest : public QObject {
    Q_OBJECT
private slots:
    void commDataMonHasOneLinePerFrame()
    {
        LinkHarness h;
        const QString mon = h.dir.filePath("CommData.Mon");
        QCOMPARE(h.port.open({}, {}), CommPort::OpenResult::Ok);
        h.link->send_rcv(1);
        QVERIFY(!QFile::exists(mon)); // off until switched on

        h.link->setCommFileLog(true);
        h.link->send_rcv(1);
        // A piece of a reply, taken by the receive event as it comes.
        h.state->RxSettleMs = 0;
        h.state->CmdState = Cmd::PollValues;
        h.port.feed(QByteArray("\x02\xFF\x80\x07", 4));
        QCOMPARE(unstamped(mon), QByteArrayList({"02,48,48,49,82,67,86,03,13,10,\r", "02,255,128,07,\r"}));
    }

    void errLogNamesTheNumberTheCauseAndThePlace()
    {
        LinkHarness h;
        QCOMPARE(h.port.open({}, {}), CommPort::OpenResult::Ok);
        // A text row outside the table: the store routine logs and ends.
        h.state->CmdState = Cmd::ReadText;
        h.state->CmdIndex = h.state->CmdIndexEnd = 400;
        h.state->RxSettleMs = 0;
        h.port.feed(pcReply(1, "RTD", "0400," + QByteArray(29, 'a')));
        QCOMPARE(unstamped(h.dir.filePath("Err.LOG")),
                 QByteArrayList({"9,sprdTD: cell (1, 400) outside 1 x 311,Disp_RTD\r"}));
        // The link goes on: the read ends as if the row had been stored.
        QCOMPARE(h.state->CmdState, 1);
    }
};

QTEST_GUILESS_MAIN(CommLogTest)
#include "test_commlog.moc"
