#include "LiveStatus.h"
#include "TextTable.h"
#include <QTest>

class TestLiveStatus : public QObject {
    Q_OBJECT
private slots:
    void pcLinkRcvBytes();
    void modbusAndRrpWords();
    void temperatureTexts();
    void humidityAndOutputTexts();
    void runLogRangeTests();
    void lampsAndFlags();
    void counterTexts();
};

void TestLiveStatus::pcLinkRcvBytes()
{
    // Rows 1..12 are words 0x01rr; the later rows as laid out in the reply,
    // words 0x02rr and single bytes 0x80 + row.
    QByteArray data;
    for (int row = 1; row <= 12; ++row)
        data += char(0x01) + QByteArray(1, char(row));
    data += char(0x80 + 13);                  // 13 byte
    data += QByteArray("\x02\x0e", 2);        // 14 word
    data += char(0x80 + 15);                  // 15 byte
    data += char(0x80 + 16);                  // 16 byte
    data += QByteArray("\x02\x11", 2);        // 17 word
    data += char(0x80 + 18);                  // 18 byte
    data += QByteArray("\x02\x13", 2);        // 19 word
    data += char(0x80 + 20);                  // 20 byte
    data += QByteArray("\x02\x15", 2);        // 21 word
    data += char(0x80 + 22);                  // 22 byte
    data += QByteArray("\x02\x17", 2);        // 23 word
    data += QByteArray("\x02\x18", 2);        // 24 word
    data += char(0x80 + 25);                  // 25 byte
    data += char(0x80 + 26);                  // 26 byte
    data += char(0x80 + 27);                  // 27 byte
    QCOMPARE(data.size(), RcvPcLinkBytes);

    const auto words = decodeRcvPcLink(data);
    QVERIFY(words);
    for (int row = 1; row <= 27; ++row) {
        int expected;
        if (row <= 12)
            expected = 0x0100 + row;
        else if (QList<int>{13, 15, 16, 18, 20, 22, 25, 26, 27}.contains(row))
            expected = 0x80 + row;
        else
            expected = 0x0200 + row;
        QCOMPARE(int((*words)[row - 1]), expected);
    }
    QVERIFY(!decodeRcvPcLink(data.left(44)));
}

void TestLiveStatus::modbusAndRrpWords()
{
    QByteArray data;
    for (int i = 1; i <= 27; ++i)
        data += char(i) + QByteArray(1, char(0xF0 + (i & 0x0F)));
    const auto words = decodeRcvModbus(data);
    QVERIFY(words);
    QCOMPARE(int((*words)[0]), 0x01F1);
    QCOMPARE(int((*words)[26]), 0x1BFB);
    QVERIFY(!decodeRcvModbus(data.left(53)));
    const auto rrp = decodeRrp(data.left(34));
    QVERIFY(rrp);
    QCOMPARE(int((*rrp)[Rrp::TempDecimals - 1]), 0x0FFF);
    QVERIFY(!decodeRrp(data.left(33)));
}

void TestLiveStatus::temperatureTexts()
{
    QCOMPARE(tempSvText(10000, 2), QStringLiteral("0.00"));
    QCOMPARE(tempSvText(0, 2), QStringLiteral("-100.00"));
    QCOMPARE(tempSvText(9450, 1), QStringLiteral("-5.5"));
    QCOMPARE(tempSvText(12550, 0), QStringLiteral("26"));
    QCOMPARE(tempSvText(12551, 3), QStringLiteral("25.51")); // above 2 counts as 2
    QCOMPARE(tempPvText(65535, 2), QStringLiteral("---.--"));
    QCOMPARE(tempPvText(65534, 2), QStringLiteral("555.34"));
    QCOMPARE(tempSvText(65535, 2), QStringLiteral("555.35"));
    QCOMPARE(temperatureFromWord(12550), 25.5);
}

void TestLiveStatus::humidityAndOutputTexts()
{
    QCOMPARE(humiSvText(600), QStringLiteral("60.0"));
    QCOMPARE(humiPvText(65535), QStringLiteral("---.-"));
    QCOMPARE(humiPvText(1000), QStringLiteral("100.0"));
    QCOMPARE(outputText(1250), QStringLiteral("12.50"));
    QCOMPARE(outputText(0), QStringLiteral("0.00"));
}

void TestLiveStatus::runLogRangeTests()
{
    QCOMPARE(tempPvCheckedText(30000, 2), QStringLiteral("200.00"));
    QCOMPARE(tempPvCheckedText(30001, 2), QStringLiteral("---.--"));
    // The test looks at the rounded value: 200.01 at no decimals is 200.
    QCOMPARE(tempPvCheckedText(30001, 0), QStringLiteral("200"));
    QCOMPARE(tempPvCheckedText(0, 2), QStringLiteral("-100.00"));
    QCOMPARE(tempPvCheckedText(65535, 2), QStringLiteral("---.--"));
    QCOMPARE(humiPvCheckedText(1000), QStringLiteral("100.0"));
    QCOMPARE(humiPvCheckedText(1001), QStringLiteral("---.-"));
}

void TestLiveStatus::lampsAndFlags()
{
    QVERIFY(lampOn(Lamps::TON, 0x0100, 1));
    QVERIFY(!lampOn(Lamps::IS, 0x0100, 1));
    QVERIFY(lampOn(Lamps::HON, 0x8000, 4));
    QVERIFY(lampOn(Lamps::RELAY, 0x0800, 12));
    QVERIFY(lampOn(Lamps::DR, 0x0800, 2));
    QVERIFY(lampOn(Lamps::SALM, 0x0010, 1));
    QVERIFY(!lampOn(Lamps::IS, 0xFFFF, 9));
    QVERIFY(!lampOn(Lamps::IS, 0xFFFF, 0));

    const RampFlags up = rampFlags(0x80);
    QVERIFY(up.tempUp && !up.tempSoak && !up.tempDown && !up.tempWait && !up.humiUp && !up.humiWait);
    const RampFlags mixed = rampFlags(0x24);
    QVERIFY(mixed.tempDown && mixed.humiSoak && !mixed.tempUp && !mixed.humiDown);
    QVERIFY(rampFlags(0x01).humiWait);
    QVERIFY(rampFlags(0x10).tempWait);

    QCOMPARE(runModeText(0), QStringLiteral("PROGRAM"));
    QCOMPARE(runModeText(1), QStringLiteral("FIXRUN"));
    QCOMPARE(runModeText(2), QStringLiteral("FIXRUN"));
}

void TestLiveStatus::counterTexts()
{
    QCOMPARE(runTimeText(5, 7, 9), QStringLiteral("0005:07:09"));
    QCOMPARE(runTimeText(12345, 0, 0), QStringLiteral("12345:00:00"));
    QCOMPARE(segmentTimeText(1, 2, 10, 30), QStringLiteral("0001:02/0010:30"));
    QCOMPARE(repeatText(1, 10), QStringLiteral("001/010"));
    QCOMPARE(patternSegmentText(12, 3), QStringLiteral("012:003"));

    TextTable rcv(QStringLiteral("sprdRCV"), 2, Rcv::Count);
    RcvColumn col(rcv, 2);
    QVERIFY(!col.isRead(Rcv::RunHours));
    rcv.setText(2, Rcv::RunHours, QStringLiteral("3"));
    rcv.setText(2, Rcv::RunMinutes, QStringLiteral("4"));
    rcv.setText(2, Rcv::RunSeconds, QStringLiteral("5"));
    rcv.setText(2, Rcv::SegmentRepeatDone, QStringLiteral("2"));
    rcv.setText(2, Rcv::SegmentRepeatTotal, QStringLiteral("9"));
    QVERIFY(col.isRead(Rcv::RunHours));
    QCOMPARE(col.runTimeText(), QStringLiteral("0003:04:05"));
    QCOMPARE(col.segmentRepeatText(), QStringLiteral("002/009"));
    QCOMPARE(col.patternRepeatText(), QStringLiteral("000/000"));
}

QTEST_GUILESS_MAIN(TestLiveStatus)
#include "tst_livestatus.moc"
