#pragma once
#include "ConsoleCore.h"
#include "ModalDriver.h"
#include "Pty.h"
#include "TestHome.h"
#include "Widgets.h"
#include "frmQM730_Main.h"
#include <QAction>
#include <QLabel>
#include <QMenu>
#include <QTableView>
#include <QtTest>
#include <memory>

// A started console with its main screen shown; prepare writes settings files first.
struct MainFixture {
    TestHome home;
    std::unique_ptr<ConsoleCore> core;
    std::unique_ptr<frmQM730_Main> window;

    explicit MainFixture(const std::function<void(TestHome &)> &prepare = {},
                         ScreenRegistry screens = ScreenRegistry::console())
    {
        if (prepare)
            prepare(home);
        core = std::make_unique<ConsoleCore>(home.path());
        if (core->start() != ConsoleCore::StartResult::Ok)
            qFatal("console did not start");
        window = std::make_unique<frmQM730_Main>(*core, std::move(screens));
        window->show();
        if (!QTest::qWaitForWindowExposed(window.get()))
            qFatal("main screen not shown");
    }
    ~MainFixture() { window.reset(); }

    ConsoleState &state() { return core->state(); }
    QAction *item(const QString &name) { return window->findChild<QAction *>(name); }
    QMenu *menu(const QString &name) { return window->findChild<QMenu *>(name); }
    template <class T = QWidget> T *widget(const QString &name) { return window->findChild<T *>(name); }
    QPushButton *button(int index) { return indexed<QPushButton>(*window, "btnMenu", index); }
    // The button's own flag: the system buttons sit on picSys, which the lock disables.
    bool buttonEnabled(int i) { return button(i)->isEnabledTo(button(i)->parentWidget()); }
    QString panel(int n) { return widget<QLabel>(QStringLiteral("Panel%1").arg(n))->text(); }
    void clickMachineRow(int row)
    {
        auto *view = widget<QTableView>(QStringLiteral("sprdStatus"));
        const QRect r = view->visualRect(view->model()->index(row - 1, 1));
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, r.center());
    }
};
