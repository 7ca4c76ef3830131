#include "CommMonitor.h"
#include "ConsoleState.h"
#include "TextTableModel.h"
#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QScrollBar>
#include <QTableView>
#include <QVBoxLayout>

// ---------------------------------------------------------------- the monitor

void CommMonitorModel::comm_log_add(const QString &label, const QByteArray &bytes)
{
    if (m_rows.size() >= MaxRows) {
        beginResetModel();
        m_rows.clear();
        m_cols = 1;
        endResetModel();
    }
    const int neededCols = int(bytes.size()) + 1;
    if (neededCols > m_cols) {
        beginInsertColumns({}, m_cols, neededCols - 1);
        m_cols = neededCols;
        endInsertColumns();
    }
    const int row = int(m_rows.size());
    beginInsertRows({}, row, row);
    m_rows.append(Row{label == QStringLiteral("接收"), label, bytes});
    endInsertRows();
}

void CommMonitorModel::clear()
{
    beginResetModel();
    m_rows.clear();
    m_cols = 1;
    endResetModel();
}

int CommMonitorModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

int CommMonitorModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_cols;
}

QVariant CommMonitorModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_rows.size())
        return {};
    const Row &r = m_rows[index.row()];
    const int col = index.column();
    const bool byteCell = col >= 1 && col <= r.bytes.size();
    switch (role) {
    case Qt::DisplayRole:
        if (col == 0)
            return r.label;
        if (byteCell) {
            static const char hex[] = "0123456789ABCDEF";
            const auto b = quint8(r.bytes[col - 1]);
            const QChar text[2] = {QLatin1Char(hex[b >> 4]), QLatin1Char(hex[b & 15])};
            return QString(text, 2);
        }
        return QString();
    case Qt::BackgroundRole:
        if (r.received && byteCell)
            return QColor(0xC0, 0xFF, 0xC0);
        return {};
    case Qt::TextAlignmentRole:
        return int(Qt::AlignCenter);
    default:
        return {};
    }
}

QVariant CommMonitorModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole)
        return {};
    if (orientation == Qt::Horizontal)
        return section == 0 ? QString() : QString::number(section);
    return QString::number(section + 1);
}

// ---------------------------------------------------------------- the panel

CommMonitor::CommMonitor(ConsoleState &state, QWidget *parent) : QWidget(parent), m_st(state)
{
    setObjectName(QStringLiteral("picCommData"));

    m_monitor = new CommMonitorModel(this);
    sprdComm = new QTableView(this);
    sprdComm->setObjectName(QStringLiteral("sprdComm"));
    sprdComm->setModel(m_monitor);
    sprdComm->setEditTriggers(QAbstractItemView::NoEditTriggers);
    sprdComm->setWordWrap(false);
    // Fixed small cells: sizing columns to their contents would visit every
    // byte of a 76814-byte row.
    sprdComm->horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    sprdComm->horizontalHeader()->setDefaultSectionSize(28);
    sprdComm->horizontalHeader()->setMinimumSectionSize(20);
    sprdComm->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    sprdComm->verticalHeader()->setDefaultSectionSize(20);
    sprdComm->setColumnWidth(0, 44);

    m_counters = new TextTableModel(m_st.sprdCommState,
                                    {QStringLiteral("良好"), QStringLiteral("不良"), QStringLiteral("逾時"),
                                     QStringLiteral("CRC")},
                                    this);
    sprdCommState = new QTableView(this);
    sprdCommState->setObjectName(QStringLiteral("sprdCommState"));
    sprdCommState->setModel(m_counters);
    sprdCommState->setEditTriggers(QAbstractItemView::NoEditTriggers);
    sprdCommState->horizontalHeader()->setDefaultSectionSize(56);
    sprdCommState->verticalHeader()->setDefaultSectionSize(20);

    btnCountClear = new QPushButton(QStringLiteral("計數清除"), this);
    btnCountClear->setObjectName(QStringLiteral("btnCountClear"));
    connect(btnCountClear, &QPushButton::clicked, this, &CommMonitor::btnCountClear_Click);

    auto *right = new QVBoxLayout;
    right->addWidget(sprdCommState, 1);
    right->addWidget(btnCountClear);
    auto *top = new QHBoxLayout(this);
    top->setContentsMargins(0, 0, 0, 0);
    top->addWidget(sprdComm, 3);
    top->addLayout(right, 1);

    m_counterTimer.setInterval(250);
    connect(&m_counterTimer, &QTimer::timeout, this, &CommMonitor::refreshCounters);
    // The view follows new frames while it stands at the end, and keeps its
    // place once the user has scrolled up. Where it stands is taken before the
    // rows come, while the scroll range still matches the rows shown.
    connect(m_monitor, &QAbstractItemModel::rowsAboutToBeInserted, this, [this] {
        if (sprdComm->isVisible())
            m_followNewest = atEnd();
    });
    connect(m_monitor, &QAbstractItemModel::rowsInserted, this, [this] {
        if (m_followNewest && sprdComm->isVisible())
            sprdComm->scrollToBottom();
    });
}

bool CommMonitor::atEnd() const
{
    const QScrollBar *bar = sprdComm->verticalScrollBar();
    return bar->value() >= bar->maximum();
}

void CommMonitor::comm_log_add(const QString &label, const QByteArray &bytes)
{
    m_monitor->comm_log_add(label, bytes);
}

void CommMonitor::refreshCounters()
{
    m_counters->refresh();
}

void CommMonitor::btnCountClear_Click()
{
    m_st.sprdCommState.clearCells();
    refreshCounters();
}

void CommMonitor::showEvent(QShowEvent *event)
{
    refreshCounters();
    m_counterTimer.start();
    QWidget::showEvent(event);
    // Frames that came while the panel was hidden: a view that stood at the
    // end shows the newest.
    if (m_followNewest)
        QTimer::singleShot(0, sprdComm, [this] { sprdComm->scrollToBottom(); });
}

void CommMonitor::hideEvent(QHideEvent *event)
{
    m_counterTimer.stop();
    QWidget::hideEvent(event);
}
