#include "MainFixture.h"
#include <QScrollBar>

namespace {
QString cell(QAbstractItemModel *m, int row, int col)
{
    return m->index(row, col).data().toString();
}
} // namespace

class CommMonitorTest : public QObject {
    Q_OBJECT
private slots:
    void frames()
    {
        MainFixture f;
        CommLink &link = f.core->link();
        QAbstractItemModel *m = f.widget<QTableView>("sprdComm")->model();
        link.comm_log_add(QStringLiteral("傳送"), QByteArray("\x02\x0a\xff", 3));
        link.comm_log_add(QStringLiteral("接收"), QByteArray("\x03\xc0", 2));
        QCOMPARE(QStringList({cell(m, 0, 0), cell(m, 0, 1), cell(m, 0, 2), cell(m, 0, 3)}),
                 QStringList({"傳送", "02", "0A", "FF"}));
        QCOMPARE(QStringList({cell(m, 1, 0), cell(m, 1, 2), cell(m, 1, 3)}), QStringList({"接收", "C0", ""}));
        // Only the data cells of a received row are light green.
        const QColor green(0xC0, 0xFF, 0xC0);
        QCOMPARE(m->index(1, 1).data(Qt::BackgroundRole).value<QColor>(), green);
        QCOMPARE(m->index(1, 2).data(Qt::BackgroundRole).value<QColor>(), green);
        for (const auto &[row, col] : {std::pair{1, 0}, {1, 3}, {0, 1}})
            QVERIFY(!m->index(row, col).data(Qt::BackgroundRole).isValid());

        // The frame that would be row 1001 empties the table and becomes row 1.
        for (int i = 2; i < 1000; ++i)
            link.comm_log_add(QStringLiteral("傳送"), QByteArray(1, char(i & 0x7F)));
        QCOMPARE(m->rowCount(), 1000);
        QCOMPARE(cell(m, 999, 1), QStringLiteral("67"));
        link.comm_log_add(QStringLiteral("接收"), QByteArray("\xAB\xCD", 2));
        QCOMPARE(m->rowCount(), 1);
        QCOMPARE(QStringList({cell(m, 0, 0), cell(m, 0, 1), cell(m, 0, 2)}), QStringList({"接收", "AB", "CD"}));

        // mHelpCommData shows and hides the view with its check mark.
        QVERIFY(!f.widget("picCommData")->isVisible());
        f.item("mHelpCommData")->trigger();
        QVERIFY(f.item("mHelpCommData")->isChecked() && f.widget("picCommData")->isVisible());
        // A screen capture's reply is one row of 76814 cells, drawn without harm.
        QByteArray reply(76814, '\x5A');
        reply[76813] = '\x0A';
        link.comm_log_add(QStringLiteral("接收"), reply);
        link.comm_log_add(QStringLiteral("傳送"), QByteArray("\x02", 1));
        auto *view = f.widget<QTableView>("sprdComm");
        view->scrollTo(m->index(1, 76814));
        view->grab();
        QCOMPARE(m->columnCount(), 76815);
        QCOMPARE(cell(m, 1, 76814), QStringLiteral("0A"));
        QVERIFY(cell(m, 2, 76814).isEmpty());
        f.item("mHelpCommData")->trigger();
        QVERIFY(!f.item("mHelpCommData")->isChecked() && !f.widget("picCommData")->isVisible());
    }

    void viewFollowsNewFramesUntilScrolledUp()
    {
        MainFixture f;
        f.item("mHelpCommData")->trigger();
        auto *view = f.widget<QTableView>("sprdComm");
        QScrollBar *bar = view->verticalScrollBar();
        auto frames = [&f](int n) {
            for (int i = 0; i < n; ++i)
                f.core->link().comm_log_add(QStringLiteral("傳送"), QByteArray(3, char(i)));
            QApplication::processEvents();
        };
        frames(200);
        QTRY_VERIFY(bar->maximum() > 20);
        QCOMPARE(bar->value(), bar->maximum());
        frames(3);
        QCOMPARE(bar->value(), bar->maximum()); // at the end: the newest frame stays in sight

        // One row up: the view keeps its place while frames come.
        bar->triggerAction(QAbstractSlider::SliderSingleStepSub);
        const int place = bar->value();
        QVERIFY(place < bar->maximum());
        frames(3);
        QCOMPARE(bar->value(), place);
        QVERIFY(bar->maximum() > place + 1);

        // Back at the end it follows again.
        bar->setValue(bar->maximum());
        frames(3);
        QCOMPARE(bar->value(), bar->maximum());

        // Frames that come while the view is hidden are in sight when it shows again.
        f.item("mHelpCommData")->trigger();
        frames(50);
        f.item("mHelpCommData")->trigger();
        QTRY_COMPARE(bar->value(), bar->maximum());
        QCOMPARE(view->rowAt(view->viewport()->height() - 2), view->model()->rowCount() - 1);
    }

    void counters()
    {
        MainFixture f([](TestHome &h) { h.machines({true, true}); });
        f.item("mHelpCommData")->trigger();
        QAbstractItemModel *m = f.widget<QTableView>("sprdCommState")->model();
        QCOMPARE(m->headerData(1, Qt::Vertical).toString(), QStringLiteral("2"));
        // Time-outs of the first slot; the port is closed, so nothing is resent.
        f.core->link().tmrRecvErr_Timer();
        QTRY_COMPARE(cell(m, 0, 2), QStringLiteral("1"));
        f.core->link().tmrRecvErr_Timer();
        QTRY_COMPARE(cell(m, 0, 2), QStringLiteral("2"));
        for (int col = 0; col < 4; ++col)
            QVERIFY(cell(m, 1, col).isEmpty() && (col == 2 || cell(m, 0, col).isEmpty()));

        QTest::mouseClick(f.widget<QPushButton>("btnCountClear"), Qt::LeftButton);
        QVERIFY(cell(m, 0, 2).isEmpty());
        QVERIFY(f.state().sprdCommState.text(3, 1).isEmpty());
        QCOMPARE(m->headerData(0, Qt::Vertical).toString(), QStringLiteral("1"));
    }
};

QTEST_MAIN(CommMonitorTest)
#include "tst_commmonitor.moc"
