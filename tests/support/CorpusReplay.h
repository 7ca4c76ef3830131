#pragma once
// Replays a fuzzer's corpus (its seeds and every input a fuzz run kept)
// through the fuzzer's own entry, so that what once broke stays fixed.
#include <QDir>
#include <QFile>
#include <QtTest>
#include <cstdint>

// Every file of fuzz/<folder> of the source tree goes through entry, which
// must return 0; the folder must hold at least minimum inputs.
template <typename Entry>
void replayCorpus(const QString &folder, int minimum, Entry entry)
{
    const QDir dir(qEnvironmentVariable("QM730_SOURCE") + QStringLiteral("/fuzz/") + folder);
    const QStringList names = dir.entryList(QDir::Files);
    QVERIFY2(names.size() >= minimum, qPrintable(dir.path()));
    for (const QString &name : names) {
        QFile f(dir.filePath(name));
        QVERIFY(f.open(QIODevice::ReadOnly));
        const QByteArray input = f.readAll();
        QVERIFY2(entry(reinterpret_cast<const uint8_t *>(input.constData()), size_t(input.size())) == 0,
                 qPrintable(name));
    }
}
