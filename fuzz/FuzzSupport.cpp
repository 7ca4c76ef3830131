#include "FuzzSupport.h"
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <cstdio>
#include <cstdlib>

namespace {
FuzzFailureHandler g_handler = nullptr;
}

// In memory where the system offers it: the targets write files at every input,
// and a disk file system flushes a file replaced by truncation or rename.
static QString tempRoot()
{
    const QString shm = QStringLiteral("/dev/shm");
    return QFileInfo(shm).isDir() && QFileInfo(shm).isWritable() ? shm : QDir::tempPath();
}

QString fuzzHome(const char *target)
{
    static QTemporaryDir root(tempRoot() + QStringLiteral("/qm730-fuzz-XXXXXX"));
    const QString home = root.path() + u'/' + QLatin1String(target);
    QDir().mkpath(home);
    return home;
}

void writeFuzzFile(const QString &home, const QString &relative, const uint8_t *data, size_t size)
{
    const QString path = home + u'/' + relative;
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile f(path);
    if (!f.open(QIODevice::WriteOnly | QIODevice::Truncate))
        fuzzFailed("cannot write the input file");
    if (f.write(reinterpret_cast<const char *>(data), qint64(size)) != qint64(size))
        fuzzFailed("cannot write the input file");
}

QByteArray readFuzzFile(const QString &home, const QString &relative)
{
    QFile f(home + u'/' + relative);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

void setFuzzFailureHandler(FuzzFailureHandler handler)
{
    g_handler = handler;
}

void fuzzFailed(const char *what)
{
    if (g_handler)
        g_handler(what);
    std::fprintf(stderr, "fuzz property broken: %s\n", what);
    std::abort();
}
