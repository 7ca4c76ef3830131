// The frame scan and the failure table of the receive path.
#include "LinkHarness.h"
#include <QtTest>

class ReceiveTest : public QObject {
    Q_OBJECT

    int scan(LinkHarness &h, const QByteArray &bytes)
    {
        h.link->receiveBuffer().append(bytes);
        return h.link->scan_reply();
    }
    // Scans on a fresh link, the PC Link sum on when asked; `kept` gets the buffer left.
    int scan(const QByteArray &bytes, bool sum = false, QByteArray *kept = nullptr, double firmware = 0)
    {
        LinkHarness h;
        if (sum)
            h.state->CommProtocol = QStringLiteral("PC Link + crc");
        if (firmware > 0)
            h.state->image.applyFirmware(firmware);
        const int code = scan(h, bytes);
        if (kept)
            *kept = h.link->receiveBuffer().bytes();
        return code;
    }
    static QByteArray badEtx(QByteArray frame, int at)
    {
        frame[at] = 'E';
        return frame;
    }

private slots:
    void shortBuffersWait()
    {
        QByteArray kept;
        QCOMPARE(scan("\x02" "001RCV,OK,", false, &kept), 10);
        QCOMPARE(kept.size(), 11); // nothing dropped yet
        QCOMPARE(scan(QByteArray(13, 'x')), 10); // under 14 bytes of noise: wait for the time-out
        QCOMPARE(scan(QByteArray(20, 'x')), 1);  // more is noise alone
    }

    void noiseBeforeAFrameIsDropped()
    {
        LinkHarness h;
        const QByteArray frame = rcvReply(1, {12500});
        QCOMPARE(scan(h, "\xFF\x00zz\x02" "9x" + frame), 0);
        QCOMPARE(h.link->receiveBuffer().bytes(), frame);
        QCOMPARE(h.state->LastReplyCmd, QStringLiteral("RCV"));
    }

    void splitReplyIsOneFrame()
    {
        LinkHarness h;
        const QByteArray frame = rcvReply(1, {12500});
        QCOMPARE(scan(h, frame.left(30)), 10);
        QCOMPARE(scan(h, frame.mid(30)), 0);
        QCOMPARE(h.link->receiveBuffer().bytes(), frame);
    }

    void twoFramesKeepTheFirst()
    {
        LinkHarness h;
        const QByteArray first = rrpReply(1, {1});
        QCOMPARE(scan(h, first + rcvReply(1, {})), 0);
        QCOMPARE(h.link->receiveBuffer().bytes(), first);
        QCOMPARE(h.state->LastReplyCmd, QStringLiteral("RRP"));
    }

    void droppedFramesLeaveTheGoodOneBehind()
    {
        QByteArray kept;
        // No ",OK,": eleven bytes go.
        const QByteArray good = pcReply(1, "WRP", "0012");
        QCOMPARE(scan("\x02" "001WRP,NO," + good, false, &kept), 0);
        QCOMPARE(kept, good);
        // Without the sum a bad ETX drops the frame and lets what follows decide.
        const QByteArray bad = badEtx(rcvReply(1, {}), 56);
        QCOMPARE(scan(bad), 1);
        QCOMPARE(scan(bad + rrpReply(1, {}), false, &kept), 0);
        QCOMPARE(kept, rrpReply(1, {}));
        // The right length with the ETX one place early drops the whole length.
        QByteArray early = pcReply(1, "WRP", "0012");
        early.replace(15, 3, "\x03\x0D\x0D");
        QCOMPARE(scan(early + pcReply(1, "WRP", "0013"), false, &kept), 0);
        QCOMPARE(kept, pcReply(1, "WRP", "0013"));
        // Unknown and open-ended commands do not hang.
        QCOMPARE(scan("\x02" "001RSP,OK,xxxx" + rcvReply(1, {})), 0);
        QCOMPARE(scan("\x02" "001XYZ,OK,xxxx"), 1);
        // A reply from another machine number is taken.
        QCOMPARE(scan(rcvReply(42, {})), 0);
    }

    void lengthsFollowTheIndexAndTheFirmware()
    {
        const QByteArray row = pcReply(1, "RUP", "0080," + word(2));
        QCOMPARE(row.size(), 21);
        QCOMPARE(scan(row), 0);
        for (const auto &[fw, words] : {std::pair{2.31, 512}, {2.09, 492}, {1.81, 456}, {1.5, 392}}) {
            const QByteArray block = rupReply(1, words);
            QCOMPARE(block.size(), 2 * words + 19);
            QCOMPARE(scan(block.left(block.size() - 1), false, nullptr, fw), 10);
            QCOMPARE(scan(block, false, nullptr, fw), 0);
        }
        QByteArray kept;
        QCOMPARE(scan(pcReply(1, "RPD", "0003,0005," + word(7)), false, &kept), 0);
        QCOMPARE(kept.size(), 26);
        QCOMPARE(scan(pcReply(1, "RSD", "0003,0002,0000," + QByteArray(58, '\x01')), false, &kept), 0);
        QCOMPARE(kept.size(), 87);
    }

    void sumMode()
    {
        const QByteArray good = rcvReply(1, {}, true);
        QByteArray kept;
        QCOMPARE(scan(good, true, &kept), 0);
        QCOMPARE(kept.size(), 59); // the sum is cut off
        QCOMPARE(scan(good.left(60), true), 10); // the sum is still coming
        QByteArray wrong = good;
        wrong[wrong.size() - 1] = char(wrong[wrong.size() - 1] + 1);
        QCOMPARE(scan(wrong, true), 100);
        // A bad ETX throws away the good frame behind it, or waits for a short one.
        QCOMPARE(scan(badEtx(good, 56) + rrpReply(1, {}, true), true), 99);
        QCOMPARE(scan(badEtx(good, 56) + good.left(20), true), 109);
    }

    void whoBehindAThrownFrame()
    {
        // In sum mode a WHO answer behind a thrown frame is lost like any
        // other reply (counted as a sum failure and asked again)...
        const QByteArray who = pcReply(1, "WHO", "QM730 TH F/W V2.31", true);
        QCOMPARE(scan(badEtx(rcvReply(1, {}, true), 56) + who, true), 99);
        QCOMPARE(scan(who, true), 0);
        // ... and taken without the sum, where what follows decides.
        QCOMPARE(scan(badEtx(rcvReply(1, {}), 56) + pcReply(1, "WHO", "QM730 TH F/W V2.31")), 0);
    }

    // Modbus RTU gives a pattern's name 24 bytes: a name cut inside a Big5
    // character loses that character, and shows no sign of the cut.
    void modbusNameCutInsideACharacter()
    {
        LinkHarness h;
        h.state->CommProtocol = QStringLiteral("Modbus RTU");
        FakeModbusLine line;
        line.machines = {1};
        h.port.responder = [&line](const QByteArray &f) { return line.answer(f); };
        const QByteArray name = toAnsi(QStringLiteral("程式組名稱程式組名稱程")); // 22 bytes
        QCOMPARE(name.size(), 22);
        const QByteArray cut = name + "A" + toAnsi(QStringLiteral("組")).left(1);
        line.putText(44001 + 12 * 4, cut); // the name of pattern 5, row 16
        QCOMPARE(h.port.open({}, {}), CommPort::OpenResult::Ok);
        h.state->CurrentMachine = 1;
        h.state->requests().readPatternName(5);
        h.link->tmrSend.start();
        QTRY_COMPARE(h.state->image.sprdTD.text(1, 16), QStringLiteral("程式組名稱程式組名稱程A"));
    }
};

QTEST_GUILESS_MAIN(ReceiveTest)
#include "test_receive.moc"
