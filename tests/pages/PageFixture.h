#pragma once
// A page over a bench whose foreground machine has a given firmware and
// protocol: the image rows it shows, the refresh that reloads it, the mailbox
// it fills, and its controls used as the operator uses them.
#include "ButtonColour.h"
#include "CellEdit.h"
#include "ModalDriver.h"
#include "ScreenBench.h"
#include "Widgets.h"
#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QtTest>
#include <memory>

using Mail = QList<int>; // code, address and word of the mailbox

// A case of a data-driven test: a machine's firmware and protocol, and the
// address (and word) a write must go to.
struct Layout {
    double firmware;
    QString protocol;
    int address, word = 0;
};
Q_DECLARE_METATYPE(Layout)

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
        page.reset();
        page = std::make_unique<Page>(bench.ctx);
        page->show();
        if (!QTest::qWaitForWindowExposed(page.get()))
            qFatal("the page was not shown");
        return static_cast<Page *>(page.get());
    }

    void up(ParamRef ref, qint64 word) { s.image.sprdUP.setNumber(1, RowOf(ref, s.FirmwareVersion()), word); }
    void up(int row, qint64 word) { s.image.sprdUP.setNumber(1, row, word); }
    void up(std::initializer_list<std::pair<int, qint64>> rows)
    {
        for (const auto &[row, word] : rows)
            up(row, word);
    }
    QString row(int r) const { return s.image.sprdUP.text(1, r); }
    // As the link does when the reply is in: the page's refresh tick reloads it.
    void reload()
    {
        QTimer *timer = s.ActiveRefreshTimer.data();
        QVERIFY(timer);
        s.startActiveRefresh();
        QTRY_VERIFY(!timer->isActive());
    }
    Mail mail() const { return {s.ReqCmd, s.ReqIndex, (quint8(s.ReqData[0]) << 8) | quint8(s.ReqData[1])}; }
    void clearMail() { s.ReqCmd = s.ReqIndex = 0; }

    template <class T = QLineEdit>
    T *get(const char *name, int index = -1) const
    {
        return index < 0 ? child<T>(*page, name) : indexed<T>(*page, name, index);
    }
    QLineEdit *field(const char *name, int index = -1) const { return get<QLineEdit>(name, index); }
    QAbstractButton *button(const char *name, int index = -1) const { return get<QAbstractButton>(name, index); }
    QString label(const char *name) const { return get<QLabel>(name)->text(); }
    QString text(const char *name, int index = -1) const { return field(name, index)->text(); }
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
    void enter(const char *name, const QString &text) { enter(field(name), text); }
    void enter(const char *name, int index, const QString &text) { enter(field(name, index), text); }
    // Typed, then the focus leaves without Enter; returns the text shown then.
    QString typeAndLeave(const char *name, const QString &text, int index = -1)
    {
        QLineEdit *e = field(name, index);
        type(e, text);
        QFocusEvent out(QEvent::FocusOut, Qt::TabFocusReason);
        QApplication::sendEvent(e, &out);
        return e->text();
    }
    // Fields typed into and confirmed one after the other: the mail each
    // leaves and, where given, the text the field shows then.
    struct Entry {
        const char *name;
        int index;
        QString typed;
        Mail mail;
        QString shown = {};
    };
    void enterAll(const QList<Entry> &entries)
    {
        for (const Entry &e : entries) {
            enter(field(e.name, e.index), e.typed);
            const Mail m = mail();
            const QString shown = text(e.name, e.index);
            QVERIFY2(m == e.mail && (e.shown.isNull() || shown == e.shown),
                     qPrintable(QStringLiteral("%1[%2] \"%3\": mail %4 %5 %6, shown \"%7\"")
                                    .arg(QLatin1String(e.name)).arg(e.index).arg(e.typed)
                                    .arg(m[0]).arg(m[1]).arg(m[2]).arg(shown)));
        }
    }
    void click(const char *name, int index = -1) { QTest::mouseClick(button(name, index), Qt::LeftButton); }
    bool chosen(const char *name, int index) const { return ButtonColour::of(button(name, index)) == ButtonColour::Selected; }

    // btnAdjustT and btnAdjustH open the revision pages of the page's two
    // curves, each with the refresh of its own; closed, the refresh is the
    // page's again. Gives the pages met and the offsets they showed.
    void adjustPages(QStringList &met, QStringList &offsets)
    {
        QTimer *own = s.ActiveRefreshTimer;
        ModalDriver d;
        for (int i = 0; i < 2; ++i)
            d.then([&](QWidget *w) {
                offsets << child<QLineEdit>(*w, "txtOffset")->text();
                QVERIFY(s.ActiveRefreshTimer != own);
                static_cast<QDialog *>(w)->reject();
            });
        click("btnAdjustT");
        click("btnAdjustH");
        QTRY_VERIFY(d.done());
        met = d.met;
        QCOMPARE(s.ActiveRefreshTimer.data(), own);
    }
};
