// Replays the parameter-set fuzzer's corpus (seeds and every input a fuzz run
// kept) through the same entry, so what once broke stays fixed.
#include "FuzzParameterSet.h"
#include <QDir>
#include <QFile>
#include <QtTest>

class ParameterSetCorpusTest : public QObject {
    Q_OBJECT
private slots:
    void everyInputRunsThrough()
    {
        const QDir dir(qEnvironmentVariable("QM730_SOURCE") + QStringLiteral("/fuzz/corpus_set"));
        const QStringList names = dir.entryList(QDir::Files);
        QVERIFY2(names.size() >= 8, qPrintable(dir.path()));
        for (const QString &name : names) {
            QFile f(dir.filePath(name));
            QVERIFY(f.open(QIODevice::ReadOnly));
            const QByteArray input = f.readAll();
            QCOMPARE(fuzzParameterSet(reinterpret_cast<const uint8_t *>(input.constData()), size_t(input.size())), 0);
        }
    }
};

QTEST_GUILESS_MAIN(ParameterSetCorpusTest)
#include "tst_parameterset_corpus.moc"
