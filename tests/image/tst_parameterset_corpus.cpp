// Replays the parameter-set fuzzer's corpus through the same entry.
#include "CorpusReplay.h"
#include "FuzzParameterSet.h"

class ParameterSetCorpusTest : public QObject {
    Q_OBJECT
private slots:
    void everyInputRunsThrough() { replayCorpus(QStringLiteral("corpus/parameterset"), 8, fuzzParameterSet); }
};

QTEST_GUILESS_MAIN(ParameterSetCorpusTest)
#include "tst_parameterset_corpus.moc"
