// The parameter file set: written and read back cell for cell, written all or
// nothing, refused when a file is missing or wrong, and adapted to the link and
// the firmware of the machine it is sent to.
#include "ControllerImage.h"
#include "Files.h"
#include "ParameterSet.h"
#include <QDir>
#include <QTemporaryDir>
#include <QtTest>
#include <csignal>
#include <sys/resource.h>

using namespace paramset;

namespace {

// An image as a receive leaves it, with texts and words that test the format.
void fillImage(ControllerImage &img, double firmware)
{
    img.applyFirmware(firmware);
    for (int r = 1; r <= img.sprdUP.rowCount(); ++r)
        img.sprdUP.setNumber(1, r, (r * 257) % 65536);
    img.sprdUP.setNumber(1, img.sprdUP.rowCount(), 65535);
    img.sprdTD.setText(1, 1, QStringLiteral("門開關"));
    img.sprdTD.setText(1, 9, QStringLiteral("tab\there, line\nbreak, back\\slash"));
    img.sprdTD.setText(1, 12, QStringLiteral("程式組１  "));
    img.sprdTD.setText(1, 311, QStringLiteral("最後"));
    for (int w = 1; w <= ControllerImage::PatternWords; ++w)
        img.sprdPD.setNumber(w, 1, w * 11);
    img.sprdPD.setNumber(1, 300, 0);
    img.sprdSD.setNumber(1, 1, 12345);
    img.sprdSD.setNumber(ControllerImage::SegmentWords * ControllerImage::MaxSegments, 300, 7);
}

// Every cell and the dimensions of each table of a set, as its files hold them.
QList<QByteArray> tablesOf(const ParameterSet &set)
{
    QList<QByteArray> out;
    for (const QByteArray &bytes : {set.parameters, set.texts, set.patterns, set.segments}) {
        TextTable t;
        t.load(bytes);
        out << t.save();
    }
    return out;
}

QStringList filesIn(const QString &dir)
{
    return QDir(dir).entryList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot | QDir::Hidden, QDir::Name);
}

QByteArray readAll(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<not a file>");
}

// Every entry of a folder with its bytes.
QMap<QString, QByteArray> snapshot(const QString &dir)
{
    QMap<QString, QByteArray> out;
    for (const QString &f : filesIn(dir))
        out[f] = readAll(dir + u'/' + f);
    return out;
}

// A set of the sample image saved as <dir>/<name>; its base.
QString savedSet(const QTemporaryDir &dir, const QString &name, double firmware = 2.31)
{
    ControllerImage img;
    fillImage(img, firmware);
    const QString base = dir.path() + u'/' + name;
    return saveParameterSet(img, firmware, base, nullptr) ? base : QString();
}

} // namespace

class ParameterSetTest : public QObject {
    Q_OBJECT
private slots:
    void savedSetReadsBackCellForCell()
    {
        QTemporaryDir dir;
        ControllerImage img;
        fillImage(img, 2.31);
        const QString base = dir.path() + QStringLiteral("/機台1");
        QString why;
        QVERIFY2(saveParameterSet(img, 2.31, base, &why), qPrintable(why));
        QCOMPARE(filesIn(dir.path()), QStringList({"機台1.UPD", "機台1.USD", "機台1.UTD", "機台1.UUP"}));

        const auto set = readParameterSet(base, &why);
        QVERIFY2(set, qPrintable(why));
        QCOMPARE(set->fileVersion, 2.31);
        QCOMPARE(set->parameterRows, 512);
        // The corner cell included.
        QCOMPARE(tablesOf(*set), QList<QByteArray>({img.sprdUP.save(), img.sprdTD.save(), img.sprdPD.save(), img.sprdSD.save()}));

        // Into another image of the same firmware: every table as it was saved.
        ControllerImage other;
        other.applyFirmware(2.31);
        const LoadOutcome out = loadParameterSet(other, *set, {});
        QVERIFY(out.fits);
        QCOMPARE(other.sprdTD.text(1, 9), img.sprdTD.text(1, 9));
        QCOMPARE(other.sprdSD.save(), img.sprdSD.save());
        QCOMPARE(other.sprdUP.text(1, 512), QStringLiteral("65535"));
        QCOMPARE(other.sprdUP.text(0, 0), QStringLiteral("2.31"));
    }

    void saveNames()
    {
        // Only the master's own extension, in capitals, names a set that exists and is asked about.
        for (const auto &[chosen, base, confirm] : {std::tuple{"/d/a.UUP", "/d/a", true}, {"/d/a.uup", "/d/a.uup", false},
                                                    {"/d/a", "/d/a", false}, {"/d/a.UUP.txt", "/d/a.UUP.txt", false}}) {
            QCOMPARE(saveNameOf(QLatin1String(chosen)).base, QLatin1String(base));
            QCOMPARE(saveNameOf(QLatin1String(chosen)).confirmOverwrite, confirm);
        }
        QCOMPARE(baseOfMaster(QStringLiteral("/d/a.UUP")), QStringLiteral("/d/a"));
    }

    // A save that fails anywhere leaves the files of the set as they were and
    // nothing else behind.
    void failedSaveLeavesNoHalfSet()
    {
        QTemporaryDir dir;
        const QString base = savedSet(dir, QStringLiteral("set"));
        QVERIFY(!base.isEmpty());
        auto before = snapshot(dir.path());
        ControllerImage fresh;
        fillImage(fresh, 2.31);
        for (int p = 1; p <= 300; ++p)
            for (int c = 1; c <= 2900; c += 7)
                fresh.sprdSD.setNumber(c, p, 60000 + p); // the segment file grows to megabytes
        QString why;

        // A full disk: no file may grow past 1 MB, so the segment file, the
        // last one written, fails after the other three were written.
        std::signal(SIGXFSZ, SIG_IGN);
        rlimit saved{};
        getrlimit(RLIMIT_FSIZE, &saved);
        rlimit small = saved;
        small.rlim_cur = 1 << 20;
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &small), 0);
        const bool full = saveParameterSet(fresh, 2.4, base, &why);
        setrlimit(RLIMIT_FSIZE, &saved);
        QVERIFY(!full);
        QVERIFY2(why.contains(QLatin1String("set.USD")), qPrintable(why));
        QCOMPARE(snapshot(dir.path()), before);

        // Something that is not a file where the pattern file goes: found
        // before any file is replaced.
        QVERIFY(QFile::remove(base + QStringLiteral(".UPD")));
        QVERIFY(QDir().mkdir(base + QStringLiteral(".UPD")));
        before = snapshot(dir.path());
        QVERIFY(!saveParameterSet(fresh, 2.4, base, &why));
        QVERIFY(why.contains(QLatin1String("set.UPD")));
        QCOMPARE(snapshot(dir.path()), before);

        // A folder that cannot be: nothing is written anywhere.
        QVERIFY(!saveParameterSet(fresh, 2.4, base + QStringLiteral(".UUP/inside"), &why));
        QCOMPARE(snapshot(dir.path()), before);
    }

    void setReadWholeOrNotAtAll()
    {
        QTemporaryDir dir;
        const QString base = savedSet(dir, QStringLiteral("set"));
        // (A missing companion: tst_transfer, cancelledOrUnreadableLeavesTheTables.)
        const QString upd = base + QStringLiteral(".UPD"), uup = base + QStringLiteral(".UUP");
        const QByteArray patterns = readAll(upd), master = readAll(uup);
        QString why;
        auto refusedNaming = [&](const char *file) {
            return !readParameterSet(base, &why) && why.contains(QLatin1String(file));
        };
        QVERIFY(writeFileAtomic(upd, patterns.left(patterns.size() / 2))); // a companion cut short
        QVERIFY(refusedNaming("set.UPD"));
        QVERIFY(writeFileAtomic(upd, readAll(base + QStringLiteral(".UTD")))); // the text file in its place
        QVERIFY(refusedNaming("set.UPD"));
        QVERIFY(writeFileAtomic(upd, patterns));
        QVERIFY(readParameterSet(base));
        // A hand-edited word that is no number.
        QByteArray edited = master;
        const qsizetype at = edited.indexOf("\n1 25 ");
        QVERIFY(at > 0);
        QVERIFY(writeFileAtomic(uup, edited.insert(at + 6, "x")));
        QVERIFY(refusedNaming("set.UUP: row 25, column 1"));
        QVERIFY(writeFileAtomic(uup, "QM730 parameters\r\n")); // no table at all
        QVERIFY(refusedNaming("set.UUP"));
    }

    void linkRows_data()
    {
        QTest::addColumn<double>("firmware");
        QTest::addColumn<QString>("protocol");
        QTest::addColumn<QString>("baud");
        QTest::addColumn<QString>("parity");
        QTest::addColumn<int>("firstRow");      // protocol row of the RS232 port; RS485 is 7 rows on
        QTest::addColumn<QStringList>("words"); // protocol, baud, parity, stop, data
        const QStringList file = {"9", "9", "9", "9", "9"};
        QTest::newRow("PC Link") << 2.31 << "PC Link" << "115200" << "N" << 195 << QStringList{"0", "8", "0", "1", "8"};
        QTest::newRow("with sum") << 2.31 << "PC Link + crc" << "38400" << "O" << 195 << QStringList{"1", "6", "1", "1", "8"};
        QTest::newRow("Modbus") << 2.2 << "Modbus RTU" << "9600" << "E" << 195 << QStringList{"2", "4", "2", "1", "8"};
        QTest::newRow("legacy rows") << 2.19 << "PC Link" << "57600" << "N" << 169 << QStringList{"0", "7", "0", "1", "8"};
        QTest::newRow("4800 keeps the baud") << 2.31 << "PC Link" << "4800" << "N" << 195 << QStringList{"0", "9", "0", "1", "8"};
        QTest::newRow("unknown parity kept") << 2.31 << "PC Link" << "19200" << "M" << 195 << QStringList{"0", "5", "9", "1", "8"};
        QTest::newRow("Modbus, legacy: protocol kept") << 2.09 << "Modbus RTU" << "115200" << "N" << 169
                                                       << QStringList{"9", "8", "0", "1", "8"};
    }
    void linkRows()
    {
        QFETCH(double, firmware);
        QFETCH(QString, protocol);
        QFETCH(QString, baud);
        QFETCH(QString, parity);
        QFETCH(int, firstRow);
        QFETCH(QStringList, words);
        TextTable up(QStringLiteral("sprdUP"), 1, ControllerImage::upRowsFor(firmware));
        for (int r = 1; r <= up.rowCount(); ++r)
            up.setText(1, r, QStringLiteral("9"));
        LinkSettings link{baud, parity, QStringLiteral("8"), QStringLiteral("1"), protocol == QLatin1String("Modbus RTU"),
                          protocol == QLatin1String("PC Link + crc")};
        writeLinkRows(up, firmware, link);
        for (int port = 0; port < 2; ++port)
            for (int i = 0; i < 5; ++i)
                QCOMPARE(up.text(1, firstRow + 7 * port + i), words[i]);
        // Response time, machine number and the rows around stay the file's.
        QCOMPARE(up.text(1, firstRow + 5), QStringLiteral("9"));
        QCOMPARE(up.text(1, firstRow + 6), QStringLiteral("9"));
        QCOMPARE(up.text(1, firstRow - 1), QStringLiteral("9"));
    }

    // Rows 187, 188, 189, 156 and 162 before and after; -1 for an empty cell.
    void conversions_data()
    {
        QTest::addColumn<double>("file");
        QTest::addColumn<double>("machine");
        QTest::addColumn<int>("conversion");
        QTest::addColumn<QList<int>>("before");
        QTest::addColumn<QList<int>>("after");
        const int a = int(Conversion::DigitalInputActions), b = int(Conversion::DigitalOutputValues);
        const QList<int> unchanged = {300, 1000, 255, 3250, 1500}, afterA = {300, 488, 255, 3250, 1500},
                         afterB = {300, 1000, 255, 250, 500};
        QTest::newRow("a: 2.36 to 2.37") << 2.36 << 2.37 << a << unchanged << afterA;
        QTest::newRow("a, not b: 2.36 to 2.40") << 2.36 << 2.40 << a << unchanged << afterA;
        QTest::newRow("b: 2.37 to 2.4") << 2.37 << 2.4 << b << unchanged << afterB;
        QTest::newRow("b: 2.38 to 2.40") << 2.38 << 2.40 << b << unchanged << afterB;
        QTest::newRow("same era") << 2.4 << 2.51 << int(Conversion::None) << unchanged << unchanged;
        QTest::newRow("2.2 to 2.3") << 2.2 << 2.3 << int(Conversion::None) << unchanged << unchanged;
        QTest::newRow("legacy machine") << 1.0 << 2.19 << int(Conversion::None) << unchanged << unchanged;
        QTest::newRow("no version in the file") << 0.0 << 2.37 << a << unchanged << afterA;
        // Temp.UP -5.0 in the old encoding: a leaves it, b wraps it to the 16-bit word of -50.
        const QList<int> below = {-1, -1, -1, 2950, 1000};
        QTest::newRow("offset below its value, a") << 2.3 << 2.41 << a << below << below;
        QTest::newRow("offset below its value, b") << 2.38 << 2.41 << b << below << QList<int>{-1, -1, -1, 65486, 0};
    }
    void conversions()
    {
        QFETCH(double, file);
        QFETCH(double, machine);
        QFETCH(int, conversion);
        QFETCH(QList<int>, before);
        QFETCH(QList<int>, after);
        TextTable up(QStringLiteral("sprdUP"), 1, ControllerImage::upRowsFor(machine));
        const QList<int> at = {187, 188, 189, 156, 162};
        for (int i = 0; i < at.size(); ++i)
            if (before[i] >= 0)
                up.setNumber(1, at[i], before[i]);
        QCOMPARE(int(convertParameterBlock(up, file, machine)), conversion);
        for (int i = 0; i < at.size(); ++i)
            QCOMPARE(up.isEmpty(1, at[i]) ? -1 : int(up.number(1, at[i])), after[i]);
    }

    // (A 2.09 set on a 2.31 machine is refused at the command line, tests/integration.)
    void setOfAnotherRowCountIsRefused()
    {
        QTemporaryDir dir;
        const auto set = readParameterSet(savedSet(dir, QStringLiteral("512rows")));
        QVERIFY(set);
        ControllerImage machine;
        machine.applyFirmware(2.19);
        machine.PatternLoaded[4] = true;
        const LoadOutcome out = loadParameterSet(machine, *set, {QStringLiteral("9600"), QStringLiteral("N"),
                                                                 QStringLiteral("8"), QStringLiteral("1"), false, false});
        QVERIFY(!out.fits);
        QCOMPARE(QList<int>({out.setRows, out.machineRows, machine.sprdUP.rowCount()}), QList<int>({512, 492, 492}));
        // The tables keep what was loaded; the loaded flags are untouched.
        QCOMPARE(machine.sprdPD.text(3, 1), QStringLiteral("33"));
        QCOMPARE(machine.sprdUP.text(1, 100), QStringLiteral("25700"));
        QVERIFY(machine.PatternLoaded[4]);
        // Another firmware with the same row count passes.
        ControllerImage same;
        same.applyFirmware(2.5);
        QVERIFY(loadParameterSet(same, *set, {}).fits);
    }

    // What a restore's read-back reports: every row that came back otherwise,
    // but never the running clock or the segments past a pattern's count.
    void rowsThatDifferAfterASend()
    {
        ControllerImage img;
        fillImage(img, 2.31);
        img.sprdPD.setNumber(1, 2, 3); // pattern 2 has 3 segments
        const SentTables sent = SentTables::of(img);
        QVERIFY(rowsThatDiffer(sent, img, 100, 2.31).isEmpty());

        img.sprdUP.setNumber(1, 12, 1);                                    // the clock moves
        img.sprdSD.setNumber(4 * ControllerImage::SegmentWords, 2, 5);     // segment 4 of 3
        img.sprdTD.setText(1, 112, QStringLiteral("x"));                   // past the text rows in use
        QVERIFY(rowsThatDiffer(sent, img, 100, 2.31).isEmpty());

        img.sprdUP.setNumber(1, 25, 9);
        img.sprdTD.setText(1, 1, QStringLiteral("門"));
        img.sprdPD.setNumber(81, 100, 1);
        img.sprdSD.setNumber(3 * ControllerImage::SegmentWords, 2, 5);     // segment 3, its last word
        const QStringList differ = rowsThatDiffer(sent, img, 100, 2.31);
        QCOMPARE(differ.size(), 4);
        QVERIFY(differ[0].startsWith(QStringLiteral("parameter row 25: sent %1, read 9").arg(sent.up.text(1, 25))));
        QCOMPARE(differ[1], QStringLiteral("text row 1: sent 門開關, read 門"));
        QVERIFY(differ[2].startsWith(QLatin1String("pattern 2 segment 3: ")));
        QVERIFY(differ[3].startsWith(QLatin1String("pattern 100: ")));
    }
};

QTEST_GUILESS_MAIN(ParameterSetTest)
#include "tst_parameterset.moc"
