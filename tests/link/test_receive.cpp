// The frame scan and the failure table of the receive path.
#include "LinkHarness.h"
#include <QtTest>

class ReceiveTest : public QObject {
    Q_OBJECT

    static QByteArray badEtx(QByteArray frame, int at = 56)
    {
        frame[at] = 'E';
        return frame;
    }
    static void row(const char *name, const QByteArrayList &pieces, const QList<int> &codes, const QByteArray &kept = {},
                    bool sum = false, double firmware = 0)
    {
        QTest::newRow(name) << pieces << codes << kept << sum << firmware;
    }

private slots:
    // Pieces arriving one after another on a fresh link, the code of the scan
    // after each, and the frame left in the buffer when one is given.
    void scanCodes_data()
    {
        QTest::addColumn<QByteArrayList>("pieces");
        QTest::addColumn<QList<int>>("codes");
        QTest::addColumn<QByteArray>("kept");
        QTest::addColumn<bool>("sum");
        QTest::addColumn<double>("firmware");
        const QByteArray rcv = rcvReply(1, {12500}), rrp = rrpReply(1, {}), wrp = pcReply(1, "WRP", "0012");
        row("a short reply waits, nothing dropped", {"\x02" "001RCV,OK,"}, {10}, "\x02" "001RCV,OK,");
        row("under 14 bytes of noise wait for the time-out", {QByteArray(13, 'x')}, {10});
        row("more is noise alone", {QByteArray(20, 'x')}, {1});
        row("noise before a frame is dropped", {"\xFFzz" + rcv}, {0}, rcv);
        row("a split reply is one frame", {rcv.left(30), rcv.mid(30)}, {10, 0}, rcv);
        row("of two frames the first is kept", {rrpReply(1, {1}) + rcv}, {0}, rrpReply(1, {1}));
        row("no ,OK,: eleven bytes go", {"\x02" "001WRP,NO," + wrp}, {0}, wrp);
        // Without the sum a bad ETX drops the frame and lets what follows decide.
        row("a bad ETX alone", {badEtx(rcvReply(1, {}))}, {1});
        row("a bad ETX, then a frame", {badEtx(rcvReply(1, {})) + rrp}, {0}, rrp);
        QByteArray early = wrp;
        early.replace(15, 3, "\x03\x0D\x0D");
        row("the ETX one place early drops the whole length", {early + pcReply(1, "WRP", "0013")}, {0}, pcReply(1, "WRP", "0013"));
        row("open-ended RSP does not hang", {"\x02" "001RSP,OK,xxxx" + rcvReply(1, {})}, {0});
        row("an unknown command does not hang", {"\x02" "001XYZ,OK,xxxx"}, {1});
        row("another machine number is taken", {rcvReply(42, {})}, {0});
        // Lengths follow the index and, for the whole parameter block, the firmware.
        row("one parameter row", {pcReply(1, "RUP", "0080," + word(2))}, {0});
        for (const auto &[name, fw, words] : {std::tuple{"block of 2.31", 2.31, 512}, {"block of 2.09", 2.09, 492},
                                              {"block of 1.81", 1.81, 456}, {"block of 1.5", 1.5, 392}}) {
            const QByteArray block = rupReply(1, words);
            row(name, {block.chopped(1), block.right(1)}, {10, 0}, block, false, fw);
        }
        row("one pattern word", {pcReply(1, "RPD", "0003,0005," + word(7))}, {0}, pcReply(1, "RPD", "0003,0005," + word(7)));
        const QByteArray segment = pcReply(1, "RSD", "0003,0002,0000," + QByteArray(58, '\x01'));
        row("a whole segment", {segment}, {0}, segment);
        // With the sum.
        const QByteArray good = rcvReply(1, {}, true);
        QByteArray wrong = good;
        wrong[wrong.size() - 1] = char(wrong[wrong.size() - 1] + 1);
        row("sum: cut off a good frame", {good}, {0}, good.chopped(2), true);
        row("sum: still coming", {good.left(60)}, {10}, {}, true);
        row("sum: wrong", {wrong}, {100}, {}, true);
        row("sum: a bad ETX throws the good frame behind it", {badEtx(good) + rrpReply(1, {}, true)}, {99}, {}, true);
        row("sum: a bad ETX, then a short piece", {badEtx(good) + good.left(20)}, {109}, {}, true);
        // A WHO answer behind a thrown frame is lost in sum mode like any other
        // reply (a sum failure, asked again), and taken without the sum.
        const QByteArray who = pcReply(1, "WHO", "QM730 TH F/W V2.31"), whoSum = pcReply(1, "WHO", "QM730 TH F/W V2.31", true);
        row("sum: WHO behind a thrown frame", {badEtx(good) + whoSum}, {99}, {}, true);
        row("sum: WHO", {whoSum}, {0}, {}, true);
        row("WHO behind a thrown frame", {badEtx(rcvReply(1, {})) + who}, {0});
    }
    void scanCodes()
    {
        QFETCH(QByteArrayList, pieces);
        QFETCH(QList<int>, codes);
        QFETCH(QByteArray, kept);
        QFETCH(bool, sum);
        QFETCH(double, firmware);
        LinkHarness h;
        if (sum)
            h.state->CommProtocol = QStringLiteral("PC Link + crc");
        if (firmware > 0)
            h.state->image.applyFirmware(firmware);
        QList<int> got;
        for (const QByteArray &piece : pieces) {
            h.link->receiveBuffer().append(piece);
            got << h.link->scan_reply();
        }
        QCOMPARE(got, codes);
        const QByteArray left = h.link->receiveBuffer().bytes();
        if (!kept.isEmpty())
            QCOMPARE(left, kept);
        if (codes.last() == 0) // a good frame names its command
            QCOMPARE(h.state->LastReplyCmd, QString::fromLatin1(left.mid(4, 3)));
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
