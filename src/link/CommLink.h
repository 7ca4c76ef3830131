#pragma once
#include "CommPort.h"
#include "ConsoleState.h"
#include "Files.h"
#include "LiveStatus.h"
#include "ReceiveBuffer.h"
#include "Requests.h"
#include <QObject>
#include <QTimer>
#include <stdexcept>

class StatusListener;

// The controller link: one serial line, one outstanding command. tmrSend
// sends one frame per tick, chosen by CmdState and the mailbox; the receive
// handler checks the reply, stores it in the controller image and picks the
// next state; tmrRecvErr resends or gives a machine up when no reply comes.
// Everything runs on the one event-loop thread; waits are timers, never sleeps.
class CommLink : public QObject {
    Q_OBJECT
public:
    CommLink(ConsoleState &state, CommPort &port, QObject *parent = nullptr);

    ConsoleState &state() { return m_st; }
    CommPort &port() { return m_port; }

    // Opening and closing as the operator does it. openLink() returns false
    // when the port cannot be opened (nothing changes then).
    bool openLink();
    bool closeLink();
    bool CommPort_Open();
    bool CommPort_Close();
    bool isPortOpen() const { return m_port.isOpen(); }
    // The device went away while open: the port is closed and the same device
    // is looked for every ReopenCheckMs until it is back; then it is opened
    // and scanned as the operator's open does.
    bool reopening() const { return m_reopenTimer.isActive(); }
    static constexpr int ReopenCheckMs = 1000;
    QString lastOpenError() const { return m_lastOpenError; }
    CommPort::OpenResult lastOpenResult() const { return m_lastOpenResult; }

    // The machine list changed. With the port open, the exchange in progress
    // is dropped (a late reply must not land in the slot that now holds
    // another machine) and the new list is scanned from its first slot, as at
    // opening. With the port closed nothing happens: opening scans.
    void restartScan();

    // The reply time-out, fixed once at start-up from CommBaud and CommWaitMs.
    void setReplyTimeoutFromBaud();
    int replyTimeoutMs() const { return tmrRecvErr.interval(); }
    static int baudTimeoutExtra(const QString &baud);   // -1 for a baud the table does not know
    static int whoSettleMs(const QString &baud);

    // Walks and the menu rule.
    bool update_menus();

    // PC Link sends: build, sum, log, write, start the time-out.
    void send_who(int machine);
    void send_rcv(int machine);
    void send_rcs(int machine);
    void send_rrp(int machine, int index);
    void send_rup(int machine, int index);
    void send_rtd(int machine, int index);
    void send_rpd(int machine, int pattern, int index);
    void send_rsd(int machine, int pattern, int segment, int index);
    void send_wrp(int machine, int index, const QByteArray &data);
    void send_wup(int machine, int index, const QByteArray &data, double firmwareVersion);
    void send_wtd(int machine, int index, const QByteArray &data);
    void send_wpd(int machine, int pattern, int index, const QByteArray &data);
    void send_wsd(int machine, int pattern, int segment, int index, const QByteArray &data);
    void set_rts(bool on);

    // The receive path.
    int scan_reply();
    ReceiveBuffer &receiveBuffer() { return m_buf; }

    // Handlers, public so tests can drive them.
    void tmrSend_Timer();
    void tmrRecvErr_Timer();
    void MSComm1_OnComm();

    void setStatusListener(StatusListener *l) { m_listener = l; }
    void setCommFileLog(bool on) { m_commFileLog = on; }
    void comm_file_log(const QByteArray &bytes);
    void comm_log_add(const QString &label, const QByteArray &bytes);

    QTimer tmrSend;
    QTimer tmrRecvErr;

    // Delay after parameter writes before the next frame, so the controller
    // can store them.
    static constexpr int WriteSettleMs = 800;

    // Result codes of scan_reply.
    enum { ScanGood = 0, ScanNoStx = 1, ScanMore = 10, ScanGoodAfterThrown = 99 };

signals:
    void frameLogged(const QString &label, const QByteArray &bytes); // every frame, both ways
    void frameSent();                 // the send lamp
    void bytesReceived();             // the receive lamp
    void portStateChanged(bool open);
    void scanMessageVisible(bool visible);  // lblMsg_STS
    void menusUpdated(bool anyOnline);
    void currentMachineShown(int machine);  // lblMC_No
    void machineTableChanged();             // sprdStatus changed
    void pollCompleted(int slot);           // RCV of a slot stored
    void linkEvent(const QString &text);    // one line per change of link state
    void lineLost();                        // the device went away; the port is closed
    // Bulk transfers: where the job of bulkJob stands, and its end.
    void bulkProgress(const BulkProgress &progress);
    void bulkFinished(BulkJob job);
    // Screen capture: the share of the reply received, the picture written
    // to DispScr.BMP, or why there is none this time.
    void screenProgress(int percent);
    void screenCaptured();
    void screenCaptureFailed(CaptureFault fault);
    // The clock rows are written up to lastRow (17: the date and time; else
    // the reserved start), or the controller acknowledged another row.
    void clockRowsWritten(int lastRow);
    void clockWriteRefused();
    // Segment editor: the segment rewrite is done.
    void segmentWriteDone();

private:
    friend class CommLinkTest;
    // Scheduler
    void sendPcLinkState(int machineP, int machineF);
    void sendModbusState(int machineP, int machineF);
    void beginScan();
    void portLost(int error, const QString &why);
    void reopenTick();
    void writeFrame(const QByteArray &frame);
    void writeModbus(const QByteArray &frame, int expectedReply);
    int slotMachine(int slot) const;
    void idleIfNothingSent();

    // Receive
    void onBytesWaiting();
    void onDataReceived();
    void takeBytes();
    void receivePcLink(const QByteArray &bytes);
    void receiveModbus(const QByteArray &bytes);
    void afterGoodReply(); // empty/start tmrSend, honouring the write wait
    void finishWriteWait();
    void dispatchPcLink();
    void dispatchModbus();
    void scanAnswered(int slot, const QString &firmwareText, bool modbusText);
    void scanEnd();
    void moveToNextOnlineSlot();
    void statusStored(int slot, const std::optional<RcvWords> &rows);
    void refreshIfFlagged();
    void textReadDone();
    bool blockSendPosted() const;
    void reportBulk(BulkTable table, int done, int total, bool finished = false);
    void textProgress(int row);
    void textsDone();
    void bulkEnd();
    void parameterBlockDone(int textState);
    void bulkNextPattern();
    void programChainStep();
    void bulkEndReceive();
    void sendChainNextPattern();

    // Store routines; each guards itself and logs to Err.LOG.
    void Disp_RRP(int slot, int index, QByteArrayView data);
    void Disp_RCV(int slot, const RcvWords &rows);
    void Disp_RUP(const QByteArray &frame, int offset, int firstRow, int words);
    void Disp_RUP_PLUS(const QByteArray &frame, int offset);
    void Disp_RTD(int row, const QByteArray &bytes);
    void Disp_RPD(int pattern, const QByteArray &frame, int offset, int firstWord, int words, const char *place);
    void Disp_RSD(int pattern, int segment, const QByteArray &frame, int offset, int firstWord, int words, const char *place);
    void saveScreen(const QByteArray &frame);
    template <class F> void guarded(const char *place, F &&f);

    ConsoleState &m_st;
    CommPort &m_port;
    StatusListener *m_listener = nullptr;
    ReceiveBuffer m_buf;
    QByteArray m_frame; // the frame that scan_reply found
    QTimer m_settleTimer;
    QTimer m_writeWaitTimer;
    bool m_settling = false;
    bool m_writeWait = false;
    bool m_pendingBytes = false;
    bool m_commFileLog = false;
    bool m_sentSomething = false;
    bool m_textReadBack = false; // the text read under way follows a text-row write
    int m_writeWaitAfterDispatch = 0;
    int m_retryBeforeReply = 0;
    int m_expectedModbusLength = 0;
    QString m_lastOpenError;
    QString m_openDevice; // the device of the open port
    struct LostLine {
        QString device;
        int portNo = 0;
        QString settings;
        QString protocol;
    } m_lostLine;
    QTimer m_reopenTimer;
    CommPort::OpenResult m_lastOpenResult = CommPort::OpenResult::Ok;
};

template <class F> void CommLink::guarded(const char *place, F &&f)
{
    try {
        f();
    } catch (const std::out_of_range &e) {
        WriteErrorLog(m_st.home, 9, QString::fromUtf8(e.what()), QLatin1String(place));
    } catch (const std::exception &e) {
        WriteErrorLog(m_st.home, 5, QString::fromUtf8(e.what()), QLatin1String(place));
    }
}
