#include "SaveSettingsPanel.h"
#include "Recorder.h"
#include "RunLogger.h"
#include "ScreenContext.h"
#include "ScreenLayout.h"
#include "frmQM730_Set_DSave.h"
#include <QDialog>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QTableWidget>
#include <QTimer>

SaveSettingsPanel::SaveSettingsPanel(ScreenContext &context, QDialog *screen, QTimer &tmrRefresh_CFG)
    : QGroupBox(QStringLiteral("數據儲存")), m_ctx(context), m_screen(screen), m_refresh(tmrRefresh_CFG)
{
    m_row = new QHBoxLayout(this);
    sprdSaveCFG = named(new QTableWidget(1, 5), QStringLiteral("sprdSaveCFG"));
    sprdSaveCFG->setHorizontalHeaderLabels({QStringLiteral("儲存"), QStringLiteral("記錄間隔"), QStringLiteral("單位"),
                                            QStringLiteral("儲存路徑"), QStringLiteral("檔案名稱")});
    sprdSaveCFG->verticalHeader()->hide();
    sprdSaveCFG->setEditTriggers(QAbstractItemView::NoEditTriggers);
    sprdSaveCFG->setSelectionMode(QAbstractItemView::NoSelection);
    sprdSaveCFG->setFocusPolicy(Qt::NoFocus);
    sprdSaveCFG->horizontalHeader()->setSectionResizeMode(3, QHeaderView::Stretch);
    sprdSaveCFG->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    sprdSaveCFG->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    sprdSaveCFG->setFixedHeight(sprdSaveCFG->horizontalHeader()->sizeHint().height() + sprdSaveCFG->rowHeight(0) + 4);
    for (int c = 0; c < 5; ++c)
        sprdSaveCFG->setItem(0, c, new QTableWidgetItem);
    m_row->addWidget(sprdSaveCFG, 1);
    btnMdyCFG = named(new QPushButton(QStringLiteral("變更")), QStringLiteral("btnMdyCFG"));
    m_row->addWidget(btnMdyCFG);
    connect(btnMdyCFG, &QPushButton::clicked, this, &SaveSettingsPanel::openSettings);

    m_refresh.setObjectName(QStringLiteral("tmrRefresh_CFG"));
    m_refresh.setInterval(50);
    connect(&m_refresh, &QTimer::timeout, this, &SaveSettingsPanel::refreshTick);
}

void SaveSettingsPanel::fill()
{
    const SaveSettings &s = m_ctx.recorder.runLog().settings();
    const QString cells[] = {s.SaveEnable, QString::number(s.SaveInterval), s.SaveUnit, s.SaveFolder, s.SaveFileName};
    for (int c = 0; c < 5; ++c)
        sprdSaveCFG->item(0, c)->setText(cells[c]);
}

void SaveSettingsPanel::refreshTick()
{
    m_refresh.stop();
    fill();
}

void SaveSettingsPanel::openSettings()
{
    auto *dlg = new frmQM730_Set_DSave(m_ctx, m_screen);
    dlg->setAttribute(Qt::WA_DeleteOnClose);
    const QString name = m_screen->objectName();
    dlg->setCallWin(name);
    connect(dlg, &frmQM730_Set_DSave::saved, this, [this, name](const QString &callWin) {
        if (callWin == name)
            m_refresh.start();
    });
    // Modal without a nested event loop: the timers beneath keep their rhythm.
    dlg->setWindowModality(Qt::ApplicationModal);
    dlg->show();
}
