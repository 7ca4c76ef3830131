#pragma once
// A page over a bench whose foreground machine has a given firmware and
// protocol: the image rows it shows, the mailbox it fills, and its controls
// used as the operator uses them.
#include "CellEdit.h"
#include "ScreenBench.h"
#include "Widgets.h"
#include <QLineEdit>
#include <QTemporaryDir>
#include <QtTest>
#include <memory>

struct PageFixture {
    QTemporaryDir dir;
    ScreenBench bench{dir.path()};
    ConsoleState &s = bench.state;

    explicit PageFixture(double firmware = 2.31, const QString &protocol = QStringLiteral("PC Link"))
    {
        s.CurrentMachine = 1;
        s.CommProtocol = protocol;
        s.image.applyFirmware(firmware);
        s.image.setTempDecimals(1);
    }

    template <class Page>
    std::unique_ptr<Page> open()
    {
        auto page = std::make_unique<Page>(bench.ctx);
        page->show();
        if (!QTest::qWaitForWindowExposed(page.get()))
            qFatal("the page was not shown");
        return page;
    }
    // The controller's reply is in: the page reloads from the image.
    void refresh()
    {
        QTimer *timer = s.ActiveRefreshTimer.data();
        QVERIFY(timer);
        s.startActiveRefresh();
        QTRY_VERIFY(!timer->isActive()); // its tick has reloaded the page
    }

    void up(int row, qint64 word) { s.image.sprdUP.setNumber(1, row, word); }
    QString cell(int row) const { return s.image.sprdUP.text(1, row); }
    // Code, address and word of the mailbox.
    QList<int> mail() const { return {s.ReqCmd, s.ReqIndex, (quint8(s.ReqData[0]) << 8) | quint8(s.ReqData[1])}; }
    void clearMail() { s.ReqCmd = 0; s.ReqIndex = 0; }

    static void enter(QLineEdit *e, const QString &text)
    {
        e->setFocus();
        e->selectAll();
        typeText(e, text);
        QTest::keyClick(e, Qt::Key_Return);
    }
};
