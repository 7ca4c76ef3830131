// The program image's files: the program cache LastPData_<n>.PD/.SD/.TD and
// PTN_Recv.OPT.
#include "ControllerImage.h"
#include "FuzzSupport.h"
#include "FuzzTargets.h"
#include "ProgramImage.h"
#include <QFileInfo>

namespace {

constexpr int kMachine = 7;
const QString kMarker = QStringLiteral("before");

struct CacheTable {
    const char16_t *extension;
    TextTable ControllerImage::*table;
    QString sample; // cell (1, 1) of the good file
};
const CacheTable kTables[] = {
    {u"PD", &ControllerImage::sprdPD, QStringLiteral("11")},
    {u"SD", &ControllerImage::sprdSD, QStringLiteral("22")},
    {u"TD", &ControllerImage::sprdTD, QStringLiteral("程式一")},
};

// A table's image, loaded again and saved again, gives the same image.
bool savesAsLoaded(const TextTable &t)
{
    TextTable again(t.name());
    return again.load(t.save()) && again.save() == t.save();
}

} // namespace

// Byte 0 chooses the file that gets the rest of the input (.PD, .SD or .TD);
// the other two are good cache files of the machine.
int fuzzProgramCache(const uint8_t *data, size_t size)
{
    static const QString home = fuzzHome("program_cache");
    // The image before the load: a mark in each table (a row of the segment
    // table is large, so it is made once and shared).
    static const ControllerImage marked = [] {
        ControllerImage m;
        for (const CacheTable &c : kTables)
            (m.*c.table).setText(1, 1, kMarker);
        return m;
    }();
    static ControllerImage image;
    static const QList<QByteArray> good = [] {
        ControllerImage g;
        QList<QByteArray> files;
        for (const CacheTable &c : kTables) {
            (g.*c.table).setText(1, 1, c.sample);
            files << (g.*c.table).save();
        }
        return files;
    }();
    if (size < 1)
        return 0;
    const int chosen = data[0] % 3;
    for (int i = 0; i < 3; ++i) {
        const QString name = QFileInfo(programCachePath(home, kMachine, kTables[i].extension)).fileName();
        if (i == chosen)
            writeFuzzFile(home, name, data + 1, size - 1);
        else
            writeFuzzFile(home, name, reinterpret_cast<const uint8_t *>(good[i].constData()), size_t(good[i].size()));
    }
    image = marked;

    FUZZ_REQUIRE(!LoadProgramCache(image, home, kMachine, 0)); // "from the controller": the files are not read
    for (const CacheTable &c : kTables)
        FUZZ_REQUIRE((image.*c.table).text(1, 1) == kMarker);

    const bool loaded = LoadProgramCache(image, home, kMachine, 1);
    // Tables keep their dimensions whatever a file says.
    for (const CacheTable &c : kTables) {
        const TextTable &t = image.*c.table;
        const TextTable &f = marked.*c.table;
        FUZZ_REQUIRE(t.colCount() == f.colCount() && t.rowCount() == f.rowCount());
    }
    // Files are taken in order, each whole or not at all: the tables before
    // the chosen one come from the good files, those behind it stay as they
    // were unless all three were taken.
    for (int i = 0; i < 3; ++i) {
        const TextTable &t = image.*kTables[i].table;
        if (i < chosen || (loaded && i > chosen))
            FUZZ_REQUIRE(t.text(1, 1) == kTables[i].sample);
        else if (i > chosen || !loaded)
            FUZZ_REQUIRE(t.text(1, 1) == kMarker);
    }
    if (loaded)
        FUZZ_REQUIRE(savesAsLoaded(image.*kTables[chosen].table));
    return 0;
}

int fuzzPtnRecvOpt(const uint8_t *data, size_t size)
{
    static const QString home = fuzzHome("ptn_recv_opt");
    static const QString again = fuzzHome("ptn_recv_opt_again");
    writeFuzzFile(home, QStringLiteral("PTN_Recv.OPT"), data, size);
    const int index = readPtnRecvOpt(home);
    FUZZ_REQUIRE(index == 0 || index == 1); // one of the two sources is always chosen
    if (size == 0)
        FUZZ_REQUIRE(index == 0); // the controller
    // What a click on the option writes is read back the same.
    FUZZ_REQUIRE(writePtnRecvOpt(again, index));
    FUZZ_REQUIRE(readPtnRecvOpt(again) == index);
    return 0;
}
