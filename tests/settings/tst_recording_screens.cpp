// The recording screens on the offscreen platform, found by their control names.
#include "ConsoleState.h"
#include "Files.h"
#include "MailNotifier.h"
#include "ModalDriver.h"
#include "RecordFiles.h"
#include "RecordingFixture.h"
#include "ScreenBench.h"
#include "RunLogger.h"
#include "Widgets.h"
#include "frmQM730_History.h"
#include "frmQM730_Set_DSave.h"
#include "frmQM730_Set_EMail.h"
#include "frmSelectFolder.h"
#include "frmSys_AlarmCode.h"
#include "mdlADO.h"
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFileSystemModel>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTreeView>
#include <QtTest>

static void loseFocus(QWidget *w)
{
    QFocusEvent out(QEvent::FocusOut, Qt::TabFocusReason);
    QApplication::sendEvent(w, &out);
}

class TestScreens : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> m_dir;
    QString home;

    void writeHistory(const QString &name, const QByteArray &bytes)
    {
        QDir().mkpath(home + "/ActionHistory");
        QFile f(home + "/ActionHistory/" + name);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(bytes);
    }

    static QStringList column(QTableWidget *t, int col)
    {
        QStringList out;
        for (int r = 0; r < t->rowCount(); ++r)
            out << (t->item(r, col) ? t->item(r, col)->text() : QString());
        return out;
    }

private slots:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        home = m_dir->path();
    }

    void dataSaveClampsExamplesAndRefusals()
    {
        ScreenBench b(home, {1});
        RunLogger &logger = b.recorder.runLog();
        frmQM730_Set_DSave screen(b.ctx);
        QSignalSpy saved(&screen, &frmQM730_Set_DSave::saved);
        screen.show();
        // Without a file the screen shows the running values.
        QCOMPARE(child<QLabel>(screen, "lblFolder")->text(), programPath(home, "QM730_DATA"));
        auto *interval = child<QLineEdit>(screen, "txtSaveInterval");
        for (const auto &[typed, shown] : QList<QPair<QString, QString>>{
                 {"0", "1"}, {"61", "60"}, {"abc", "1"}, {"60", "60"}, {"0.5", "1"}, {"7", "7"}}) {
            interval->setText(typed);
            loseFocus(interval);
            QCOMPARE(interval->text(), shown);
        }

        auto *daily = child<QCheckBox>(screen, "chbDSaveF");
        auto *msg = child<QLabel>(screen, "lblMSG");
        auto *msg2 = child<QLabel>(screen, "lblMSG2");
        QVERIFY(daily->isChecked()); // default: one file per day
        QCOMPARE(msg->text(), QString("-. Meter = 1 :  C:\\QM730_Data\\QM730_001_YYYYMMDD.QM7"));
        daily->setChecked(false);
        QCOMPARE(msg->text(), QString("-. Meter = 1 :  C:\\QM730_Data\\QM730_001.QM7"));
        QCOMPARE(msg2->text(), QString("-. Meter = 999 :  C:\\QM730_Data\\QM730_999.QM7"));
        daily->setChecked(true);
        QCOMPARE(msg2->text(), QString("-. Meter = 999 :  C:\\QM730_Data\\QM730_999_YYYYMMDD.QM7"));

        // A missing folder or name is refused; Cancel keeps nothing.
        ModalDriver d;
        for (const auto &[folder, name] : {std::pair{"", "QM730"}, {"/data", ""}}) {
            child<QLabel>(screen, "lblFolder")->setText(folder);
            child<QLineEdit>(screen, "txtFName")->setText(name);
            d.box();
            child<QPushButton>(screen, "btnOK")->click();
            QVERIFY(screen.isVisible());
        }
        QCOMPARE(d.met, QStringList({"選擇儲存路徑", "錄入檔案名稱"}));
        child<QLineEdit>(screen, "txtFName")->setText("Changed");
        child<QPushButton>(screen, "btnCancel")->click();
        QCOMPARE(saved.count(), 0);
        QCOMPARE(logger.settings().SaveFileName, QString("QM730"));
        QVERIFY(!QFileInfo::exists(saveSettingsPath(home)));
    }

    void dataSaveOkWritesTheFileAndFiveRunningValues()
    {
        writeSaveSettingsFile(home, {"No", "5", "min", home + "/old", "Old", "1", "8", "30"});
        ScreenBench b(home, {1});
        RunLogger &logger = b.recorder.runLog();
        logger.loadSettings();
        frmQM730_Set_DSave screen(b.ctx);
        screen.show();
        QCOMPARE(child<QLineEdit>(screen, "txtDayMM")->text(), QString("30")); // filled from the file

        child<QComboBox>(screen, "cmbSave")->setCurrentText("Yes");
        child<QLineEdit>(screen, "txtSaveInterval")->setText("10");
        child<QComboBox>(screen, "cmbUnit")->setCurrentText("sec");
        child<QLabel>(screen, "lblFolder")->setText(home + "/new");
        child<QLineEdit>(screen, "txtFName")->setText("Oven");
        child<QCheckBox>(screen, "chbDSaveF")->setChecked(false);
        child<QLineEdit>(screen, "txtDayHH")->setText("25");
        child<QLineEdit>(screen, "txtDayMM")->setText("7");
        child<QPushButton>(screen, "btnOK")->click();

        QCOMPARE(screen.result(), int(QDialog::Accepted));
        QCOMPARE(fileBytes(saveSettingsPath(home)),
                 ("Yes\r\n10\r\nsec\r\n" + home + "/new\r\nOven\r\n0\r\n25\r\n7\r\n").toUtf8());
        const SaveSettings &s = logger.settings();
        QCOMPARE(QStringList({s.SaveEnable, QString::number(s.SaveInterval), s.SaveUnit, s.SaveFolder, s.SaveFileName}),
                 QStringList({"Yes", "10", "sec", home + "/new", "Oven"}));
        // Until the next start the old naming stays.
        QVERIFY(s.DailyFile && s.DayStartHour == 8 && s.DayStartMinute == 30);
    }

    void folderPickerStartsAtTheFolderAndHandsItBack()
    {
        QDir().mkpath(home + "/runs/oven");
        frmSelectFolder picker("C:\\runs\\oven", home);
        QCOMPARE(child<QLabel>(picker, "lblFolder")->text(), home + "/runs/oven");
        // The folder list opens down to the folder, which is chosen and in sight.
        picker.show();
        QVERIFY(QTest::qWaitForWindowExposed(&picker));
        auto *dir1 = child<QTreeView>(picker, "Dir1");
        auto *model = qobject_cast<QFileSystemModel *>(dir1->model());
        QVERIFY(model);
        QTRY_VERIFY_WITH_TIMEOUT(model->filePath(dir1->currentIndex()) == home + "/runs/oven"
                                     && dir1->viewport()->rect().intersects(dir1->visualRect(dir1->currentIndex())),
                                 10000);
        picker.goTo(home + "/runs/missing/deeper"); // the nearest existing folder
        child<QPushButton>(picker, "btnOK")->click();
        QCOMPARE(picker.folder(), home + "/runs");
    }

    void emailScreen()
    {
        const QString file = home + "/EMail.mdb";
        QVERIFY(provisionMailDatabase(file));
        ScreenBench b(home);
        mdlADO &db = b.recorder.database();
        QVERIFY(b.recorder.openDatabase());
        MailNotifier &mail = b.recorder.mail();
        QVERIFY(db.saveSetMail("smtp", "a@b", "c@d;"));
        {
            frmQM730_Set_EMail clean(b.ctx); // no sender failure: nothing to show or drop
            QCOMPARE(child<QLabel>(clean, "lblSendNG")->text(), QString());
            QVERIFY(child<QPushButton>(clean, "btnDeleteMail")->isHidden());
        }
        sql(file, "UPDATE SetMail SET SendNG = 1");
        QVERIFY(db.queueMail("QM730 Alarm Status", "waiting"));

        frmQM730_Set_EMail screen(b.ctx);
        screen.show();
        QCOMPARE(child<QLabel>(screen, "lblSendNG")->text(), QString("SMTP Error"));
        auto *drop = child<QPushButton>(screen, "btnDeleteMail");
        QVERIFY(drop->isVisible());
        drop->click();
        QCOMPARE(sql(file, "SELECT COUNT(*) FROM SendMail"), QVariantList{0});

        // An address without "@" is refused on Enter: the field keeps its last good text.
        child<QCheckBox>(screen, "chbUseEMail")->setChecked(true);
        auto enter = [](QLineEdit *e, const QString &text) {
            e->setFocus();
            e->setText(text);
            QTest::keyClick(e, Qt::Key_Return);
            return e->text();
        };
        QLineEdit *to = screen.toMail(0);
        QVERIFY(to->isEnabled());
        QCOMPARE(enter(to, "op@example.com"), QString("op@example.com"));
        QCOMPARE(enter(to, "no-at-sign"), QString("op@example.com"));
        QCOMPARE(enter(to, ""), QString(""));
        QCOMPARE(enter(child<QLineEdit>(screen, "txtFromMail"), "plain"), QString(""));
        child<QCheckBox>(screen, "chbUseEMail")->setChecked(false);
        QVERIFY(!to->isEnabled() && !child<QLineEdit>(screen, "txtSMTP")->isEnabled());

        child<QCheckBox>(screen, "chbUseEMail")->setChecked(true);
        child<QLineEdit>(screen, "txtSMTP")->setText("mail.example.com:2525");
        child<QLineEdit>(screen, "txtFromMail")->setText("qm@example.com");
        screen.toMail(1)->setText("a@example.com");
        screen.toMail(4)->setText("b@example.com");
        screen.item(8)->setChecked(true);
        child<QPushButton>(screen, "btnOK")->click();
        QCOMPARE(screen.result(), int(QDialog::Accepted));

        QVERIFY(mail.settings().MailEnabled);
        const auto lines = readTextLines(home + "/CFG/SetEMail.CFG");
        QVERIFY(lines);
        QCOMPARE(lines->size(), 24);
        QCOMPARE(lines->mid(0, 5), (QStringList{"1", "mail.example.com:2525", "qm@example.com", "", "a@example.com"}));
        QCOMPARE(lines->mid(13), (QStringList{"0", "0", "0", "0", "0", "0", "0", "0", "1", "0", "0"}));
        QCOMPARE(sql(file, "SELECT SMTP || '|' || ToMail || '|' || SendNG FROM SetMail"),
                 QVariantList{"mail.example.com:2525|a@example.com;b@example.com;|0"});
    }

    void historyListsAndLoadsFiles()
    {
        ScreenBench b(home);
        {
            frmQM730_History empty(b.ctx);
            QVERIFY(QFileInfo(home + "/ActionHistory").isDir()); // made at the first look
            QCOMPARE(child<QTableWidget>(empty, "sprdList")->rowCount(), 0);
        }
        writeHistory("H003.USE", "2026-03-01 10:00:00\tI/S 1 ON\r\nno tab here\r\n2026-03-01 10:00:02\tD/I 2 OFF\textra\r\n");
        writeHistory("H010.USE", "2026-03-02 11:00:00\tPROGRAMRUN Start.\r\n");
        writeHistory("notes.USE", "free text\r\n");
        frmQM730_History screen(b.ctx);
        auto *list = child<QTableWidget>(screen, "sprdList");
        auto *lines = child<QTableWidget>(screen, "sprdHistory");
        QCOMPARE(column(list, 0), (QStringList{"003", "010", "ote"}));
        QCOMPARE(child<QLabel>(screen, "lblNo")->text(), QString("003"));
        QCOMPARE(column(lines, 0), (QStringList{"2026-03-01 10:00:00", "no tab here", "2026-03-01 10:00:02"}));
        QCOMPARE(column(lines, 1), (QStringList{"I/S 1 ON", "", "D/I 2 OFF"}));

        screen.selectMachine(1);
        QCOMPARE(child<QLabel>(screen, "lblFName")->text(), QString("\\ActionHistory\\H010.USE"));
        QCOMPARE(column(lines, 1), QStringList{"PROGRAMRUN Start."});
        // A file not of the usual form is listed, but its number names no file.
        screen.selectMachine(2);
        QCOMPARE(lines->rowCount(), 0);
    }

    void historyDeletesAfterConfirmation()
    {
        const QByteArray original = "t1\tA\r\nt2\r\nt3\tC\r\nt4\tD\r\n";
        writeHistory("H003.USE", original);
        ScreenBench b(home);
        frmQM730_History screen(b.ctx);
        auto *lines = child<QTableWidget>(screen, "sprdHistory");
        auto *del = child<QAction>(screen, "mEditDel");
        lines->selectRow(1);
        lines->selectionModel()->select(lines->model()->index(3, 0),
                                        QItemSelectionModel::Select | QItemSelectionModel::Rows);

        ModalDriver d;
        QString title;
        d.then([&title](QWidget *w) {
            title = w->windowTitle();
            static_cast<QMessageBox *>(w)->button(QMessageBox::No)->click();
        });
        del->trigger();
        QCOMPARE(title + d.met.value(0), QString("確認刪除?"));
        QCOMPARE(lines->rowCount(), 4);
        QCOMPARE(fileBytes(home + "/ActionHistory/H003.USE"), original);

        d.box(QMessageBox::Yes);
        del->trigger();
        QCOMPARE(column(lines, 0), (QStringList{"t1", "t3"}));
        QCOMPARE(fileBytes(home + "/ActionHistory/H003.USE"), QByteArray("t1\tA\r\nt3\tC\r\n"));

        d.box(QMessageBox::Yes);
        child<QPushButton>(screen, "btnDelAll")->click();
        QVERIFY(d.done() && d.unexpected.isEmpty());
        QCOMPARE(lines->rowCount(), 0);
        QCOMPARE(fileBytes(home + "/ActionHistory/H003.USE"), QByteArray()); // emptied, still listed
        frmQM730_History again(b.ctx);
        QCOMPARE(column(child<QTableWidget>(again, "sprdList"), 0), QStringList{"003"});
    }

    void alarmCodeChooserHandsBackTheChoice()
    {
        ScreenBench b(home);
        ModalDriver d;
        // A double click anywhere on a type's line chooses its code; closing the window chooses nothing.
        d.then([](QWidget *w) {
            QCOMPARE(child<QLabel>(*w, "lblRow")->text(), QString("3"));
            emit child<QTableWidget>(*w, "vaSpread1")->cellDoubleClicked(3, 1);
        });
        QCOMPARE(frmSys_AlarmCode::choose(b.ctx, nullptr, 3), std::optional<int>(4));
        d.then([](QWidget *w) { static_cast<QDialog *>(w)->reject(); });
        QCOMPARE(frmSys_AlarmCode::choose(b.ctx, nullptr, 1), std::nullopt);
        QVERIFY(d.done() && d.unexpected.isEmpty());
    }

    void rewriteReplacesTheFileWhole()
    {
        writeHistory("H001.USE", "old\tline\r\n");
        const QString path = eventFilePath(home, 1);
        QFile reader(path);
        QVERIFY(reader.open(QIODevice::ReadOnly)); // a reader that opened the file before
        QVERIFY(rewriteHistory(path, {{"new", "one"}, {"new", "two"}}));
        // The old file was replaced, not truncated and rewritten in place.
        QCOMPARE(reader.readAll(), QByteArray("old\tline\r\n"));
        QCOMPARE(fileBytes(path), QByteArray("new\tone\r\nnew\ttwo\r\n"));
        QVERIFY(QDir(home + "/ActionHistory").entryList(QDir::Files | QDir::Hidden) == QStringList{"H001.USE"});

        // A rewrite that cannot happen leaves the old file as it was.
        QVERIFY(QDir().mkpath(home + "/ActionHistory/H002.USE"));
        QVERIFY(!rewriteHistory(eventFilePath(home, 2), {{"x", "y"}}));
        QVERIFY(QFileInfo(home + "/ActionHistory/H002.USE").isDir());
    }
};

QTEST_MAIN(TestScreens)
#include "tst_recording_screens.moc"
