// The status board's colour file: lenient reading of damaged lines, bounds,
// writing and reading back (its fuzz corpus is replayed in tests/fuzz).
#include "MultiColor.h"
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

class TestMultiColor : public QObject {
    Q_OBJECT
private slots:
    void colourFileReader()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("MultiColor.CFG"));
        QVERIFY(readMultiColor(path).isEmpty()); // missing

        auto write = [&](const QByteArray &bytes) {
            QFile f(path);
            QVERIFY(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
            f.write(bytes);
        };
        write("1,2,3,4\r\n,,,\r\n5,6\r\n-7,99999999,x,12abc\r\n\r\n8,9,10,11,12\r\n");
        const MultiColors c = readMultiColor(path);
        QCOMPARE(c.size(), 6);
        QCOMPARE(*c[0], (BlockColours{1, 2, 3, 4}));
        QCOMPARE(*c[1], (BlockColours{0, 0, 0, 0}));
        QVERIFY(!c[2] && !c[4]);
        QCOMPARE(*c[3], (BlockColours{0, 0xFFFFFF, 0, 12}));
        QCOMPARE(*c[5], (BlockColours{8, 9, 10, 11}));

        // Binary junk and a file far too long: read without harm, within bounds.
        write(QByteArray("\xff\x00\xfe,\x01,\x02\n", 9) + QByteArray(2 * 1024 * 1024, ','));
        QVERIFY(readMultiColor(path).size() <= MultiColor::MaxLines);
        QByteArray many;
        for (int i = 0; i < 3000; ++i)
            many += "1,2,3,4\n";
        write(many);
        QCOMPARE(readMultiColor(path).size(), MultiColor::MaxLines);

        QVERIFY(writeMultiColor(path, {{1, 2, 3, 4}, {0xFFFFFF, 0, 65280, 255}}));
        const MultiColors back = readMultiColor(path);
        QCOMPARE(back.size(), 2);
        QCOMPARE(*back[1], (BlockColours{0xFFFFFF, 0, 65280, 255}));
    }
};

QTEST_GUILESS_MAIN(TestMultiColor)
#include "tst_multicolor.moc"
