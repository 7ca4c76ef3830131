#include "Encodings.h"
#include <QTest>

Q_DECLARE_METATYPE(Encoding)

class TestEncodings : public QObject {
    Q_OBJECT
private slots:
    void wordFromValue_data()
    {
        QTest::addColumn<Encoding>("enc");
        QTest::addColumn<double>("value");
        QTest::addColumn<int>("word");
        QTest::newRow("T100 25.5") << Encoding::T100 << 25.5 << 12550;
        QTest::newRow("T100 lowest") << Encoding::T100 << -100.0 << 0;
        QTest::newRow("T100 below range clamps") << Encoding::T100 << -100.01 << 0;
        QTest::newRow("T100 above word clamps") << Encoding::T100 << 600.0 << 65535;
        QTest::newRow("X100 tie to even down") << Encoding::X100 << 0.125 << 12;
        QTest::newRow("X100 tie to even up") << Encoding::X100 << 0.135 << 14;
        QTest::newRow("X100 decimal tie, binary below") << Encoding::X100 << 1.015 << 102;
        QTest::newRow("X100 decimal tie, binary above") << Encoding::X100 << 0.145 << 14;
        QTest::newRow("LIM -5.00") << Encoding::LIM << -5.0 << 0;
        QTest::newRow("LIM 105") << Encoding::LIM << 105.0 << 11000;
        QTest::newRow("TZ 25") << Encoding::TZ << 25.0 << 1250;
        QTest::newRow("AL100 25") << Encoding::AL100 << 25.0 << 32500;
        QTest::newRow("AL10 25") << Encoding::AL10 << 25.0 << 3250;
        QTest::newRow("REV lowest point") << Encoding::REV << -196.5 << 35;
        QTest::newRow("OFS -100") << Encoding::OFS << -100.0 << 0;
        QTest::newRow("H100 60") << Encoding::H100 << 60.0 << 16000;
        QTest::newRow("X10 ramp 6000") << Encoding::X10 << 6000.0 << 60000;
        QTest::newRow("INT tie 2.5") << Encoding::INT << 2.5 << 2;
        QTest::newRow("INT tie 3.5") << Encoding::INT << 3.5 << 4;
        QTest::newRow("INT negative clamps") << Encoding::INT << -1.0 << 0;
    }

    void wordFromValue()
    {
        QFETCH(Encoding, enc);
        QFETCH(double, value);
        QFETCH(int, word);
        QCOMPARE(int(::wordFromValue(enc, value)), word);
    }

    void tiesAndOffsets()
    {
        QCOMPARE(QList<qint64>({roundHalfEven(-2.5), roundHalfEven(-3.5), roundHalfEven(-0.125, 2), roundHalfEven(-2.51)}),
                 QList<qint64>({-2, -4, -12, -3}));
        // The tie is decided after the offset: 0.5 + 1 = 1.5 rounds to 2.
        QCOMPARE(QList<qint64>({roundHalfEven(0.5, 0, 0), roundHalfEven(0.5, 0, 1), roundHalfEven(-0.5, 0, 1)}),
                 QList<qint64>({0, 2, 0}));
        QCOMPARE(roundHalfEven(1e300), std::numeric_limits<qint64>::max());
        QCOMPARE(roundHalfEven(std::nan("")), 0);
    }

    void textIsTakenByItsDigits()
    {
        QCOMPARE(QList<int>({wordFromText(Encoding::T100, u"25.5"), wordFromText(Encoding::T100, u" 25.5 C"),
                             wordFromText(Encoding::T100, u""), wordFromText(Encoding::T100, u"abc"),
                             wordFromText(Encoding::X100, u"0.125"), wordFromText(Encoding::X100, u"0.12500000000000000001"),
                             wordFromText(Encoding::INT, u"1e1"), wordFromText(Encoding::T100, u"-100.005")}),
                 QList<int>({12550, 12550, 10000, 10000, 12, 13, 10, 0}));
        QCOMPARE(roundHalfEvenText(u"-2.5"), -2);
    }

    void everyWordRoundTrips()
    {
        const Encoding all[] = {Encoding::T100, Encoding::H100, Encoding::V100, Encoding::X10,
                                Encoding::X100, Encoding::TZ, Encoding::LIM, Encoding::OFS,
                                Encoding::REV, Encoding::AL100, Encoding::AL10, Encoding::INT,
                                Encoding::OPT};
        for (Encoding e : all) {
            for (int w = 0; w <= 65535; w += 7) {
                const double v = valueFromWord(e, w);
                if (::wordFromValue(e, v) != w)
                    QFAIL(qPrintable(QStringLiteral("%1 word %2 came back as %3")
                                         .arg(encodingName(e)).arg(w).arg(::wordFromValue(e, v))));
                if (wordFromText(e, formatScaled(w - encodingOffset(e), encodingPow10(e), u"")) != w)
                    QFAIL(qPrintable(QStringLiteral("%1 word %2 lost through its text").arg(encodingName(e)).arg(w)));
            }
        }
    }

    void signedSoakWords()
    {
        QCOMPARE(QList<int>({::wordFromValue(Encoding::NEG10, 10), ::wordFromValue(Encoding::NEG10, -5000)}),
                 QList<int>({65436, 32767}));
        QCOMPARE(QList<double>({valueFromWord(Encoding::NEG10, 65436), valueFromWord(Encoding::NEG10, -100)}),
                 QList<double>({10.0, 10.0}));
        QCOMPARE(formatWord(Encoding::NEG10, 65436, 2), QStringLiteral("10.0"));
    }

    void formatNumber_data()
    {
        QTest::addColumn<double>("value");
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<QString>("text");
        // The run log's patterns and paddings: tst_recording_runlog, row fields.
        QTest::newRow("minus before padding") << -5.5 << "000.00" << "-005.50";
        QTest::newRow("outgrows padding") << 100.0 << "00.0" << "100.0";
        QTest::newRow("half away from zero") << 0.5 << "0" << "1";
        QTest::newRow("negative half away") << -0.5 << "0" << "-1";
        QTest::newRow("decimal tie") << 2.675 << "0.00" << "2.68";
        QTest::newRow("no minus on zero") << -0.004 << "0.00" << "0.00";
        QTest::newRow("carry into new digit") << 99.96 << "00.0" << "100.0";
        QTest::newRow("general") << -0.5 << "" << "-0.5";
        QTest::newRow("general whole") << 20.0 << "" << "20";
    }

    void formatNumber()
    {
        QFETCH(double, value);
        QFETCH(QString, pattern);
        QFETCH(QString, text);
        QCOMPARE(::formatNumber(value, pattern), text);
    }

    void screenTextOfWords()
    {
        QCOMPARE(QStringList({resolutionPattern(-1), resolutionPattern(0), resolutionPattern(1), resolutionPattern(2),
                              resolutionPattern(3)}),
                 QStringList({"0", "0", "0.0", "0.00", "0.00"}));
        QCOMPARE(QStringList({formatWord(Encoding::T100, 12550, 1), formatWord(Encoding::T100, 12550, 0),
                              formatWord(Encoding::T100, 12550, 7), formatWord(Encoding::H100, 16000, 2),
                              formatWord(Encoding::AL10, 30000, 2), formatWord(Encoding::LIM, 0, 2),
                              formatWord(Encoding::REV, 1995, 2), formatWord(Encoding::INT, 7, 2)}),
                 QStringList({"25.5", "26", "25.50", "60.0", "2700.0", "-5.00", "-0.5", "7"}));
        QCOMPARE(wordBytes(12550), QByteArray("\x31\x06", 2));
    }
};

QTEST_GUILESS_MAIN(TestEncodings)
#include "tst_encodings.moc"
