#pragma once
#include <QAbstractTableModel>
#include <QTimer>
#include <QVector>
#include <QWidget>

class ConsoleState;
class QPushButton;
class QTableView;
class TextTableModel;

// The frame monitor sprdComm: one row per frame, newest at the bottom;
// column 0 holds "傳送" or "接收", columns 1 on the frame's bytes as two
// upper-case hex digits. A received row's data cells are light green. At most
// 1000 rows: the frame that would be row 1001 empties the table first.
//
// Rows keep the frame bytes as they came and cells are formatted only when a
// view asks for them, so a screen reply of 76814 bytes costs one row.
class CommMonitorModel : public QAbstractTableModel {
    Q_OBJECT
public:
    static constexpr int MaxRows = 1000;
    static constexpr int ReceivedColor = 0xC0FFC0; // Windows colour value

    using QAbstractTableModel::QAbstractTableModel;

    void comm_log_add(const QString &label, const QByteArray &bytes);
    void clear();

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    struct Row {
        bool received = false;
        QString label;
        QByteArray bytes;
    };
    QVector<Row> m_rows;
    int m_cols = 1;
};

// picCommData: the monitor, the per-slot link counters sprdCommState and
// btnCountClear. The counters are repainted whenever they changed, checked
// a few times a second while the panel shows.
class CommMonitor : public QWidget {
    Q_OBJECT
public:
    explicit CommMonitor(ConsoleState &state, QWidget *parent = nullptr);

    CommMonitorModel *monitor() const { return m_monitor; }
    void comm_log_add(const QString &label, const QByteArray &bytes);
    // Repaints sprdCommState if it changed; a new machine list resets it.
    void refreshCounters();

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void btnCountClear_Click();
    bool atEnd() const;

    ConsoleState &m_st;
    CommMonitorModel *m_monitor;
    TextTableModel *m_counters;
    QTableView *sprdComm;
    QTableView *sprdCommState;
    QPushButton *btnCountClear;
    QTimer m_counterTimer;
    bool m_followNewest = true; // the view stood at the end when frames last came
};
