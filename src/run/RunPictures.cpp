#include "RunPictures.h"
#include "Files.h"
#include <QCoreApplication>
#include <QFileInfo>
#include <QHash>

namespace RunPictures {

namespace {

// "\Image\BT_UP.bmp" -> ":/run/Image/BT_UP.bmp"
QString resourcePath(const QString &name)
{
    QString rel = name;
    rel.replace(u'\\', u'/');
    if (!rel.startsWith(u'/'))
        rel.prepend(u'/');
    return QStringLiteral(":/run") + rel;
}

} // namespace

QPixmap builtIn(const QString &name)
{
    return QPixmap(resourcePath(name));
}

QPixmap load(const QString &name, const QString &folder)
{
    // Read once per folder: the console asks for the ramp pictures every second.
    static QHash<QString, QPixmap> cache;
    const QString key = folder + u'|' + name;
    const auto hit = cache.constFind(key);
    if (hit != cache.constEnd())
        return *hit;
    QPixmap pm;
    const QString file = programPath(folder, name);
    if (QFileInfo::exists(file))
        pm.load(file);
    if (pm.isNull())
        pm = builtIn(name);
    cache.insert(key, pm);
    return pm;
}

QPixmap load(const QString &name)
{
    return load(name, QCoreApplication::applicationDirPath());
}

} // namespace RunPictures
