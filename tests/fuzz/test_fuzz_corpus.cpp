// Replays every fuzz corpus (seeds and the inputs fuzz runs kept) through the
// same target code as the fuzzers, so what once broke stays fixed, and shows
// that the receive fuzzer's reuse of one console between inputs is as good as
// a new console for each.
#include "FuzzReceive.h"
#include "FuzzSupport.h"
#include "FuzzTargets.h"
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>
#include <stdexcept>

namespace {
struct PropertyBroken : std::runtime_error {
    using std::runtime_error::runtime_error;
};

QDir corpusRoot()
{
    return QDir(qEnvironmentVariable("QM730_SOURCE") + QStringLiteral("/fuzz/corpus"));
}

QList<QPair<QString, QByteArray>> corpus(const QString &target)
{
    QList<QPair<QString, QByteArray>> inputs;
    const QDir dir(corpusRoot().filePath(target));
    for (const QString &name : dir.entryList(QDir::Files, QDir::Name)) {
        QFile f(dir.filePath(name));
        if (f.open(QIODevice::ReadOnly))
            inputs.append({name, f.readAll()});
    }
    return inputs;
}
} // namespace

class FuzzCorpusTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase()
    {
        setFuzzFailureHandler([](const char *what) { throw PropertyBroken(what); });
    }

    void everyTargetHasItsCorpus()
    {
        QStringList targets;
        for (size_t i = 0; i < kFuzzTargetCount; ++i)
            targets << QLatin1String(kFuzzTargets[i].name);
        QStringList folders = corpusRoot().entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
        targets.sort();
        QCOMPARE(folders, targets);
    }

    void everyInputKeepsItsProperties_data()
    {
        QTest::addColumn<int>("target");
        for (size_t i = 0; i < kFuzzTargetCount; ++i)
            QTest::newRow(kFuzzTargets[i].name) << int(i);
    }
    void everyInputKeepsItsProperties()
    {
        QFETCH(int, target);
        const FuzzTarget &t = kFuzzTargets[target];
        const auto inputs = corpus(QLatin1String(t.name));
        QVERIFY2(inputs.size() >= 3, t.name);
        for (const auto &[name, bytes] : inputs) {
            try {
                QCOMPARE(t.run(reinterpret_cast<const uint8_t *>(bytes.constData()), size_t(bytes.size())), 0);
            } catch (const PropertyBroken &e) {
                QFAIL(qPrintable(QStringLiteral("%1/%2: %3").arg(QLatin1String(t.name), name, QLatin1String(e.what()))));
            }
        }
    }

    // One console reused for every input, in corpus order, ends each input
    // exactly where a new console does.
    void reusedConsoleActsAsNew()
    {
        QTemporaryDir home;
        ReceiveFuzzer reused(home.path() + QStringLiteral("/reused"));
        int compared = 0;
        for (const auto &[name, bytes] : corpus(QStringLiteral("receive"))) {
            const auto *data = reinterpret_cast<const uint8_t *>(bytes.constData());
            if (bytes.size() < 3)
                continue;
            ReceiveFuzzer fresh(home.path() + QStringLiteral("/fresh"));
            fresh.run(data, size_t(bytes.size()));
            reused.run(data, size_t(bytes.size()));
            QVERIFY2(reused.outcome() == fresh.outcome(), qPrintable(name));
            ++compared;
        }
        QVERIFY(compared >= 20);
    }
};

QTEST_GUILESS_MAIN(FuzzCorpusTest)
#include "test_fuzz_corpus.moc"
