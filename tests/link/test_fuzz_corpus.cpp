// Replays the receive-path fuzzer's corpus (seeds and every input a fuzz run
// kept) through the same entry, so what once broke stays fixed.
#include "FuzzReceive.h"
#include <QDir>
#include <QFile>
#include <QtTest>

class FuzzCorpusTest : public QObject {
    Q_OBJECT
private slots:
    void everyInputRunsThrough()
    {
        const QDir dir(qEnvironmentVariable("QM730_SOURCE") + QStringLiteral("/fuzz/corpus"));
        const QStringList names = dir.entryList(QDir::Files);
        QVERIFY2(names.size() >= 20, qPrintable(dir.path()));
        for (const QString &name : names) {
            QFile f(dir.filePath(name));
            QVERIFY(f.open(QIODevice::ReadOnly));
            const QByteArray input = f.readAll();
            QCOMPARE(fuzzReceive(reinterpret_cast<const uint8_t *>(input.constData()), size_t(input.size())), 0);
        }
    }
};

QTEST_GUILESS_MAIN(FuzzCorpusTest)
#include "test_fuzz_corpus.moc"
