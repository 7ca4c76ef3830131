// The sheet model: only what changed reaches the view, in one signal a row.
#include "SheetModel.h"
#include <QSignalSpy>
#include <QTest>

class TestSheet : public QObject {
    Q_OBJECT
private slots:
    void flushReportsTheChangedCellsOfEachRow()
    {
        SheetModel m(5);
        m.setRowCount(4);
        QSignalSpy changed(&m, &QAbstractItemModel::dataChanged);
        m.setText(2, 4, QStringLiteral("a"));
        m.setBack(2, 2, Qt::green);
        m.setFore(4, 5, Qt::white);
        m.setToolTip(1, 1, QString()); // no change
        m.setText(9, 1, QStringLiteral("outside")); // ignored
        QCOMPARE(changed.count(), 0);
        m.flush();
        QCOMPARE(changed.count(), 2);
        QCOMPARE(changed[0][0].toModelIndex(), m.index(1, 1));
        QCOMPARE(changed[0][1].toModelIndex(), m.index(1, 3));
        QCOMPARE(changed[1][0].toModelIndex(), m.index(3, 4));

        // The same values again: nothing to repaint.
        changed.clear();
        m.setText(2, 4, QStringLiteral("a"));
        m.setBack(2, 2, Qt::green);
        m.flush();
        QCOMPARE(changed.count(), 0);

        QCOMPARE(m.data(m.index(1, 3)).toString(), QStringLiteral("a"));
        QCOMPARE(m.data(m.index(1, 1), Qt::BackgroundRole).value<QColor>(), QColor(Qt::green));
        QVERIFY(!m.data(m.index(0, 0), Qt::BackgroundRole).isValid()); // the view's own
        QCOMPARE(m.cell(9, 1).text, QString());
    }

    void newShapeStartsEmpty()
    {
        SheetModel m(3);
        m.setRowCount(2);
        m.setText(1, 1, QStringLiteral("x"));
        m.setRowHeads({QStringLiteral("7")});
        QSignalSpy reset(&m, &QAbstractItemModel::modelReset);
        m.setRowCount(3);
        QCOMPARE(reset.count(), 1);
        QCOMPARE(m.rowCount(), 3);
        QCOMPARE(m.cell(1, 1).text, QString());
        QCOMPARE(m.headerData(0, Qt::Vertical).toString(), QStringLiteral("7"));
        QCOMPARE(m.headerData(2, Qt::Vertical).toString(), QStringLiteral("3"));
    }
};

QTEST_MAIN(TestSheet)
#include "tst_sheet.moc"
