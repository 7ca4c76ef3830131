#include "ControllerImage.h"
#include "Dictionary.h"
#include <QSet>
#include <QTest>

class TestDictionary : public QObject {
    Q_OBJECT
private slots:
    void tableCoversEveryParam();
    void firmwareThresholds();
    void rowsBeyondTheFirmwareDoNotExist();
    void noRowIsSharedWithinALayout();
    void rowMeaningDependsOnLayout();
    void families();
    void indexOutsideFamilyHasNoRow();
    void encodingsByVersion();
    void wireAddresses();
    void readAndWriteRows();
};

void TestDictionary::tableCoversEveryParam()
{
    const auto &all = allParams();
    QCOMPARE(all.size(), int(Param::btnHPV_HOLD) + 1);
    for (int i = 0; i < all.size(); ++i)
        QCOMPARE(int(all[i].param), i);
}

void TestDictionary::firmwareThresholds()
{
    QVERIFY(IsCurrentLayout(2.2));
    QVERIFY(!IsCurrentLayout(2.19));
    QCOMPARE(ControllerImage::upRowsFor(2.2), 512);
    QCOMPARE(ControllerImage::upRowsFor(2.19), 492);
    QCOMPARE(ControllerImage::upRowsFor(2.09), 492);
    QCOMPARE(ControllerImage::upRowsFor(2.08), 456);
    QCOMPARE(ControllerImage::upRowsFor(1.81), 456);
    QCOMPARE(ControllerImage::upRowsFor(1.80), 392);
    QCOMPARE(RowOf(Param::txtLPF2, 2.2), 47);
    QCOMPARE(RowOf(Param::txtLPF2, 2.19), 38);
}

void TestDictionary::rowsBeyondTheFirmwareDoNotExist()
{
    // Legacy revision curves live in rows 457 and up: from 2.09 only.
    QCOMPARE(RowOf(Param::txtAdjustY_T, 1, 2.09), 457);
    QCOMPARE(RowOf(Param::txtAdjustY_T, 1, 2.08), 0);
    // Legacy PID output limits lie in rows 393 and up: from 1.81 only.
    QCOMPARE(RowOf(Param::sprdPID, 1, 5, 1.81), 393);
    QCOMPARE(RowOf(Param::sprdPID, 1, 5, 1.80), 0);
    QCOMPARE(RowOf(Param::sprdPID, 16, 10, 1.80), 392);
    // Rows of sprdUP_PLUS do not depend on the block size.
    QCOMPARE(RowOf(Param::btnOper_Lock, 1.0), 88);
}

void TestDictionary::noRowIsSharedWithinALayout()
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

void TestDictionary::rowMeaningDependsOnLayout()
{
    QCOMPARE(RowOf(Param::btnTempOutType, 2.2), 72);
    QCOMPARE(RowOf(Param::txtRetHumiRange, 1, 2.19), 72);
    QVERIFY(*ParamAtRow(72, 2.2) == ParamRef(Param::btnTempOutType));
    QVERIFY(*ParamAtRow(72, 2.19) == ParamRef(Param::txtRetHumiRange, 1));
    // Row 34: first revision correction now, the RTD offset in the legacy layout.
    QVERIFY(*ParamAtRow(34, 2.3) == ParamRef(Param::txtAdjustY_T, 1));
    QVERIFY(*ParamAtRow(34, 2.1) == ParamRef(Param::txtBias1_RTD));
    QVERIFY(!ParamAtRow(59, 2.1));
}

void TestDictionary::families()
{
    QCOMPARE(RowOf(Param::txtScale1, 1, 2.3), 28);
    QCOMPARE(RowOf(Param::txtScale1, 0, 2.3), 29);
    QCOMPARE(RowOf(Param::txtHumiSV_Range, 0, 2.3), 505);
    QCOMPARE(RowOf(Param::sprdSystem_SV, 4, 2.3), 119);
    QCOMPARE(RowOf(Param::sprdSystem_Hyst, 1, 2.1), 91);
    QCOMPARE(RowOf(Param::txtMC_No, 2, 2.3), 208);
    QCOMPARE(RowOf(Param::txtMC_No, 2, 2.1), 182);
    QCOMPARE(RowOf(Param::InnerSignal, 8, IsDelaySec, 2.2), 264);
    QCOMPARE(RowOf(Param::InnerSignal, 1, IsSource, 2.1), 183);
    QCOMPARE(RowOf(Param::txtT_LSV, 1, 2.2), 265);
    QCOMPARE(RowOf(Param::txtT_Hd, 5, 2.2), 289);
    QCOMPARE(RowOf(Param::txtT_MSV, 1, 2.1), 0);
    QCOMPARE(RowOf(Param::sprdPID, 16, 12, 2.2), 497);
    QCOMPARE(RowOf(Param::sprdPID, 2, 7, 2.2), 318);
    QCOMPARE(RowOf(Param::sprdDO2_Relay, 36, 2.2), 167);
    QCOMPARE(RowOf(Param::sprdDO2_Value, 36, 2.2), 168);
    QCOMPARE(RowOf(Param::sprdDO2_Value, 1, 2.2), 0);
    QCOMPARE(RowOf(Param::sprdDO2_Relay, 1, 2.1), 0);
    QCOMPARE(RowOf(Param::sprdDO_Relay, 36, 2.1), 150);
    QCOMPARE(RowOf(Param::sprdDO_Value, 36, 2.1), 151);
    QCOMPARE(RowOf(Param::txtUserPass, 4, 2.1), 256);
    QCOMPARE(RowOf(Param::sprdDT, 6, 2.1), 17);
}

void TestDictionary::indexOutsideFamilyHasNoRow()
{
    QCOMPARE(RowOf(Param::sprdSystem_SV, 5, 2.3), 0);
    QCOMPARE(RowOf(Param::sprdSystem_SV, 0, 2.3), 0);
    QCOMPARE(RowOf(Param::txtLPF1, 1, 2.3), 0);
    QCOMPARE(RowOf(Param::txtScale1, 2, 2.3), 0);
    QCOMPARE(RowOf(Param::InnerSignal, 9, 0, 2.3), 0);
    QCOMPARE(RowOf(Param::sprdPID, 1, 13, 2.3), 0);
}

void TestDictionary::encodingsByVersion()
{
    const auto word = [](ParamRef p, double v, double value) { return int(wordFromValue(encodingOf(p, v), value)); };
    const ParamRef alarmSv(Param::sprdSystem_SV, 1);
    QCOMPARE(word(alarmSv, 2.31, 25.0), 3250);
    QCOMPARE(word(alarmSv, 2.3, 25.0), 32500);
    QCOMPARE(word(alarmSv, 2.1, 25.0), 32500);
    const ParamRef isHigh(Param::InnerSignal, 1, IsHigh);
    QCOMPARE(word(isHigh, 2.3, 25.0), 12500);
    QCOMPARE(word(isHigh, 2.31, 25.0), 1250);
    QCOMPARE(encodingOf(Param::txtT_Lu, 1, 2.3), Encoding::X100);
    QCOMPARE(encodingOf(Param::txtT_Lu, 1, 2.31), Encoding::X10);
    QCOMPARE(encodingOf(Param::sprdPID, 1, 2, 2.3), Encoding::X10);
    QCOMPARE(encodingOf(Param::sprdPID, 1, 11, 2.3), Encoding::X100);
    QCOMPARE(word(ParamRef(Param::sprdDO2_Value, 42), 2.4, 10), 65436);
    QCOMPARE(word(ParamRef(Param::sprdDO2_Value, 41), 2.39, 10), 3100);
    QCOMPARE(word(ParamRef(Param::sprdDO2_Value, 41), 2.4, 10), 100);
    QCOMPARE(encodingOf(Param::txtTempZone, 1, 2.3), Encoding::TZ);
}

void TestDictionary::wireAddresses()
{
    QCOMPARE(WireAddress(295, true, true), 40395);
    QCOMPARE(WireAddress(295, false, true), 295);
    QCOMPARE(WireAddress(75, true, false), 75);
    QCOMPARE(ParamWireAddress(Param::txtPIDZone_Manual, 2.2, true), 40395);
    QCOMPARE(ParamWireAddress(Param::txtPIDZone_Manual, 2.2, false), 295);
    QCOMPARE(ParamWireAddress(Param::txtPIDZone_Manual, 2.1, true), 75);
    QCOMPARE(ParamWireAddress(ParamRef(Param::sprdDO2_Relay, 22), 2.2, true), 40237);
    QCOMPARE(ParamWireAddress(Param::btnOper_Lock, 2.3, true), 40700);
    QCOMPARE(ParamWireAddress(Param::btnPatt_Lock, 2.3, true), 40701);
    // Run settings have no version test.
    QCOMPARE(ParamWireAddress(Param::btnRun_Method, 2.1, true), 40101);
    QCOMPARE(ParamWireAddress(Param::btnTouch_Lock, 2.1, false), 10);
    QCOMPARE(ParamWireAddress(Param::txtT_MSV, 2.1, true), 0);
}

void TestDictionary::readAndWriteRows()
{
    ControllerImage image;
    image.applyFirmware(2.31);
    image.setTempDecimals(1);
    QVERIFY(WriteRowText(image, 28, QStringLiteral("12550")));
    QCOMPARE(ReadRow(image, 28), QStringLiteral("12550"));
    QCOMPARE(ReadRowNumber(image, 28), 12550);
    QCOMPARE(ParamText(image, ParamRef(Param::txtScale1, 1)), QStringLiteral("25.5"));
    QCOMPARE(ParamText(image, ParamRef(Param::txtScale1, 0)), QString()); // not read yet
    QVERIFY(WriteRowText(image, 107, QStringLiteral("3250")));
    QCOMPARE(ParamText(image, ParamRef(Param::sprdSystem_SV, 1)), QStringLiteral("25.0"));
    QVERIFY(!WriteRowText(image, 513, QStringLiteral("1")));
    QVERIFY(!WriteRowText(image, 0, QStringLiteral("1")));
    image.applyFirmware(2.1);
    QVERIFY(!WriteRowText(image, 493, QStringLiteral("1")));
    QCOMPARE(ReadRow(image, 493), QString());
    QVERIFY(WritePlusRowText(image, 89, QStringLiteral("1")));
    QCOMPARE(ParamText(image, Param::btnPatt_Lock), QStringLiteral("1"));
}

QTEST_GUILESS_MAIN(TestDictionary)
#include "tst_dictionary.moc"
