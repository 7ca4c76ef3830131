#include "SegmentSheet.h"
#include <QFont>
#include <QPainter>
#include <QPrinter>
#include <QWidget>
#include <algorithm>

namespace {

// Draws the title block at the top of the page; returns the height it took.
int drawTitle(QPainter &painter, const QRect &page, const QString &title, const QString &subtitle)
{
    QFont big = painter.font();
    big.setPointSizeF(14);
    big.setBold(true);
    painter.setFont(big);
    const int h1 = painter.fontMetrics().height();
    painter.drawText(QRect(page.left(), page.top(), page.width(), h1), Qt::AlignLeft | Qt::AlignVCenter, title);
    int used = h1;
    if (!subtitle.isEmpty()) {
        QFont small = big;
        small.setPointSizeF(10);
        small.setBold(false);
        painter.setFont(small);
        const int h2 = painter.fontMetrics().height();
        painter.drawText(QRect(page.left(), page.top() + used, page.width(), h2), Qt::AlignLeft | Qt::AlignVCenter,
                         subtitle);
        used += h2;
    }
    return used + painter.fontMetrics().height() / 2;
}

} // namespace

void preparePdf(QPrinter &printer, const QString &path)
{
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(path);
    printer.setPageSize(QPageSize(QPageSize::A4));
    printer.setPageOrientation(QPageLayout::Landscape);
}

bool SegmentSheet::print(QPrinter &printer) const
{
    QPainter painter;
    if (!painter.begin(&printer))
        return false;
    const QRect page = painter.viewport();
    QFont body = painter.font();
    body.setPointSizeF(9);
    painter.setFont(body);
    const int rowHeight = painter.fontMetrics().height() * 3 / 2;
    const int headHeight = rowHeight * 2;
    // The first column holds the segment number, the others share the width.
    const int columns = int(headings.size()) + 1;
    const double numberShare = 0.6;
    const double unit = page.width() / (columns - 1 + numberShare);
    auto columnRect = [&](int c, int top, int height) {
        const double left = c == 0 ? 0 : unit * (numberShare + c - 1);
        const double width = c == 0 ? unit * numberShare : unit;
        return QRect(page.left() + int(left), top, int(width), height);
    };
    int r = 0;
    bool firstPage = true;
    while (firstPage || r < rows.size()) {
        if (!firstPage)
            printer.newPage();
        firstPage = false;
        int top = page.top() + drawTitle(painter, page, title, subtitle);
        painter.setFont(body);
        for (int c = 0; c < columns; ++c) {
            const QRect box = columnRect(c, top, headHeight);
            painter.fillRect(box, QColor(224, 224, 224));
            painter.drawRect(box);
            painter.drawText(box, Qt::AlignCenter, c == 0 ? QStringLiteral("段") : headings[c - 1]);
        }
        top += headHeight;
        for (; r < rows.size() && top + rowHeight <= page.bottom(); ++r, top += rowHeight) {
            for (int c = 0; c < columns; ++c) {
                const QRect box = columnRect(c, top, rowHeight);
                painter.drawRect(box);
                const QString text = c == 0 ? QString::number(r + 1) : rows[r].value(c - 1);
                painter.drawText(box, Qt::AlignCenter, text);
            }
        }
    }
    return painter.end();
}

bool printWidget(QPrinter &printer, QWidget *widget, const QString &title)
{
    QPainter painter;
    if (!painter.begin(&printer))
        return false;
    const QRect page = painter.viewport();
    const int top = drawTitle(painter, page, title, {});
    const QSize size = widget->size().isEmpty() ? widget->sizeHint() : widget->size();
    const QRect area(page.left(), page.top() + top, page.width(), page.height() - top);
    const double scale = std::min(area.width() / double(size.width()), area.height() / double(size.height()));
    painter.translate(area.topLeft());
    painter.scale(scale, scale);
    widget->render(&painter, QPoint(), QRegion(), QWidget::DrawChildren);
    return painter.end();
}
