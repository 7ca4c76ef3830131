#pragma once
#include "ScreenRegistry.h"
#include <QHash>
#include <QMainWindow>
#include <QTimer>
#include <QVector>
#include <functional>

class ActivityLamp;
class CommMonitor;
class ConsoleCore;
class QAbstractButton;
class QAction;
class QButtonGroup;
class QLabel;
class QMenu;
class QModelIndex;
class QPushButton;
class QTableView;
class TextTableModel;

// The main screen: menu, the row of btnMenu buttons, the machine table
// sprdStatus, the status bar, the activity lamps and the communication view.
// It owns no link logic: it drives ConsoleCore and follows the link's signals.
//
// Every other screen is opened modally from here, through the registry of
// screens (what happens before each opens, and how); a screen that is not
// built yet is chosen without effect.
class frmQM730_Main : public QMainWindow {
    Q_OBJECT
public:
    explicit frmQM730_Main(ConsoleCore &core, ScreenRegistry screens = ScreenRegistry::console(),
                           QWidget *parent = nullptr);
    ~frmQM730_Main() override;

    ConsoleCore &core() { return m_core; }
    // A menu item by its name ("mOnlinePortOpen", "mSysSensor").
    QAction *menuItem(const QString &name) const { return m_items.value(name); }
    QPushButton *menuButton(int index) const { return m_buttons.value(index); }

protected:
    void closeEvent(QCloseEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void buildMenu();
    QWidget *buildButtons();
    QWidget *buildSidePanel();
    void buildStatusBar();
    void connectLink();

    void chooseItem(const QString &name);
    void mOnlinePortOpen_Click();
    void portStateChanged(bool open);
    void applyOnlineMenus(bool anyOnline);
    void sprdStatus_Click(const QModelIndex &index);
    void optPTN_Data_Click(int index);
    void mSysLock_Click();
    void mHelpLock_Click();
    void openBesideProgram(const QString &relative, bool program);
    void showScanMessage(bool visible);
    void placeScanMessage();
    void refreshMachineTable();
    // Multi or single mode: the multi-chamber console is offered in multi mode only.
    void showMonitorMode();
    void lightLamp(ActivityLamp *lamp, QTimer &timer, int color);

    ConsoleCore &m_core;
    ScreenRegistry m_screens;
    QHash<QString, QAction *> m_items;
    QHash<QString, QMenu *> m_menus;
    QVector<QPushButton *> m_buttons;

    QTableView *sprdStatus;
    TextTableModel *m_statusModel;
    QLabel *lblMC_No;
    QLabel *lblMsg_STS;
    QButtonGroup *optPTN_Data;
    QPushButton *btnCheckPass;
    QWidget *picSys;
    ActivityLamp *shpSend;
    ActivityLamp *shpRecv;
    QLabel *Label1;
    QLabel *Label2;
    CommMonitor *picCommData;
    QLabel *m_panels[7] = {};

    QTimer tmrBall_Send;
    QTimer tmrBall_Recv;
};
