// Request frames byte for byte, the PC Link sum and the Modbus CRC.
#include "mdlModbusRTU.h"
#include "mdlQM730_Protocol.h"
#include <QtTest>

using namespace pclink;

static QByteArray hex(const char *h) { return QByteArray::fromHex(h); }
// STX, the text, the binary data, ETX CR LF.
static QByteArray frame(const char *text, const QByteArray &data = {})
{
    return '\x02' + QByteArray(text) + data + "\x03\x0D\x0A";
}

class FramesTest : public QObject {
    Q_OBJECT
private slots:
    void everyRequest()
    {
        const QByteArray text = QByteArray("abc").leftJustified(29, '\0');
        const std::pair<QByteArray, QByteArray> cases[] = {
            // The documented examples, byte for byte.
            {frame_who(7), hex("0230303757484F030D0A")},
            {frame_rup(12, 80), hex("023031325255502C30303830030D0A")},
            {frame_rcv(1), frame("001RCV")},
            {frame_rcs(1), frame("001RCS")},
            {frame_rrp(5, 0), frame("005RRP,0000")},
            {frame_rrp(5, 14), frame("005RRP,0014")},
            {frame_rtd(3, 311), frame("003RTD,0311")},
            {frame_rpd(2, 100, 0), frame("002RPD,0100,0000")},
            {frame_rsd(2, 45, 7, 29), frame("002RSD,0045,0007,0029")},
            {frame_rup(1, 0), frame("001RUP,0000")},
            // The widest numbers fill every digit.
            {frame_rrp(999, 9999), frame("999RRP,9999")},
            {frame_rsd(999, 9999, 9999, 9999), frame("999RSD,9999,9999,9999")},
            // Data bytes are binary: an ETX inside them stays as it is.
            {frame_wrp(7, 12, hex("3106")), frame("007WRP,0012,", hex("3106"))},
            {frame_wup(7, 1, hex("0001"), 2.31), frame("007WUP,0001,", hex("0001"))},
            {frame_wpd(7, 3, 5, hex("00FF")), frame("007WPD,0003,0005,", hex("00FF"))},
            {frame_wsd(7, 3, 2, 4, hex("1234")), frame("007WSD,0003,0002,0004,", hex("1234"))},
            {frame_wtd(7, 9, text), frame("007WTD,0009,", text)},
        };
        for (const auto &[got, expected] : cases)
            QCOMPARE(got, expected);
        // Whole rows of data go out whole.
        QCOMPARE(QList<qsizetype>({frame_wrp(7, 0, QByteArray(34, '\x03')).size(), frame_wpd(7, 3, 0, QByteArray(162, 'a')).size(),
                                   frame_wsd(7, 3, 2, 0, QByteArray(58, 'b')).size()}),
                 QList<qsizetype>({50, 183, 84}));
        // Text row 0 sends nothing.
        QVERIFY(frame_wtd(1, 0, QByteArray(29, 'x')).isEmpty());
    }

    void wholeParameterBlockFollowsTheFirmware()
    {
        for (const auto &[fw, bytes] : {std::pair{2.2, 1024}, {2.19, 984}, {2.09, 984}, {2.08, 912}, {1.81, 912}, {1.8, 784}})
            QCOMPARE(frame_wup(1, 0, QByteArray(1024, '\x01'), fw).size(), 16 + bytes);
        // A short block is padded with zero words.
        const QByteArray f = frame_wup(1, 0, hex("0102"), 1.5);
        QCOMPARE(f.size(), 16 + 784);
        QCOMPARE(f.mid(13, 4), hex("01020000"));
    }

    void sumIsThePlainByteSum()
    {
        QCOMPARE(frame_checksum(frame_who(7)), 0x01A1);
        QCOMPARE(with_checksum(frame_who(7)), hex("0230303757484F030D0A01A1"));
        // 1024 bytes of 0xFF wrap the sum past 65536: 705 + 261120 = 261825 = 3 * 65536 + 0xFEC1.
        const QByteArray big = frame_wup(1, 0, QByteArray(1024, '\xFF'), 2.31);
        QCOMPARE(frame_checksum(big), 0xFEC1);
        QCOMPARE(with_checksum(big).right(2), hex("FEC1"));
    }

    void modbus()
    {
        QCOMPARE(modbus::modbus_crc(hex("010300000001")), quint16(0x0A84));
        QCOMPARE(modbus::modbus_read(1, 0, 1), hex("010300000001840A"));
        QVERIFY(!modbus::crc_ok(hex("010300000001850A")));
        // Registers go out as they stand; every request carries its CRC.
        const QByteArray w = modbus::modbus_write(3, 40012, 1, hex("3106"));
        const QByteArray wr = modbus::modbus_write_record(2, 5, 3, 29, QByteArray(58, '\x11'));
        for (const auto &[got, head, size] : {std::tuple{modbus::modbus_read(1, 40001, 17), hex("01039C410011"), 8},
                                              {modbus::modbus_read(7, 40581, 32), hex("07039E850020"), 8},
                                              {w, hex("03109C4C0001023106"), 11},
                                              {modbus::modbus_read_record(2, 5, 3, 29), hex("0214070600050003001D"), 12},
                                              {wr, hex("0215410600050003001D"), 10 + 58 + 2}}) {
            QCOMPARE(got.left(head.size()), head);
            QCOMPARE(got.size(), size);
            QVERIFY(modbus::crc_ok(got));
        }
        QCOMPARE(QList<int>({modbus::readReplyLength(32), modbus::writeRecordReplyLength(29), modbus::readRecordReplyLength(29)}),
                 QList<int>({69, 70, 65}));
    }
};

QTEST_GUILESS_MAIN(FramesTest)
#include "test_frames.moc"
