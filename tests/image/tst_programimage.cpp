#include "ControllerImage.h"
#include "Files.h"
#include "ProgramImage.h"
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

class TestProgramImage : public QObject {
    Q_OBJECT
private slots:
    void scaling()
    {
        QCOMPARE(QStringList({programText(ProgramValue::AlarmSV, 30000, 2.3), programText(ProgramValue::AlarmSV, 30000, 2.31),
                              programText(ProgramValue::AlarmSV, 32550, 2.3, true), programText(ProgramValue::SegTempSV, 12550, 2.3),
                              programText(ProgramValue::StartTemp, 1250, 2.3)}),
                 QStringList({"0.00", "2700.0", "25.5", "25.50", "25.0"}));
        QCOMPARE(QList<int>({programWord(ProgramValue::AlarmSV, -100, 2.3), programWord(ProgramValue::AlarmSV, -100, 2.31),
                             programWordFromText(ProgramValue::SegTempSV, u"25.5", 2.3),
                             programWord(ProgramValue::StartTemp, -100, 2.3), programWord(ProgramValue::SegHumiSV, 60, 2.3)}),
                 QList<int>({20000, 2000, 12550, 0, 600}));
        QCOMPARE(programValue(ProgramValue::WaitBand, 25, 2.3), 2.5);
        QCOMPARE(int(packHoursMinutes(10, 30)), 0x0A1E);
    }

    void segmentCells()
    {
        ControllerImage image;
        QVERIFY(setSegmentWord(image, 300, 100, Sd::TsTime2(8), 7) && setSegmentWord(image, 5, 2, Sd::SegTempSV, 9)
                && setPatternWord(image, 2, Pd::AlarmHyst(4), 15));
        QCOMPARE(QStringList({image.sprdSD.text(2900, 300), image.sprdSD.text(30, 5), image.sprdPD.text(81, 2)}),
                 QStringList({"7", "9", "15"}));
        QCOMPARE(segmentWord(image, 5, 2, Sd::SegTempSV), 9);
        QVERIFY(!setSegmentWord(image, 5, 101, 1, 1));
        QVERIFY(!setSegmentWord(image, 5, 1, 30, 1));
        QVERIFY(!setPatternWord(image, 301, 1, 1));
    }

    void nextUnloadedRow()
    {
        ControllerImage image;
        image.applyFirmware(2.2); // 100 patterns
        QCOMPARE(NextUnloadedRow(image, u"RTD", 1), 12);
        QCOMPARE(NextUnloadedRow(image, u"RPD", 0), 1);
        for (int r = 12; r <= 111; ++r)
            image.PatternNameLoaded[r - 12] = true;
        QCOMPARE(NextUnloadedRow(image, u"RTD", 12), 0); // stops at row 111
        image.PatternNameLoaded[50] = false;
        QCOMPARE(NextUnloadedRow(image, u"RTD", 12), 62);
        QCOMPARE(NextUnloadedRow(image, u"RTD", 63), 0);
        image.applyFirmware(2.1); // 300 patterns
        QCOMPARE(NextUnloadedRow(image, "RTD", 63), 112);
        image.PatternLoaded.fill(true);
        image.PatternLoaded[299] = false;
        QCOMPARE(NextUnloadedRow(image, u"RPD", 1), 300);
        QCOMPARE(NextUnloadedRow(image, u"XYZ", 1), 0);
    }

    void cacheRoundTrip()
    {
        QTemporaryDir home;
        ControllerImage saved;
        fillSample(saved);
        QVERIFY(SaveProgramCache(saved, home.path(), 7));
        for (const char *ext : {"PD", "SD", "TD"})
            QVERIFY(QFile::exists(home.path() + "/LastPData_7." + ext));

        ControllerImage loaded;
        QVERIFY(!LoadProgramCache(loaded, home.path(), 7, 0));
        QVERIFY(!LoadProgramCache(loaded, home.path(), 7, -1));
        QVERIFY(loaded.sprdPD.isEmpty(1, 1));
        QVERIFY(LoadProgramCache(loaded, home.path(), 7, 1));
        QCOMPARE(loaded.sprdPD.save(), saved.sprdPD.save());
        QCOMPARE(loaded.sprdSD.save(), saved.sprdSD.save());
        QCOMPARE(loaded.sprdTD.text(1, 9), QStringLiteral("line\twith\nbreaks\\"));
        QCOMPARE(patternName(loaded, 1), QStringLiteral("程式組名稱"));
        QVERIFY(!LoadProgramCache(loaded, home.path(), 8, 1)); // another machine has no cache

        // A table of another shape is refused, and the image keeps its own.
        TextTable small(QStringLiteral("sprdPD"), 5, 5);
        small.setText(1, 1, QStringLiteral("9"));
        QVERIFY(write(programCachePath(home.path(), 7, u"PD"), small.save()));
        ControllerImage image;
        QVERIFY(!LoadProgramCache(image, home.path(), 7, 1));
        QCOMPARE(image.sprdPD.colCount(), ControllerImage::PatternWords);
        QCOMPARE(image.sprdPD.rowCount(), ControllerImage::MaxPatterns);
        QVERIFY(image.sprdPD.isEmpty(1, 1));
    }

    // Loading and saving the cache stop at the first file that fails.
    void cacheStopsAtFirstFailure()
    {
        QTemporaryDir home;
        ControllerImage saved;
        fillSample(saved);
        QVERIFY(SaveProgramCache(saved, home.path(), 3));

        // Missing .TD: pattern and segment tables are taken, the text table stays.
        QVERIFY(QFile::remove(programCachePath(home.path(), 3, u"TD")));
        ControllerImage a;
        a.sprdTD.setText(1, 12, QStringLiteral("keep"));
        QVERIFY(!LoadProgramCache(a, home.path(), 3, 1));
        QCOMPARE(patternWord(a, 1, Pd::SegmentCount), 2);
        QCOMPARE(segmentWord(a, 1, 2, Sd::SegTempSV), 12550);
        QCOMPARE(a.sprdTD.text(1, 12), QStringLiteral("keep"));

        // A .SD cut short is refused whole, and .TD is not looked at after it.
        QVERIFY(SaveProgramCache(saved, home.path(), 3));
        const QString sd = programCachePath(home.path(), 3, u"SD");
        QFile f(sd);
        QVERIFY(f.open(QIODevice::ReadOnly));
        const QByteArray whole = f.readAll();
        f.close();
        QVERIFY(write(sd, whole.left(whole.size() - 10)));
        ControllerImage b;
        b.sprdSD.setText(1, 1, QStringLiteral("old"));
        QVERIFY(!LoadProgramCache(b, home.path(), 3, 1));
        QCOMPARE(patternWord(b, 1, Pd::SegmentCount), 2);
        QCOMPARE(b.sprdSD.text(1, 1), QStringLiteral("old"));
        QVERIFY(b.sprdTD.isEmpty(1, patternNameRow(1)));

        // A folder where the .SD file should go: .PD is written, .TD is not.
        QVERIFY(QDir(home.path()).mkdir(QStringLiteral("LastPData_5.SD")));
        QVERIFY(!SaveProgramCache(saved, home.path(), 5));
        QVERIFY(QFile::exists(programCachePath(home.path(), 5, u"PD")));
        QVERIFY(!QFile::exists(programCachePath(home.path(), 5, u"TD")));
    }

    void ptnRecvOptFallsBackToTheController()
    {
        // (Missing, 0 and 1 written and read back: tst_mainwindow, patternSource.)
        QTemporaryDir home;
        QVERIFY(writePtnRecvOpt(home.path(), 1));
        QVERIFY(!writePtnRecvOpt(home.path(), 2));
        QCOMPARE(readPtnRecvOpt(home.path()), 1);
        for (const auto &[bytes, option] : {std::pair<QByteArray, int>{"2\r\n", 0}, {"-1\r\n", 0}, {"", 0},
                                            {"x\r\n", 0}, {" 1\r\n0\r\n", 1}, {"0\r\n", 0}}) {
            QVERIFY(write(home.path() + "/PTN_Recv.OPT", bytes));
            QCOMPARE(readPtnRecvOpt(home.path()), option);
        }
    }

    void textRowBytes()
    {
        // Pattern names (from row 12) are shorter under Modbus; rows outside 1..311 have no bytes.
        QCOMPARE(QList<int>({tdRowBytes(1, false), tdRowBytes(311, false), tdRowBytes(11, true), tdRowBytes(12, true),
                             tdRowBytes(0, false), tdRowBytes(312, true)}),
                 QList<int>({29, 29, 30, 24, 0, 0}));

        const QByteArray name = tdTextToBytes(QStringLiteral("程式組名稱"), 29);
        QCOMPARE(name.size(), 29);
        QCOMPARE(name.left(10), QByteArray::fromHex("b57ba6a1b2d5a657bad9"));
        QCOMPARE(name.mid(10), QByteArray(19, '\0'));

        ControllerImage image;
        image.sprdTD.setText(1, 12, QStringLiteral("AB"));
        QCOMPARE(tdRowToBytes(image, 12, true), QByteArray("AB") + QByteArray(22, '\0'));
        QCOMPARE(tdRowToBytes(image, 12, false).size(), 29);
    }

    void textRowCutNeverSplitsACharacter()
    {
        QCOMPARE(tdTextToBytes(QStringLiteral("ABC程式"), 4), QByteArray("ABC\0", 4));
        QCOMPARE(tdTextToBytes(QStringLiteral("ABC程式"), 5), QByteArray::fromHex("414243b57b"));
        const QString fifteen = QStringLiteral("程式組名稱程式組名稱程式組名稱");
        QCOMPARE(tdFitText(fifteen, 29), fifteen.left(14));
        QCOMPARE(tdFitText(fifteen, 24), fifteen.left(12));
        QCOMPARE(tdTextToBytes(fifteen, 29).at(28), '\0');
        QCOMPARE(tdFitText(QStringLiteral("short"), 29), QStringLiteral("short"));
    }

    void textRowDecoding()
    {
        QCOMPARE(QStringList({tdBytesToText(QByteArray::fromHex("b57ba6a100bad9")), tdBytesToText(QByteArray::fromHex("4142b5")),
                              tdBytesToText(QByteArray::fromHex("4142b500")), tdBytesToText(QByteArray(29, '\0')),
                              tdBytesToText(tdTextToBytes(QStringLiteral("程式組名稱 12"), 24))}),
                 QStringList({"程式", "AB", "AB", "", "程式組名稱 12"}));
    }

private:
    static void fillSample(ControllerImage &image)
    {
        setPatternWord(image, 1, Pd::SegmentCount, 2);
        setPatternWord(image, 300, Pd::AlarmHyst(4), 65535);
        setSegmentWord(image, 1, 2, Sd::SegTempSV, 12550);
        setSegmentWord(image, 300, 100, Sd::TsTime2(8), 2590);
        image.sprdTD.setText(1, patternNameRow(1), QStringLiteral("程式組名稱"));
        image.sprdTD.setText(1, 9, QStringLiteral("line\twith\nbreaks\\"));
    }

    static bool write(const QString &path, const QByteArray &bytes)
    {
        QFile f(path);
        return f.open(QIODevice::WriteOnly) && f.write(bytes) == bytes.size();
    }
};

QTEST_GUILESS_MAIN(TestProgramImage)
#include "tst_programimage.moc"
