#pragma once
// A system page over a bench whose foreground machine has a given firmware
// and protocol: its rows set in the image before or after it opens, the
// refresh that reloads it, keys typed into its fields, and the mailbox.
#include "ButtonColour.h"
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
    std::unique_ptr<QDialog> page;

    explicit PageFixture(double firmware = 2.31, const QString &protocol = QStringLiteral("PC Link"))
    {
        s.CurrentMachine = 1;
        s.CommProtocol = protocol;
        s.image.applyFirmware(firmware);
        s.image.setTempDecimals(2);
    }
    template <class Page>
    Page &open()
    {
        page = std::make_unique<Page>(bench.ctx);
        page->show();
        return static_cast<Page &>(*page);
    }

    void up(ParamRef ref, qint64 word) { s.image.sprdUP.setNumber(1, RowOf(ref, s.FirmwareVersion()), word); }
    void upRow(int row, qint64 word) { s.image.sprdUP.setNumber(1, row, word); }
    QString row(int r) const { return s.image.sprdUP.text(1, r); }
    // As the link does when the reply is in: the page's refresh tick.
    void reload()
    {
        s.startActiveRefresh();
        QTRY_VERIFY(s.ActiveRefreshTimer && !s.ActiveRefreshTimer->isActive());
    }
    QList<int> mail() const
    {
        return {s.ReqCmd, s.ReqIndex, (quint8(s.ReqData[0]) << 8) | quint8(s.ReqData[1])};
    }

    QLineEdit *field(const char *name, int index = -1) const
    {
        return index < 0 ? child<QLineEdit>(*page, name) : indexed<QLineEdit>(*page, name, index);
    }
    QAbstractButton *button(const char *name, int index = -1) const
    {
        return index < 0 ? child<QAbstractButton>(*page, name) : indexed<QAbstractButton>(*page, name, index);
    }
    void type(QLineEdit *e, const QString &text)
    {
        e->setFocus();
        e->selectAll();
        QTest::keyClicks(e, text);
    }
    void enter(QLineEdit *e, const QString &text)
    {
        type(e, text);
        QTest::keyClick(e, Qt::Key_Return);
    }
    void enter(const char *name, int index, const QString &text) { enter(field(name, index), text); }
    void leave(QWidget *w)
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
