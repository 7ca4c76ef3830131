// Replays the receive-path fuzzer's corpus through the same entry.
#include "CorpusReplay.h"
#include "FuzzReceive.h"

class FuzzCorpusTest : public QObject {
    Q_OBJECT
private slots:
    void everyInputRunsThrough() { replayCorpus(QStringLiteral("corpus"), 20, fuzzReceive); }
};

QTEST_GUILESS_MAIN(FuzzCorpusTest)
#include "test_fuzz_corpus.moc"
