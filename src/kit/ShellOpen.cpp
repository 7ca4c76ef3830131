#include "ShellOpen.h"
#include "Files.h"
#include <QDesktopServices>
#include <QFileInfo>
#include <QProcess>
#include <QUrl>

namespace {
ShellOpenHandler &handler()
{
    static ShellOpenHandler h;
    return h;
}
} // namespace

void setShellOpenHandler(ShellOpenHandler h)
{
    handler() = std::move(h);
}

bool shellOpen(const QString &target, bool program)
{
    if (handler())
        return handler()(target, program);
    if (program)
        return QProcess::startDetached(target, {}, QFileInfo(target).absolutePath());
    const QUrl url = target.contains(QLatin1String("://")) ? QUrl(target) : QUrl::fromLocalFile(target);
    return QDesktopServices::openUrl(url);
}

bool shellOpenBesideProgram(const QString &home, const QString &relative, bool program, QString *path)
{
    const QString full = programPath(home, relative);
    if (path)
        *path = full;
    return QFileInfo::exists(full) && shellOpen(full, program);
}
