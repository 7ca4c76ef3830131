#include "BulkScreen.h"
#include "BulkTransfer.h"
#include "CommLink.h"
#include "ConsoleMessages.h"
#include "ScreenContext.h"
#include "ScreenLayout.h"
#include <QDialog>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

BulkStatusGrid::BulkStatusGrid(QWidget *parent) : QWidget(parent)
{
    auto *grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    auto heading = [this](const QString &text) {
        auto *l = new QLabel(text, this);
        l->setAlignment(Qt::AlignCenter);
        l->setFrameShape(QFrame::StyledPanel);
        return l;
    };
    grid->addWidget(heading(QStringLiteral("參數")), 0, 0);
    grid->addWidget(heading(QStringLiteral("狀態")), 0, 1);
    for (BulkTable t : {BulkTable::Parameters, BulkTable::Texts, BulkTable::Patterns, BulkTable::Segments}) {
        const int i = bulktransfer::statusCell(t);
        lblSTS[i] = valueBox(QStringLiteral("lblSTS"), 160);
        lblSTS[i]->setProperty("Index", i);
        lblSTS[i]->setAlignment(Qt::AlignCenter);
        grid->addWidget(caption(bulktransfer::rowLabel(t), this), i + 1, 0);
        grid->addWidget(lblSTS[i], i + 1, 1);
    }
    grid->setColumnStretch(1, 1);
}

void BulkStatusGrid::showProgress(const BulkProgress &progress)
{
    if (const auto text = bulktransfer::statusText(progress))
        setTextIfChanged(lblSTS[bulktransfer::statusCell(progress.table)], *text);
}

void BulkStatusGrid::clear()
{
    for (QLabel *l : lblSTS)
        l->clear();
}

BulkRun::BulkRun(ScreenContext &context, BulkJob job, BulkStatusGrid *grid, QObject *parent)
    : QObject(parent), m_ctx(context), m_job(job), m_grid(grid)
{
    connect(&context.link, &CommLink::bulkProgress, this, [this](const BulkProgress &p) {
        if (m_running && p.job == m_job)
            m_grid->showProgress(p);
    });
    connect(&context.link, &CommLink::bulkFinished, this, [this](BulkJob job) {
        if (m_running && job == m_job)
            setRunning(false);
    });
    // The link words its bulk progress for this screen.
    context.state.BulkFormName = bulkFormName(job);
}

void BulkRun::setRunning(bool running)
{
    m_running = running;
    emit runningChanged(running);
}

bool BulkRun::start(QWidget *messageParent, bool withPrograms)
{
    if (!m_ctx.link.isPortOpen() || m_ctx.state.CurrentMachine == 0) {
        showConsoleMessage(messageParent, QStringLiteral("開啟通訊端口"));
        return false;
    }
    m_grid->clear();
    setRunning(true);
    if (m_job == BulkJob::ParameterSend)
        m_ctx.requests().startParameterSend(withPrograms);
    else
        m_ctx.requests().startParameterReceive(withPrograms);
    return true;
}

void BulkRun::stop()
{
    setRunning(false);
    m_ctx.requests().stop();
}

void BulkRun::stopIfRunning()
{
    if (m_running)
        stop();
}

QHBoxLayout *bulkButtonRow(QDialog *dialog, std::initializer_list<QPushButton *> buttons)
{
    auto *row = new QHBoxLayout;
    for (QPushButton *b : buttons) {
        b->setMinimumSize(90, 32);
        row->addWidget(b);
    }
    row->addStretch();
    row->addWidget(closeButton(dialog));
    return row;
}
