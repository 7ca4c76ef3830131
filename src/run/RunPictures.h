#pragma once
#include <QPixmap>
#include <QString>

// The pictures of the single-chamber console. They are files beside the
// program, named the way the console names them ("\Image\BT_UP.bmp"), so that
// an installation can change them; the build copies its own set there. A file
// that is missing or unreadable is replaced by the copy built into the program.
namespace RunPictures {

inline const QString RampUpCell = QStringLiteral("\\Image\\BT_UP.bmp");
inline const QString RampDownCell = QStringLiteral("\\Image\\BT_DN.bmp");
inline const QString TempUp = QStringLiteral("\\Image\\T_UP.ico");
inline const QString TempDown = QStringLiteral("\\Image\\T_DN.ico");
inline const QString HumiUp = QStringLiteral("\\Image\\H_UP.ico");
inline const QString HumiDown = QStringLiteral("\\Image\\H_DN.ico");
inline const QString SmileOk = QStringLiteral("\\Smile_OK.ico");
inline const QString SmileNg = QStringLiteral("\\Smile_NG.ico");

// The picture from the program's folder (QCoreApplication::applicationDirPath).
QPixmap load(const QString &name);
// The picture from the given folder, else the built-in copy; null when
// neither can be read. Pictures are kept once read.
QPixmap load(const QString &name, const QString &folder);
// The built-in copy alone.
QPixmap builtIn(const QString &name);

} // namespace RunPictures
