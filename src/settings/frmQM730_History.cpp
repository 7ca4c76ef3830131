#include "frmQM730_History.h"
#include "RecordFiles.h"
#include "ConsoleState.h"
#include "ScreenContext.h"
#include "ConsoleMessages.h"
#include <QAction>
#include <QContextMenuEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>
#include <algorithm>

namespace {

QTableWidget *makeTable(QWidget *parent, const char *name, const QStringList &titles)
{
    auto *t = new QTableWidget(0, int(titles.size()), parent);
    t->setObjectName(QLatin1String(name));
    t->setHorizontalHeaderLabels(titles);
    t->setEditTriggers(QAbstractItemView::NoEditTriggers);
    t->setSelectionBehavior(QAbstractItemView::SelectRows);
    t->horizontalHeader()->setStretchLastSection(true);
    return t;
}

QTableWidgetItem *cell(const QString &text)
{
    return new QTableWidgetItem(text);
}

} // namespace

frmQM730_History::frmQM730_History(ScreenContext &context, QWidget *parent)
    : QDialog(parent), m_home(context.state.home)
{
    setObjectName(QStringLiteral("frmQM730_History"));
    setWindowTitle(QStringLiteral("歷史資料"));

    sprdList = makeTable(this, "sprdList", {QStringLiteral("機號")});
    sprdList->setSelectionMode(QAbstractItemView::SingleSelection);
    sprdList->setMaximumWidth(140);
    sprdHistory = makeTable(this, "sprdHistory", {QStringLiteral("日期/時間"), QStringLiteral("說明")});
    sprdHistory->setSelectionMode(QAbstractItemView::ExtendedSelection);
    sprdHistory->setColumnWidth(0, 160);
    sprdHistory->viewport()->installEventFilter(this);

    lblMC_No = new QLabel(this);
    lblMC_No->setObjectName(QStringLiteral("lblMC_No"));
    lblNo = new QLabel(this);
    lblNo->setObjectName(QStringLiteral("lblNo"));
    lblFName = new QLabel(this);
    lblFName->setObjectName(QStringLiteral("lblFName"));

    mEdit = new QMenu(this);
    mEdit->setObjectName(QStringLiteral("mEdit"));
    mEditDel = mEdit->addAction(QStringLiteral("刪除"));
    mEditDel->setObjectName(QStringLiteral("mEditDel"));

    btnDelAll = new QPushButton(QStringLiteral("全部刪除"), this);
    btnDelAll->setObjectName(QStringLiteral("btnDelAll"));
    btnClose = new QPushButton(QStringLiteral("關閉"), this);
    btnClose->setObjectName(QStringLiteral("btnClose"));

    auto *info = new QHBoxLayout;
    info->addWidget(new QLabel(QStringLiteral("機號 :"), this));
    info->addWidget(lblMC_No);
    info->addWidget(lblNo);
    info->addSpacing(16);
    info->addWidget(lblFName, 1);
    auto *tables = new QHBoxLayout;
    tables->addWidget(sprdList);
    tables->addWidget(sprdHistory, 1);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(btnDelAll);
    buttons->addWidget(btnClose);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(info);
    layout->addLayout(tables, 1);
    layout->addLayout(buttons);
    resize(640, 480);

    connect(sprdList, &QTableWidget::cellClicked, this, [this](int row, int) { selectMachine(row); });
    connect(mEditDel, &QAction::triggered, this, &frmQM730_History::mEditDel_Click);
    connect(btnDelAll, &QPushButton::clicked, this, &frmQM730_History::btnDelAll_Click);
    connect(btnClose, &QPushButton::clicked, this, &QDialog::reject);

    // Files of machines no longer in the list are shown too: the folder decides.
    const QStringList files = listHistoryFiles(m_home);
    sprdList->setRowCount(int(files.size()));
    for (int i = 0; i < files.size(); ++i)
        sprdList->setItem(i, 0, cell(files[i].mid(1, 3)));
    if (!files.isEmpty())
        selectMachine(0);
}

void frmQM730_History::selectMachine(int listRow)
{
    if (listRow < 0 || listRow >= sprdList->rowCount())
        return;
    sprdList->selectRow(listRow);
    const QString number = sprdList->item(listRow, 0)->text();
    lblMC_No->setText(QString::number(number.toInt()));
    lblNo->setText(number);
    lblFName->setText(QStringLiteral("\\ActionHistory\\H") + number + QStringLiteral(".USE"));
    loadFile();
}

void frmQM730_History::loadFile()
{
    sprdHistory->setRowCount(0);
    // The file is always built again from the number.
    const auto rows = loadHistory(eventFilePath(m_home, lblNo->text()));
    if (!rows)
        return;
    sprdHistory->setRowCount(int(rows->size()));
    for (int i = 0; i < rows->size(); ++i) {
        sprdHistory->setItem(i, 0, cell(rows->at(i).when));
        sprdHistory->setItem(i, 1, cell(rows->at(i).text));
    }
}

void frmQM730_History::rewriteFile()
{
    if (lblNo->text().isEmpty())
        return;
    QVector<HistoryRow> rows;
    for (int r = 0; r < sprdHistory->rowCount(); ++r) {
        const auto *a = sprdHistory->item(r, 0);
        const auto *b = sprdHistory->item(r, 1);
        rows.push_back({a ? a->text() : QString(), b ? b->text() : QString()});
    }
    rewriteHistory(eventFilePath(m_home, lblNo->text()), rows);
}

bool frmQM730_History::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == sprdHistory->viewport() && event->type() == QEvent::ContextMenu) {
        auto *e = static_cast<QContextMenuEvent *>(event);
        const int row = sprdHistory->rowAt(e->pos().y());
        if (row >= 0 && sprdHistory->selectionModel()->isRowSelected(row, QModelIndex()))
            mEdit->popup(e->globalPos());
        return true;
    }
    return QDialog::eventFilter(watched, event);
}

void frmQM730_History::mEditDel_Click()
{
    QList<int> rows;
    for (const QModelIndex &i : sprdHistory->selectionModel()->selectedRows())
        rows << i.row();
    if (rows.isEmpty() || !askConsoleYesNo(this, QStringLiteral("刪除?"), QStringLiteral("確認")))
        return;
    std::sort(rows.begin(), rows.end(), std::greater<int>());
    for (int r : rows)
        sprdHistory->removeRow(r);
    rewriteFile();
}

void frmQM730_History::btnDelAll_Click()
{
    if (!askConsoleYesNo(this, QStringLiteral("刪除?"), QStringLiteral("確認")))
        return;
    sprdHistory->setRowCount(0);
    rewriteFile();
}
