// Draws the small pictures of the single-chamber console into a folder:
//   draw_pictures <folder>
// writes Image/BT_UP.bmp, Image/BT_DN.bmp, Image/T_UP.ico, Image/T_DN.ico,
// Image/H_UP.ico, Image/H_DN.ico, Smile_OK.ico and Smile_NG.ico. The pictures
// in src/run/images were made with it; run it again after changing a drawing.
#include <QDir>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <cstdio>

namespace {

// A triangle pointing up or down, filling most of a square of side s.
QPolygonF arrow(double s, bool up, double inset)
{
    const double l = inset, r = s - inset, t = inset, b = s - inset;
    if (up)
        return QPolygonF({QPointF(s / 2, t), QPointF(r, b), QPointF(l, b)});
    return QPolygonF({QPointF(l, t), QPointF(r, t), QPointF(s / 2, b)});
}

// The lamp cell picture of a ramp: a solid arrow on white (a bitmap has no alpha).
QImage rampCell(bool up)
{
    QImage img(16, 16, QImage::Format_RGB32);
    img.fill(Qt::white);
    QPainter p(&img);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(Qt::NoPen);
    p.setBrush(up ? QColor(200, 30, 30) : QColor(30, 80, 200));
    p.drawPolygon(arrow(16, up, 2));
    return img;
}

// A letter with an arrow beside it: T for temperature, H for humidity.
QImage rampIcon(QChar letter, bool up, const QColor &colour)
{
    QImage img(32, 32, QImage::Format_ARGB32);
    img.fill(Qt::transparent);
    QPainter p(&img);
    p.setRenderHint(QPainter::Antialiasing);
    QFont f(QStringLiteral("DejaVu Sans"));
    f.setBold(true);
    f.setPixelSize(22);
    p.setFont(f);
    p.setPen(colour);
    p.drawText(QRectF(0, 2, 18, 28), Qt::AlignCenter, QString(letter));
    p.setPen(Qt::NoPen);
    p.setBrush(up ? QColor(220, 30, 30) : QColor(30, 90, 220));
    p.translate(17, 6);
    p.drawPolygon(arrow(15, up, 0));
    return img;
}

// A round face, smiling (link good) or frowning (link lost).
QImage smile(bool good)
{
    QImage img(32, 32, QImage::Format_ARGB32);
    img.fill(Qt::transparent);
    QPainter p(&img);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(QColor(60, 60, 60), 1.5));
    p.setBrush(good ? QColor(80, 200, 80) : QColor(230, 60, 50));
    p.drawEllipse(QRectF(2, 2, 28, 28));
    p.setBrush(QColor(30, 30, 30));
    p.setPen(Qt::NoPen);
    p.drawEllipse(QRectF(10, 10, 4, 5));
    p.drawEllipse(QRectF(18, 10, 4, 5));
    QPainterPath mouth;
    if (good) {
        mouth.moveTo(9, 19);
        mouth.quadTo(16, 27, 23, 19);
    } else {
        mouth.moveTo(9, 24);
        mouth.quadTo(16, 17, 23, 24);
    }
    p.setBrush(Qt::NoBrush);
    p.setPen(QPen(QColor(30, 30, 30), 2.2, Qt::SolidLine, Qt::RoundCap));
    p.drawPath(mouth);
    return img;
}

bool save(const QImage &img, const QString &path, const char *format)
{
    if (img.save(path, format))
        return true;
    std::fprintf(stderr, "cannot write %s\n", qPrintable(path));
    return false;
}

} // namespace

int main(int argc, char **argv)
{
    QGuiApplication app(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: draw_pictures <folder>\n");
        return 2;
    }
    const QDir out(QString::fromLocal8Bit(argv[1]));
    out.mkpath(QStringLiteral("Image"));
    const QColor temp(170, 20, 20), humi(20, 60, 170);
    bool ok = save(rampCell(true), out.filePath(QStringLiteral("Image/BT_UP.bmp")), "BMP");
    ok &= save(rampCell(false), out.filePath(QStringLiteral("Image/BT_DN.bmp")), "BMP");
    ok &= save(rampIcon(u'T', true, temp), out.filePath(QStringLiteral("Image/T_UP.ico")), "ICO");
    ok &= save(rampIcon(u'T', false, temp), out.filePath(QStringLiteral("Image/T_DN.ico")), "ICO");
    ok &= save(rampIcon(u'H', true, humi), out.filePath(QStringLiteral("Image/H_UP.ico")), "ICO");
    ok &= save(rampIcon(u'H', false, humi), out.filePath(QStringLiteral("Image/H_DN.ico")), "ICO");
    ok &= save(smile(true), out.filePath(QStringLiteral("Smile_OK.ico")), "ICO");
    ok &= save(smile(false), out.filePath(QStringLiteral("Smile_NG.ico")), "ICO");
    return ok ? 0 : 1;
}
