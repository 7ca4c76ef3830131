#pragma once
#include <QList>
#include <QString>
#include <QStringList>

class QPrinter;
class QWidget;

// Printing of the program screens: a sheet of rows under headings, and a
// picture of a widget (the curve), each under a title, on a printer or into
// a PDF file.
struct SegmentSheet {
    QString title;
    QString subtitle;
    QStringList headings; // a heading may have two lines
    QList<QStringList> rows;

    // As many pages as the rows need, the headings on each; row numbers in
    // the first column. False when the printer can't be opened.
    bool print(QPrinter &printer) const;
};

// The widget as it is drawn, scaled to fit the page under the title.
bool printWidget(QPrinter &printer, QWidget *widget, const QString &title);

// The printer writes a landscape A4 PDF file at path.
void preparePdf(QPrinter &printer, const QString &path);
