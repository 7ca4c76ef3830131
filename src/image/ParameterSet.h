#pragma once
#include <QByteArray>
#include <QString>
#include <QStringList>
#include "TextTable.h"
#include <optional>

class ControllerImage;

// The parameter file set: the backup of a controller, four files sharing a
// base name, each the saved image of one table of the controller image
// (TextTable::save: dimensions and the text of every non-empty cell):
//
//   base.UUP  sprdUP, the parameter block (the master file, the one a user
//             picks); its corner cell (column 0, row 0) holds the firmware
//             version of the machine it came from
//   base.UTD  sprdTD, the text rows (names in the characters the controller
//             holds; they go back to it as the same code-page bytes)
//   base.UPD  sprdPD, the pattern rows
//   base.USD  sprdSD, the segment rows
//
// The screens speak of the whole set as base.Uxx. There is no other header
// and no checksum: the row count of sprdUP is what the reader checks against
// the machine.
namespace paramset {

enum class SetFile { Parameters, Texts, Patterns, Segments };

// base + ".UUP", ".UTD", ".UPD", ".USD".
QString setFilePath(const QString &base, SetFile file);
// base + ".Uxx", the name of the whole set on the screens.
QString setDisplayName(const QString &base);

// What a name from the save dialog means: a name ending in ".UUP" (exactly so,
// in capitals) is the master file, its base the name without the extension,
// and an existing master is overwritten only when the user agrees; any other
// name is the base itself, and nothing is asked.
struct SaveName {
    QString base;
    bool confirmOverwrite = false;
};
SaveName saveNameOf(const QString &chosen);
// The base of a master file chosen to be read: the name without its last 4 characters.
QString baseOfMaster(const QString &chosen);

// Puts the firmware version into the corner cell of sprdUP and writes the
// four files from the image as it stands, all or none (writeFilesAtomic):
// a failure leaves the files of that base as they were. False with *error.
bool saveParameterSet(ControllerImage &image, double firmwareVersion, const QString &base, QString *error = nullptr);

// The four files of a set, read and checked to be the tables they should be
// (sprdUP one column; the others the fixed dimensions of the program image).
struct ParameterSet {
    QByteArray parameters, texts, patterns, segments;
    int parameterRows = 0;
    double fileVersion = 0; // the corner cell of the master, 0 when empty
};
// Reads a set whole or not at all: nullopt with *error naming the file that
// is missing, unreadable, cut short or not the table it should be.
std::optional<ParameterSet> readParameterSet(const QString &base, QString *error = nullptr);
// The same checks on the four files' contents (base only names them in *error).
// A table of words (sprdUP, sprdPD, sprdSD) must hold a number in every
// non-empty data cell: a hand-edited "abc" is refused, not sent as 0.
std::optional<ParameterSet> parseParameterSet(const QByteArray &parameters, const QByteArray &texts,
                                              const QByteArray &patterns, const QByteArray &segments,
                                              const QString &base, QString *error = nullptr);

// The settings of the open link, from which the link rows of the block are written.
struct LinkSettings {
    QString baud, parity, dataBits, stopBits;
    bool modbus = false;
    bool crc = false;
};

// Writes the settings of the open link into the protocol, baud, parity,
// stop-bit and data-bit rows of both serial ports of the block (the rows of
// the machine's layout), so that a set from another machine does not cut the
// PC off. A baud or parity the controller has no code for leaves its rows as
// they are; so does the protocol under Modbus RTU below firmware 2.2, which
// has no code for it.
void writeLinkRows(TextTable &parameters, double machineVersion, const LinkSettings &link);

// The conversion of a block made on older firmware, by the versions of the
// file and of the machine (only for a machine of 2.2 or higher; at most one).
enum class Conversion {
    None,
    DigitalInputActions, // file below 2.37, machine 2.37 or higher: rows 187 to 194
    DigitalOutputValues, // otherwise file below 2.4, machine 2.4 or higher: rows 156 and 162
};
Conversion conversionFor(double fileVersion, double machineVersion);
// Applies conversionFor to the block and says which ran.
//  - DigitalInputActions: a D/I line word v of 256 or more (an action set)
//    becomes (v and 255) + 256, the action code of the newer firmware.
//  - DigitalOutputValues: the Temp.UP value (row 156) loses its offset of
//    3000 and the Humi.UP value (row 162) its offset of 1000; a value below
//    the offset wraps to the 16-bit word of the negative number.
// Empty cells stay empty.
Conversion convertParameterBlock(TextTable &parameters, double fileVersion, double machineVersion);

// A set put into the image for sending, the steps of reading a set after the
// files were read: the four tables replaced, the link rows written, the block
// converted, and its row count compared with the rows of the machine's
// firmware. When they differ the table is given back the machine's count and
// the set must not be sent; the tables keep what was loaded. The loaded
// flags of the program image are not touched.
struct LoadOutcome {
    bool fits = false;
    int setRows = 0;
    int machineRows = 0;
    Conversion conversion = Conversion::None;
};
LoadOutcome loadParameterSet(ControllerImage &image, const ParameterSet &set, const LinkSettings &link);

// The four tables of an image as they were sent, to be compared with the
// machine read back afterwards.
struct SentTables {
    TextTable up, td, pd, sd;
    static SentTables of(const ControllerImage &image);
};
// The rows of a machine read back into `readBack` that differ from what was
// sent, one line each ("parameter row 25: sent 9, read 7"): the parameter
// block but the running clock, the text rows 1 to patternCount + 11, the
// pattern rows, and the live segments of each pattern (as many as word 1 of
// the pattern row sent says).
QStringList rowsThatDiffer(const SentTables &sent, const ControllerImage &readBack, int patternCount,
                           double firmwareVersion);

} // namespace paramset
