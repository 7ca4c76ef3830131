#pragma once
// A page over a bench whose foreground machine has a given firmware and
// protocol: the image rows it shows, the refresh that reloads it, the mailbox
// it fills, and its controls used as the operator uses them.
#include "ButtonColour.h"
#include "CellEdit.h"
#include "ScreenBench.h"
#include "Widgets.h"
#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QtTest>
#include <memory>

struct PageFixture {
    QTemporaryDir dir;
    ScreenBench bench{dir.path()};
    ConsoleState &s = bench.state;
    std::unique_ptr<QDialog> page; // the page opened last

    explicit PageFixture(double firmware = 2.31, const QString &protocol = QStringLiteral("PC Link"), int decimals = 2)
    {
        s.CurrentMachine = 1;
        s.CommProtocol = protocol;
        s.image.applyFirmware(firmware);
        s.image.setTempDecimals(decimals);
    }
    // Opens a page (closing the one opened before) and waits until it shows.
    template <class Page>
    Page *open()
    {
        page = std::make_unique<Page>(bench.ctx);
        page->show();
        if (!QTest::qWaitForWindowExposed(page.get()))
            qFatal("the page was not shown");
        return static_cast<Page *>(page.get());
    }

    void up(ParamRef ref, qint64 word) { s.image.sprdUP.setNumber(1, RowOf(ref, s.FirmwareVersion()), word); }
    void up(int row, qint64 word) { s.image.sprdUP.setNumber(1, row, word); }
    void upRow(int row, qint64 word) { up(row, word); }
    QString row(int r) const { return s.image.sprdUP.text(1, r); }
    QString cell(int r) const { return row(r); }
    // As the link does when the reply is in: the page's refresh tick reloads it.
    void reload()
    {
        QTimer *timer = s.ActiveRefreshTimer.data();
        QVERIFY(timer);
        s.startActiveRefresh();
        QTRY_VERIFY(!timer->isActive());
    }
    void refresh() { reload(); }
    // Code, address and word of the mailbox.
    QList<int> mail() const { return {s.ReqCmd, s.ReqIndex, (quint8(s.ReqData[0]) << 8) | quint8(s.ReqData[1])}; }
    void clearMail()
    {
        s.ReqCmd = 0;
        s.ReqIndex = 0;
    }

    QLineEdit *field(const char *name, int index = -1) const
    {
        return index < 0 ? child<QLineEdit>(*page, name) : indexed<QLineEdit>(*page, name, index);
    }
    QAbstractButton *button(const char *name, int index = -1) const
    {
        return index < 0 ? child<QAbstractButton>(*page, name) : indexed<QAbstractButton>(*page, name, index);
    }
    static void type(QLineEdit *e, const QString &text)
    {
        e->setFocus();
        e->selectAll();
        typeText(e, text);
    }
    static void enter(QLineEdit *e, const QString &text)
    {
        type(e, text);
        QTest::keyClick(e, Qt::Key_Return);
    }
    void enter(const char *name, int index, const QString &text) { enter(field(name, index), text); }
    static void leave(QWidget *w)
    {
        QFocusEvent out(QEvent::FocusOut, Qt::TabFocusReason);
        QApplication::sendEvent(w, &out);
    }
    void click(const char *name, int index = -1) { QTest::mouseClick(button(name, index), Qt::LeftButton); }
    bool chosen(const char *name, int index) const
    {
        return ButtonColour::of(button(name, index)) == ButtonColour::Selected;
    }
};
