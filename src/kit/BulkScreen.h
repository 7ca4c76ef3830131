#pragma once
#include "Requests.h"
#include <QObject>
#include <QWidget>
#include <initializer_list>

class QDialog;
class QHBoxLayout;
class QLabel;
class QPushButton;
struct ScreenContext;

// What the bulk transfer screens are built of.

// The progress cells: under the headings "參數" and "狀態", the rows "使用者",
// "文本", "程式組數", "程式段數" with their cells lblSTS 0 to 3 (the parameter
// block, the text rows, the patterns, the segments of the pattern in progress).
class BulkStatusGrid : public QWidget {
    Q_OBJECT
public:
    explicit BulkStatusGrid(QWidget *parent = nullptr);

    // Words a progress report of the link into its cell; a report that the
    // machine is silent leaves the cell as it is.
    void showProgress(const BulkProgress &progress);
    void clear();

private:
    QLabel *lblSTS[4];
};

// One bulk transfer as its screen runs it: started from a button, its
// progress worded into the grid, ended by the link, by the stop button or by
// the screen closing.
class BulkRun : public QObject {
    Q_OBJECT
public:
    // job: ParameterReceive or ParameterSend.
    BulkRun(ScreenContext &context, BulkJob job, BulkStatusGrid *grid, QObject *parent);

    // Empties the grid and starts the chain, with the programs or the
    // parameter block alone, unless the port is closed or no machine is in
    // the foreground: then the operator is told to open the port ("開啟通訊端口")
    // and false.
    bool start(QWidget *messageParent, bool withPrograms);
    // Ends the chain now; what was transferred stays.
    void stop();
    // The screen closes: a chain still running is ended, and nothing else is
    // posted (a scan or the poll goes on).
    void stopIfRunning();
    bool running() const { return m_running; }

signals:
    void runningChanged(bool running);

private:
    void setRunning(bool running);

    ScreenContext &m_ctx;
    BulkJob m_job;
    BulkStatusGrid *m_grid;
    bool m_running = false;
};

// The button row of a bulk screen: its buttons on the left, "關閉" (btnClose)
// on the right.
QHBoxLayout *bulkButtonRow(QDialog *dialog, std::initializer_list<QPushButton *> buttons);
