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

private slots:
    void shortBuffersWait()
    {
        LinkHarness h;
        QCOMPARE(scan(h, "\x02" "001RCV,OK,"), 10);
        QCOMPARE(h.link->receiveBuffer().size(), 11); // nothing dropped yet
        LinkHarness noise;
        QCOMPARE(scan(noise, QByteArray(13, 'x')), 10); // under 14 bytes of noise: wait for the time-out
    }

    void noiseAloneIsCodeOne()
    {
        LinkHarness h;
        QCOMPARE(scan(h, QByteArray(20, 'x')), 1);
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

    void missingOkDropsElevenBytes()
    {
        LinkHarness h;
        const QByteArray good = pcReply(1, "WRP", "0012");
        QCOMPARE(scan(h, "\x02" "001WRP,NO," + good), 0);
        QCOMPARE(h.link->receiveBuffer().bytes(), good);
    }

    void lengthsFollowTheIndexAndTheFirmware()
    {
        LinkHarness one;
        const QByteArray row = pcReply(1, "RUP", "0080," + word(2));
        QCOMPARE(row.size(), 21);
        QCOMPARE(scan(one, row), 0);

        for (const auto &[fw, words] : {std::pair{2.31, 512}, {2.09, 492}, {1.81, 456}, {1.5, 392}}) {
            LinkHarness h;
            h.state->image.applyFirmware(fw);
            const QByteArray block = rupReply(1, words);
            QCOMPARE(block.size(), 2 * words + 19);
            QCOMPARE(scan(h, block.left(block.size() - 1)), 10);
            QCOMPARE(scan(h, block.right(1)), 0);
        }
        LinkHarness pd;
        QCOMPARE(scan(pd, pcReply(1, "RPD", "0003,0005," + word(7))), 0);
        QCOMPARE(pd.link->receiveBuffer().size(), 26);
        LinkHarness sd;
        QCOMPARE(scan(sd, pcReply(1, "RSD", "0003,0002,0000," + QByteArray(58, '\x01'))), 0);
        QCOMPARE(sd.link->receiveBuffer().size(), 87);
    }

    void badEtxWithoutSumLetsWhatFollowsDecide()
    {
        LinkHarness h;
        QByteArray bad = rcvReply(1, {});
        bad[bad.size() - 3] = 'E';
        QCOMPARE(scan(h, bad), 1); // the frame is dropped, nothing else is there
        LinkHarness h2;
        const QByteArray good = rrpReply(1, {});
        QCOMPARE(scan(h2, bad + good), 0);
        QCOMPARE(h2.link->receiveBuffer().bytes(), good);
    }

    void sumModeThrowsTheGoodFrameAfterABadOne()
    {
        LinkHarness h;
        h.state->CommProtocol = QStringLiteral("PC Link + crc");
        QByteArray bad = rcvReply(1, {}, true);
        bad[56] = 'E'; // ETX of a 59-byte frame
        QCOMPARE(scan(h, bad + rrpReply(1, {}, true)), 99);
    }

    void sumModeWrongSumIsOneHundred()
    {
        LinkHarness h;
        h.state->CommProtocol = QStringLiteral("PC Link + crc");
        QByteArray f = rcvReply(1, {}, true);
        f[f.size() - 1] = char(f[f.size() - 1] + 1);
        QCOMPARE(scan(h, f), 100);
        LinkHarness good;
        good.state->CommProtocol = QStringLiteral("PC Link + crc");
        QCOMPARE(scan(good, rcvReply(1, {}, true)), 0);
        QCOMPARE(good.link->receiveBuffer().size(), 59); // the sum is cut off
        LinkHarness waiting;
        waiting.state->CommProtocol = QStringLiteral("PC Link + crc");
        QCOMPARE(scan(waiting, rcvReply(1, {}, true).left(60)), 10); // the sum is still coming
    }

    void sumModeBadEtxThenShortIsOneHundredNine()
    {
        LinkHarness h;
        h.state->CommProtocol = QStringLiteral("PC Link + crc");
        QByteArray bad = rcvReply(1, {}, true);
        bad[56] = 'E';
        QCOMPARE(scan(h, bad + rcvReply(1, {}, true).left(20)), 109);
    }

    void rightLengthEtxMisplacedDropsTheWholeLength()
    {
        LinkHarness h;
        QByteArray f = pcReply(1, "WRP", "0012");
        f[15] = '\x03'; // an ETX one place too early, ETX place holds CR
        f[16] = '\x0D';
        f[17] = '\x0D';
        const QByteArray good = pcReply(1, "WRP", "0013");
        QCOMPARE(scan(h, f + good), 0);
        QCOMPARE(h.link->receiveBuffer().bytes(), good);
    }

    void unknownAndOpenEndedCommandsDoNotHang()
    {
        LinkHarness h;
        const QByteArray good = rcvReply(1, {});
        QCOMPARE(scan(h, "\x02" "001RSP,OK,xxxx" + good), 0);
        LinkHarness h2;
        QCOMPARE(scan(h2, "\x02" "001XYZ,OK,xxxx"), 1);
    }

    void screenReplyReportsProgress()
    {
        LinkHarness h;
        QList<int> progress;
        connect(h.link.get(), &CommLink::screenProgress, this, [&](int p) { progress << p; });
        const QByteArray f = pcReply(1, "RCS", QByteArray(76800, '\x55'));
        QCOMPARE(f.size(), 76814);
        for (int i = 0; i + 64 < f.size(); i += 64)
            QCOMPARE(scan(h, f.mid(i, 64)), 10);
        QCOMPARE(scan(h, f.mid((f.size() - 1) / 64 * 64)), 0);
        QVERIFY(progress.size() > 1000);
        QCOMPARE(progress.last(), 100);
        QVERIFY(progress[progress.size() / 2] >= 45 && progress[progress.size() / 2] <= 55);
    }

    void wrongMachineNumberIsAccepted()
    {
        LinkHarness h({1});
        QCOMPARE(scan(h, rcvReply(42, {})), 0);
    }
};

QTEST_GUILESS_MAIN(ReceiveTest)
#include "test_receive.moc"
