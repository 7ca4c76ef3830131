// Operator actions of the single-chamber console and what they leave in the
// mailbox; the edit flags that keep the refresh off a field.
#include "RunFixture.h"
#include "ShellOpen.h"
#include "SaveSettings.h"
#include "frmQM730_Set_DSave.h"
#include <QComboBox>
#include <QTableWidget>
#include <QMessageBox>
#include <QTimer>

class TestRunCommands : public QObject {
    Q_OBJECT
private slots:
    // Each field's row and encoding; the protocols' addresses are the link's (tests/link).
    void fieldsPostTheirWords_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("value");
        QTest::addColumn<int>("row");
        QTest::addColumn<int>("word");
        QTest::newRow("TSV") << "txtTSV" << "25.5" << 12 << 12550; // (25.5 + 100) x 100
        QTest::newRow("TSV half even") << "txtTSV" << "-12.345" << 12 << 8766;
        QTest::newRow("temp-only SV") << "txtTOnly_Ctrl_SV" << "40" << 12 << 14000;
        QTest::newRow("HSV") << "txtHSV" << "60" << 13 << 600;
        QTest::newRow("HSV half even") << "txtHSV" << "55.25" << 13 << 552;
        QTest::newRow("PID T") << "txtPID_T" << "5" << 6 << 5;
        QTest::newRow("PID H") << "txtPID_H" << "16" << 7 << 16;
        QTest::newRow("pattern") << "txtS_PTN" << "12" << 8 << 12;
        QTest::newRow("temp-only pattern") << "txtTOnly_Ctrl_PTN" << "3" << 8 << 3;
        QTest::newRow("segment") << "txtS_SEG" << "99" << 9 << 99;
        QTest::newRow("temp-only segment") << "txtTOnly_Ctrl_SEG" << "4" << 9 << 4;
    }

    void fieldsPostTheirWords()
    {
        QFETCH(QString, field);
        QFETCH(QString, value);
        QFETCH(int, row);
        QFETCH(int, word);
        RunBench b;
        b.open();
        b.enter(qPrintable(field), value);
        QCOMPARE(b.mail(), (QList<int>{101, row, word}));
    }

    void buttonsPostTheirWords()
    {
        RunBench b;
        b.open();
        // The run mode is a row of the UP block.
        const std::tuple<const char *, int, QList<int>> presses[] = {
            {"btnRun", -1, {101, 1, 1}}, {"btnStop", -1, {101, 1, 0}}, {"btnRunMode", 1, {102, 1, 1}}, {"btnRunMode", 0, {102, 1, 0}}};
        for (const auto &[name, index, mail] : presses) {
            b.click(name, index);
            QCOMPARE(b.mail(), mail);
        }
    }

    void togglesFollowTheLitButton()
    {
        RunBench b;
        b.rcv(Rcv::RunMode, 0);
        b.rrp(Rrp::Run, 1);
        b.open();
        const std::pair<const char *, int> toggles[] = {{"btnStep", 2}, {"btnHold", 3}, {"btnTAT", 4}, {"btnHAT", 5}};
        for (const auto &[name, row] : toggles) {
            // Pressed twice within a second: the same word both times, even when
            // the poll has already brought the new state into the table.
            b.click(name);
            QCOMPARE(b.mail(), (QList<int>{101, row, 1}));
            b.rrp(row, 1);
            b.state.ReqCmd = 0;
            b.click(name);
            QCOMPARE(b.mail(), (QList<int>{101, row, 1}));
        }
        b.tick();
        for (const auto &[name, row] : toggles) {
            QVERIFY2(b.lit(name), name);
            b.click(name);
            QCOMPARE(b.mail(), (QList<int>{101, row, 0}));
        }
    }

    void editedFieldIsLeftAloneUntilEnter()
    {
        RunBench b;
        frmQM730_RunSimple &form = b.open();
        form.show();
        QVERIFY(QTest::qWaitForWindowActive(&form));
        auto *tsv = b.find<QLineEdit>("txtTSV");
        tsv->setFocus();
        tsv->selectAll();
        QTest::keyClicks(tsv, QStringLiteral("300"));
        QVERIFY(form.editFlag(frmQM730_RunSimple::TSV));
        b.rrp(Rrp::TempTargetSV, 13000);
        b.tick();
        QCOMPARE(tsv->text(), QStringLiteral("300"));
        QCOMPARE(b.text("lblSV_T"), QStringLiteral("30.00")); // the rest of the screen goes on

        // Leaving clamps, and the flag stays up: the field stays frozen.
        b.find<QLineEdit>("txtHSV")->setFocus();
        QTRY_COMPARE(tsv->text(), QStringLiteral("200"));
        QVERIFY(form.editFlag(frmQM730_RunSimple::TSV));
        b.tick();
        QCOMPARE(tsv->text(), QStringLiteral("200"));
        QVERIFY2(!(b.state.ReqCmd == 101 && b.state.ReqIndex == Rrp::TempTargetSV), "leaving must not send");

        // Enter sends the value and gives the field back to the refresh.
        QTest::keyClick(tsv, Qt::Key_Return);
        QCOMPARE(b.mail(), (QList<int>{101, 12, 30000}));
        QVERIFY(!form.editFlag(frmQM730_RunSimple::TSV));
        b.tick();
        QCOMPARE(tsv->text(), QStringLiteral("30.00"));
    }

    void leavingClampsByTheTable_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("kept");
        QTest::newRow("TSV low") << "txtTSV" << "-150" << "-100";
        QTest::newRow("TSV inside") << "txtTSV" << "-99.5" << "-99.5";
        QTest::newRow("temp-only SV high") << "txtTOnly_Ctrl_SV" << "250" << "200";
        QTest::newRow("HSV high") << "txtHSV" << "100.1" << "100";
        QTest::newRow("HSV low") << "txtHSV" << "-1" << "0";
        QTest::newRow("PID low") << "txtPID_T" << "0" << "1";
        QTest::newRow("PID high") << "txtPID_H" << "17" << "16";
        QTest::newRow("pattern above the pattern count") << "txtS_PTN" << "101" << "100";
        QTest::newRow("segment low") << "txtTOnly_Ctrl_SEG" << "0" << "1";
        QTest::newRow("graph interval") << "txtGrpInterval" << "0" << "1";
    }

    void leavingClampsByTheTable()
    {
        QFETCH(QString, field);
        QFETCH(QString, typed);
        QFETCH(QString, kept);
        RunBench b; // firmware 2.3: 100 patterns
        b.open();
        auto *e = b.find<QLineEdit>(qPrintable(field));
        e->setText(typed);
        QFocusEvent leave(QEvent::FocusOut, Qt::TabFocusReason);
        QApplication::sendEvent(e, &leave);
        QCOMPARE(e->text(), kept);
    }

    void patternNameIsAskedOncePerPattern()
    {
        RunBench b;
        b.state.image.sprdTD.setText(1, 12 + 11, QStringLiteral("高溫測試"));
        b.rrp(Rrp::StartPattern, 12);
        frmQM730_RunSimple &form = b.open();
        QCOMPARE(b.mail(), (QList<int>{4, 12 + 11, 0})); // the pattern's name row
        QCOMPARE(form.LastPatternAsked(), 12);
        QCOMPARE(b.text("lblPTN_Name"), QStringLiteral("高溫測試"));

        b.state.ReqCmd = 0;
        b.tick();
        QCOMPARE(b.state.ReqCmd, 0);

        // A running pattern takes the place of the start pattern; Modbus asks with its own code.
        b.state.CommProtocol = QStringLiteral("Modbus RTU");
        b.rcv(Rcv::RunPattern, 30);
        b.tick();
        QCOMPARE(b.mail(), (QList<int>{9003, 30 + 11, 0})); // the block of names 21 to 30
    }

    void saveSettingsDialogRefreshesTheTable()
    {
        RunBench b;
        frmQM730_RunSimple &form = b.open();
        auto *table = b.find<QTableWidget>("sprdSaveCFG");
        auto row = [table] {
            QStringList cells;
            for (int c = 0; c < table->columnCount(); ++c)
                cells << table->item(0, c)->text();
            return cells;
        };
        QCOMPARE(row().first(), QStringLiteral("No"));

        b.click("btnMdyCFG");
        auto *dlg = form.findChild<frmQM730_Set_DSave *>();
        QVERIFY(dlg && dlg->isVisible());
        QCOMPARE(dlg->callWin(), QStringLiteral("frmQM730_RunSimple"));
        const QString folder = b.home.filePath(QStringLiteral("data"));
        dlg->findChild<QComboBox *>(QStringLiteral("cmbSave"))->setCurrentText(QStringLiteral("Yes"));
        dlg->findChild<QLineEdit *>(QStringLiteral("txtSaveInterval"))->setText(QStringLiteral("15"));
        dlg->findChild<QComboBox *>(QStringLiteral("cmbUnit"))->setCurrentText(QStringLiteral("sec"));
        dlg->findChild<QLabel *>(QStringLiteral("lblFolder"))->setText(folder);
        dlg->findChild<QLineEdit *>(QStringLiteral("txtFName"))->setText(QStringLiteral("OVEN"));
        QTest::mouseClick(dlg->findChild<QPushButton *>(QStringLiteral("btnOK")), Qt::LeftButton);

        // The saved dialog starts tmrRefresh_CFG, which redraws once and stops.
        auto *refresh = form.findChild<QTimer *>(QStringLiteral("tmrRefresh_CFG"));
        QVERIFY(refresh->isActive());
        QTRY_COMPARE(row(), (QStringList{"Yes", "15", "sec", folder, "OVEN"}));
        QVERIFY(!refresh->isActive());
    }

    void graphViewerFromTheProgramsFolder()
    {
        RunBench b;
        QStringList started;
        setShellOpenHandler([&started](const QString &target, bool program) {
            started << (program ? "run " : "open ") + target;
            return true;
        });
        frmQM730_RunSimple &form = b.open();
        // Missing: the operator is told, nothing is started.
        b.click("btnGrpView");
        auto *notice = form.findChild<QMessageBox *>();
        QVERIFY(notice && notice->isVisible() && notice->text().contains(QStringLiteral("QM730_GView.exe")));
        notice->close();
        delete notice;
        QVERIFY(started.isEmpty());
        QFile viewer(b.home.filePath(QStringLiteral("QM730_GView.exe")));
        QVERIFY(viewer.open(QIODevice::WriteOnly));
        viewer.close();
        b.click("btnGrpView");
        setShellOpenHandler({});
        QCOMPARE(started, QStringList{"run " + viewer.fileName()});
        QVERIFY(!form.findChild<QMessageBox *>());
    }

    void loadAndUnload()
    {
        RunBench b;
        QVERIFY(!b.state.SingleConsoleOpen);
        frmQM730_RunSimple &form = b.open();
        QVERIFY(b.state.SingleConsoleOpen);
        QCOMPARE(form.windowTitle(), QStringLiteral("單機操作"));
        QCOMPARE(form.SlotIndex(), 0);
        // Its refresh timer holds the refresh while open and stops after one run.
        auto *own = form.findChild<QTimer *>(QStringLiteral("tmrRefresh"));
        QCOMPARE(b.state.ActiveRefreshTimer.data(), own);
        b.state.startActiveRefresh();
        QVERIFY(own->isActive());
        form.tmrRefresh_Timer();
        QVERIFY(!own->isActive());
        form.reject();
        QVERIFY(!b.state.SingleConsoleOpen);
        QVERIFY(!form.findChild<QTimer *>(QStringLiteral("tmrDisp"))->isActive());
    }
};

QTEST_MAIN(TestRunCommands)
#include "tst_commands.moc"
