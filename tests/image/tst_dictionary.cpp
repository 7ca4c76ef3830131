#include "ControllerImage.h"
#include "Dictionary.h"
#include <QTest>

class TestDictionary : public QObject {
    Q_OBJECT
private slots:
    void tableAndFirmwareThresholds()
    {
        const auto &all = allParams();
        QCOMPARE(all.size(), int(Param::btnHPV_HOLD) + 1);
        for (int i = 0; i < all.size(); ++i)
            QCOMPARE(int(all[i].param), i);
        QVERIFY(IsCurrentLayout(2.2) && !IsCurrentLayout(2.19));
        for (const auto &[version, rows] : {std::pair{2.2, 512}, {2.19, 492}, {2.09, 492}, {2.08, 456}, {1.81, 456}, {1.80, 392}})
            QCOMPARE(ControllerImage::upRowsFor(version), rows);
    }

    void rowsByLayout()
    {
        struct Case {
            ParamRef p;
            double version;
            int row; // 0: no such row under this firmware or index
        };
        const Case cases[] = {
            {Param::txtLPF2, 2.2, 47}, {Param::txtLPF2, 2.19, 38},
            // Legacy revision curves from 2.09, legacy PID output limits from 1.81 only.
            {{Param::txtAdjustY_T, 1}, 2.09, 457}, {{Param::txtAdjustY_T, 1}, 2.08, 0},
            {{Param::sprdPID, 1, 5}, 1.81, 393}, {{Param::sprdPID, 1, 5}, 1.80, 0}, {{Param::sprdPID, 16, 10}, 1.80, 392},
            {Param::btnOper_Lock, 1.0, 88}, // the extra rows do not depend on the block size
            {{Param::txtScale1, 1}, 2.3, 28}, {{Param::txtScale1, 0}, 2.3, 29}, // a pair: high, then low
            {{Param::InnerSignal, 8, IsDelaySec}, 2.2, 264}, {{Param::InnerSignal, 1, IsSource}, 2.1, 183},
            {{Param::txtT_MSV, 1}, 2.1, 0}, {{Param::sprdDO2_Value, 1}, 2.2, 0}, // not in this firmware
            // Indexes outside the family.
            {{Param::sprdSystem_SV, 5}, 2.3, 0}, {{Param::sprdSystem_SV, 0}, 2.3, 0}, {{Param::txtLPF1, 1}, 2.3, 0},
            {{Param::InnerSignal, 9, 0}, 2.3, 0}, {{Param::sprdPID, 1, 13}, 2.3, 0},
        };
        for (const Case &c : cases)
            QVERIFY2(RowOf(c.p, c.version) == c.row,
                     qPrintable(QStringLiteral("%1(%2,%3) at %4: %5").arg(allParams()[int(c.p.param)].name).arg(c.p.i)
                                    .arg(c.p.k).arg(c.version).arg(RowOf(c.p, c.version))));
        // The same row means another parameter in the other layout.
        QVERIFY(*ParamAtRow(72, 2.2) == ParamRef(Param::btnTempOutType));
        QVERIFY(*ParamAtRow(72, 2.19) == ParamRef(Param::txtRetHumiRange, 1));
        QVERIFY(*ParamAtRow(34, 2.3) == ParamRef(Param::txtAdjustY_T, 1));
        QVERIFY(*ParamAtRow(34, 2.1) == ParamRef(Param::txtBias1_RTD));
        QVERIFY(!ParamAtRow(59, 2.1));
    }

    void noRowIsSharedWithinALayout()
    {
        for (double v : {1.5, 2.0, 2.09, 2.2, 2.31, 2.4}) {
            QHash<int, QString> owner;
            for (const ParamInfo &info : allParams()) {
                if (info.block != UpBlock::Up)
                    continue;
                for (int i = -1; i <= 50; ++i) {
                    for (int k = -1; k <= 13; ++k) {
                        const int row = RowOf(ParamRef(info.param, i, k), v);
                        if (row == 0)
                            continue;
                        const QString who = QStringLiteral("%1(%2,%3)").arg(info.name).arg(i).arg(k);
                        QVERIFY2(row <= ControllerImage::upRowsFor(v), qPrintable(who));
                        QVERIFY2(!owner.contains(row),
                                 qPrintable(QStringLiteral("v%1 row %2: %3 and %4").arg(v).arg(row).arg(owner[row], who)));
                        owner.insert(row, who);
                        const auto back = ParamAtRow(row, v);
                        QVERIFY(back && *back == ParamRef(info.param, i, k));
                    }
                }
            }
        }
    }

    void encodingsByVersion()
    {
        const auto word = [](ParamRef p, double v, double value) { return int(wordFromValue(encodingOf(p, v), value)); };
        QCOMPARE(QList<int>({word({Param::sprdSystem_SV, 1}, 2.31, 25.0), word({Param::sprdSystem_SV, 1}, 2.3, 25.0),
                             word({Param::InnerSignal, 1, IsHigh}, 2.3, 25.0), word({Param::InnerSignal, 1, IsHigh}, 2.31, 25.0),
                             word({Param::sprdDO2_Value, 42}, 2.4, 10), word({Param::sprdDO2_Value, 41}, 2.39, 10),
                             word({Param::sprdDO2_Value, 41}, 2.4, 10)}),
                 QList<int>({3250, 32500, 12500, 1250, 65436, 3100, 100}));
        QCOMPARE(QList<Encoding>({encodingOf(Param::txtT_Lu, 1, 2.3), encodingOf(Param::txtT_Lu, 1, 2.31),
                                  encodingOf(Param::sprdPID, 1, 2, 2.3), encodingOf(Param::sprdPID, 1, 11, 2.3),
                                  encodingOf(Param::txtTempZone, 1, 2.3)}),
                 QList<Encoding>({Encoding::X100, Encoding::X10, Encoding::X10, Encoding::X100, Encoding::TZ}));
    }

    // The addresses the request table (tests/link) does not already show.
    void wireAddresses()
    {
        QCOMPARE(QList<int>({WireAddress(295, true, true), WireAddress(75, true, false),
                             ParamWireAddress(ParamRef(Param::sprdDO2_Relay, 22), 2.2, true),
                             ParamWireAddress(Param::btnOper_Lock, 2.3, true), ParamWireAddress(Param::btnTouch_Lock, 2.1, false),
                             ParamWireAddress(Param::txtT_MSV, 2.1, true)}),
                 QList<int>({40395, 75, 40237, 40700, 10, 0}));
        // Written on purpose to the plain row, or the legacy row whatever the
        // firmware (none beyond 2.08's 456 rows).
        QCOMPARE(QList<int>({ParamWireAddress(Param::txtTempOutPeriod, 2.31, true, RowAddressing::PlainRow),
                             ParamWireAddress(Param::txtTempOutPeriod, 2.1, true, RowAddressing::PlainRow),
                             ParamWireAddress(Param::txtTempOutBias, 2.31, true, RowAddressing::LegacyRow),
                             WriteRowOf({Param::txtAdjustX_T, 1}, 2.31, RowAddressing::LegacyRow),
                             WriteRowOf({Param::txtAdjustX_T, 1}, 2.08, RowAddressing::LegacyRow),
                             WriteRowOf(Param::txtTempOutBias, 2.31, RowAddressing::Normal)}),
                 QList<int>({73, 55, 249, 463, 0, 81}));
    }

    void boundsOfEachField()
    {
        struct Case {
            ParamRef p;
            double low, high;
        };
        const Case cases[] = {
            // The high field of a pair cannot reach the low field's lowest value, nor the low one the highest.
            {{Param::txtScale1, 1}, -99.99, 200}, {{Param::txtScale1, 0}, -100, 199.99},
            {{Param::txtInputRange2_V, 1}, -99.99, 200}, {{Param::txtInputRange1_RTD, 0}, -100, 199.99},
            {{Param::txtScale2, 1}, 0.1, 100}, {{Param::txtScale2, 0}, 0, 99.9},
            {{Param::txtDryTemp_Range, 1}, 0.01, 99.99}, {{Param::txtDryTemp_Range, 0}, 0, 99.99},
            {{Param::txtHumiSV_Range, 1}, 0.1, 100}, {{Param::txtHumiSV_Range, 0}, 0, 99.9},
            {{Param::txtTempOutV, 1}, -4.98, 105}, {{Param::txtHumiOutV, 0}, -5, 104.99},
            {{Param::txtRetHumiRange, 1}, 0.1, 100}, {{Param::txtRetHumiRange, 0}, 0, 99.99},
            {{Param::txtRetTempRange, 1}, -99.99, 200},
            // The humidity line of the ON/OFF table has the smaller ranges.
            {{Param::txtT_LSV, 4}, -100, 200}, {{Param::txtT_LSV, 5}, 0, 100}, {{Param::txtT_HSV, 5}, 0, 100},
            {{Param::txtT_Lu, 1}, 0, 300}, {{Param::txtT_Hd, 5}, 0, 100},
            {Param::txtLPF2, 2, 180}, {Param::txtTempOutBias, -20, 20},
        };
        for (const Case &c : cases) {
            const auto r = ParamRange(c.p, 2.31);
            QVERIFY2(r && r->low == c.low && r->high == c.high,
                     qPrintable(QStringLiteral("%1(%2)").arg(paramName(c.p.param)).arg(c.p.i)));
        }
        QVERIFY(!ParamRange(Param::btnSensorType1, 2.31));
    }

    void readAndWriteRows()
    {
        ControllerImage image;
        image.applyFirmware(2.31);
        image.setTempDecimals(1);
        QVERIFY(WriteRowText(image, 28, QStringLiteral("12550")) && WriteRowText(image, 107, QStringLiteral("3250")));
        QCOMPARE(ReadRow(image, 28), QStringLiteral("12550"));
        QCOMPARE(ReadRowNumber(image, 28), 12550);
        // Texts in the field's encoding; a field not read yet is empty.
        QCOMPARE(QStringList({ParamText(image, ParamRef(Param::txtScale1, 1)), ParamText(image, ParamRef(Param::txtScale1, 0)),
                              ParamText(image, ParamRef(Param::sprdSystem_SV, 1))}),
                 QStringList({"25.5", "", "25.0"}));
        QVERIFY(!WriteRowText(image, 513, QStringLiteral("1")) && !WriteRowText(image, 0, QStringLiteral("1")));
        image.applyFirmware(2.1);
        QVERIFY(!WriteRowText(image, 493, QStringLiteral("1")));
        QCOMPARE(ReadRow(image, 493), QString());
        QVERIFY(WritePlusRowText(image, 89, QStringLiteral("1")));
        QCOMPARE(ParamText(image, Param::btnPatt_Lock), QStringLiteral("1"));
    }
};

QTEST_GUILESS_MAIN(TestDictionary)
#include "tst_dictionary.moc"
