#include "LiveStatus.h"
#include "TextTable.h"
#include <QTest>

class TestLiveStatus : public QObject {
    Q_OBJECT
private slots:
    void replyWords()
    {
        // Rows 1..12 are words 0x01rr; of the later rows the single bytes are 0x80 + row, the words 0x02rr.
        const QList<int> byteRows{13, 15, 16, 18, 20, 22, 25, 26, 27};
        const auto expected = [&](int row) { return row <= 12 ? 0x0100 + row : byteRows.contains(row) ? 0x80 + row : 0x0200 + row; };
        QByteArray data;
        for (int row = 1; row <= 27; ++row) {
            if (!byteRows.contains(row))
                data += char(expected(row) >> 8);
            data += char(expected(row) & 0xFF);
        }
        QCOMPARE(data.size(), RcvPcLinkBytes);
        const auto words = decodeRcvPcLink(data);
        QVERIFY(words);
        for (int row = 1; row <= 27; ++row)
            QCOMPARE(int((*words)[row - 1]), expected(row));
        QVERIFY(!decodeRcvPcLink(data.left(44)));
        // Modbus and RRP words are checked against a real Modbus server; short replies are refused.
        QVERIFY(!decodeRcvModbus(QByteArray(53, '\0')));
        QVERIFY(decodeRrp(QByteArray(34, '\0')));
        QVERIFY(!decodeRrp(QByteArray(33, '\0')));
    }

    void valueTexts()
    {
        // Decimals above 2 count as 2; only a present value shows the burn-out word as dashes.
        QCOMPARE(QStringList({tempSvText(10000, 2), tempSvText(0, 2), tempSvText(9450, 1), tempSvText(12550, 0),
                              tempSvText(12551, 3), tempPvText(65535, 2), tempPvText(65534, 2), tempSvText(65535, 2)}),
                 QStringList({"0.00", "-100.00", "-5.5", "26", "25.51", "---.--", "555.34", "555.35"}));
        QCOMPARE(temperatureFromWord(12550), 25.5);
        QCOMPARE(QStringList({humiSvText(600), humiPvText(65535), humiPvText(1000), outputText(1250), outputText(0)}),
                 QStringList({"60.0", "---.-", "100.0", "12.50", "0.00"}));
    }

    void lampsAndFlags()
    {
        // The lamps the screen shows are checked there; these are the edges and the strips it hides.
        QCOMPARE(QList<bool>({lampOn(Lamps::RELAY, 0x0800, 12), lampOn(Lamps::DR, 0x0800, 2), lampOn(Lamps::SALM, 0x0010, 1),
                              lampOn(Lamps::IS, 0x0100, 1), lampOn(Lamps::IS, 0xFFFF, 9), lampOn(Lamps::IS, 0xFFFF, 0)}),
                 QList<bool>({true, true, true, false, false, false}));
        QCOMPARE(QStringList({runModeText(0), runModeText(1), runModeText(2)}), QStringList({"PROGRAM", "FIXRUN", "FIXRUN"}));
    }

    void counterTexts()
    {
        // The usual widths are checked on the screen; here a counter outgrowing its padding.
        QCOMPARE(runTimeText(12345, 0, 0), QStringLiteral("12345:00:00"));
        TextTable rcv(QStringLiteral("sprdRCV"), 2, Rcv::Count);
        RcvColumn col(rcv, 2);
        QVERIFY(!col.isRead(Rcv::RunHours));
        for (const auto &[row, text] : {std::pair{Rcv::RunHours, "3"}, {Rcv::RunMinutes, "4"}, {Rcv::RunSeconds, "5"},
                                        {Rcv::SegmentRepeatDone, "2"}, {Rcv::SegmentRepeatTotal, "9"}})
            rcv.setText(2, row, QString::fromLatin1(text));
        QVERIFY(col.isRead(Rcv::RunHours));
        QCOMPARE(col.runTimeText(), QStringLiteral("0003:04:05"));
        QCOMPARE(col.segmentRepeatText(), QStringLiteral("002/009"));
        QCOMPARE(col.patternRepeatText(), QStringLiteral("000/000"));
    }
};

QTEST_GUILESS_MAIN(TestLiveStatus)
#include "tst_livestatus.moc"
