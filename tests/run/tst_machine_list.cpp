// The machine list: Run.INI as the screen writes and the start reads it, the
// refusals, damaged files, and what a new list does to the slots and the link.
#include "ConsoleState.h"
#include "Files.h"
#include "MachineListChange.h"
#include "ModalDriver.h"
#include "ScreenBench.h"
#include "StartupFiles.h"
#include "Widgets.h"
#include "frmQM730_Set_Multi.h"
#include <QFile>
#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTest>

namespace {

template <class Slots> QList<int> numbersOf(const Slots &machines)
{
    QList<int> out;
    for (const MachineSlot &m : machines)
        out << m.MachineNumber;
    return out;
}

struct ListBench {
    QTemporaryDir home;
    ScreenBench bench{home.path(), {1}};
    ConsoleState &state = bench.state;
    std::unique_ptr<frmQM730_Set_Multi> form;

    QString runIni() const { return programPath(home.path(), QStringLiteral("CFG/Run.INI")); }
    QByteArray fileBytes() const
    {
        QFile f(runIni());
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }
    frmQM730_Set_Multi &open()
    {
        form = std::make_unique<frmQM730_Set_Multi>(bench.ctx);
        return *form;
    }
    void mode(int index) { indexed<QRadioButton>(*form, "optRunMode", index)->click(); }
    QTableWidget *list() const { return child<QTableWidget>(*form, "sprdList"); }
    void use(int machine, const QString &label = {})
    {
        form->toggleInUse(machine);
        list()->item(machine - 1, 1)->setText(label);
    }
    void ok() { QTest::mouseClick(child<QPushButton>(*form, "btnOK"), Qt::LeftButton); }
    QList<int> numbers() const { return numbersOf(state.machines); }
};

} // namespace

class TestMachineList : public QObject {
    Q_OBJECT
private slots:
    void writtenByTheScreenAndReadBack()
    {
        ListBench b;
        frmQM730_Set_Multi &form = b.open();
        QVERIFY(indexed<QRadioButton>(form, "optRunMode", 1)->isChecked()); // no file: single mode, machine 1
        QCOMPARE(child<QLineEdit>(form, "txtMC_No")->text(), QStringLiteral("1"));
        QVERIFY(!child<QGroupBox>(form, "fraList")->isEnabled());

        b.mode(0);
        QVERIFY(child<QGroupBox>(form, "fraList")->isEnabled());
        b.use(1, QStringLiteral("一號箱"));
        b.use(3, QStringLiteral("Oven\tthree"));
        b.use(12);
        b.list()->item(5 - 1, 1)->setText(QStringLiteral("備用")); // labelled, not in use
        form.show();
        QVERIFY(QTest::qWaitForWindowExposed(&form));
        QTest::mouseClick(b.list()->viewport(), Qt::LeftButton, {},
                          b.list()->visualRect(b.list()->model()->index(11, 0)).center());
        b.use(12); // clicked off, then on again
        b.ok();
        QCOMPARE(form.result(), int(QDialog::Accepted));

        const QString text = QStringLiteral("多機\r\n1\r\nO\t一號箱\r\n\t\r\nO\tOven three\r\n\t\r\n\t備用\r\n"
                                            "\t\r\n\t\r\n\t\r\n\t\r\n\t\r\n\t\r\nO\t\r\n");
        QCOMPARE(QString::fromUtf8(b.fileBytes()), text);
        // In force at once.
        QVERIFY(b.state.MultiMode);
        QCOMPARE(b.numbers(), (QList<int>{1, 3, 12}));

        // Opened again and confirmed unchanged: the same file, byte for byte.
        const QByteArray before = b.fileBytes();
        b.open();
        QCOMPARE(b.list()->item(2, 0)->text(), QStringLiteral("O"));
        QCOMPARE(b.list()->item(4, 1)->text(), QStringLiteral("備用"));
        b.ok();
        QCOMPARE(b.fileBytes(), before);
    }

    void singleMode()
    {
        ListBench b;
        b.open();
        b.mode(0);
        b.use(4);
        b.mode(1);
        child<QLineEdit>(*b.form, "txtMC_No")->setText(QStringLiteral("25"));
        b.ok();
        QVERIFY(!b.state.MultiMode);
        QCOMPARE(b.numbers(), QList<int>{25});
        // The list of machines in use is kept for the next change to multi mode.
        QVERIFY(b.fileBytes().startsWith("單機\r\n25\r\n\t\r\n\t\r\n\t\r\nO\t\r\n"));
    }

    void refusals_data()
    {
        QTest::addColumn<int>("mode");
        QTest::addColumn<QString>("number");
        QTest::addColumn<QString>("message");
        QTest::newRow("multi, none in use") << 0 << "5" << "請選擇要使用的機器";
        QTest::newRow("single, empty") << 1 << "" << "錄入機號 (1 ~ 999)";
        QTest::newRow("single, 0") << 1 << "0" << "錄入機號 (1 ~ 999)";
        QTest::newRow("single, 1000") << 1 << "1000" << "錄入機號 (1 ~ 999)";
        QTest::newRow("single, text") << 1 << "abc" << "錄入機號 (1 ~ 999)";
    }

    void refusals()
    {
        QFETCH(int, mode);
        QFETCH(QString, number);
        QFETCH(QString, message);
        ListBench b;
        b.open();
        b.mode(mode);
        auto *field = child<QLineEdit>(*b.form, "txtMC_No");
        field->setMaxLength(8);
        field->setText(number);
        ModalDriver driver;
        driver.box();
        b.ok();
        QCOMPARE(driver.met, QStringList{message});
        QVERIFY(b.form->result() != QDialog::Accepted);
        QVERIFY(!QFile::exists(b.runIni()));
        QCOMPARE(b.numbers(), QList<int>{1});
    }

    void damagedFileGivesTheStartDefaults_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("multi");
        QTest::addColumn<QList<int>>("machines");
        QTest::newRow("empty") << QByteArray() << false << QList<int>{1};
        QTest::newRow("binary") << QByteArray("\x00\xff\xfe\x01\r\n\x80\x81", 8) << false << QList<int>{1};
        QTest::newRow("multi, nothing in use") << QByteArray("多機\r\n4\r\n\tA\r\nX\tB\r\no\tC\r\n") << false
                                               << QList<int>{1};
        QTest::newRow("multi, cut after the mode") << QByteArray("多機") << false << QList<int>{1};
        QTest::newRow("single, number out of range") << QByteArray("單機\r\n1000\r\n") << false << QList<int>{1};
        QTest::newRow("single, number with junk") << QByteArray("單機\r\n12xyz\r\n") << false << QList<int>{12};
        QTest::newRow("multi, unknown marks") << QByteArray("多機\r\n\r\nO \tA\r\nO\tB\r\n\r\nO") << true
                                              << QList<int>{2, 4};
    }

    void damagedFileGivesTheStartDefaults()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(bool, multi);
        QFETCH(QList<int>, machines);
        ListBench b;
        QVERIFY(writeFileAtomic(b.runIni(), bytes));
        const MachineList list = Get_RunCFG(b.home.path());
        QCOMPARE(list.multiMode, multi);
        QCOMPARE(numbersOf(list.machines), machines);
        b.open(); // and the screen shows it without harm
    }

    void newListStartsTheSlotsAnewAndScansWhileTheLinkIsUp()
    {
        ListBench b;
        ConsoleState &s = b.state;
        b.bench.port.open({}, {});
        s.setMachines({{1, {}, true, true, QStringLiteral("FIXRUN")}, {2, {}, true}});
        s.image.sprdRCV.setNumber(1, 2, 12345);
        s.sprdStatus.setText(2, 1, QStringLiteral("良好"));
        s.sprdStatus.setColor(2, 1, TextTable::Green);
        s.CurrentMachine = 2;
        s.CmdState = Cmd::PollValues;
        s.PollSlot = 1;
        s.ReqCmd = Cmd::MachineRun;
        s.image.PatternLoaded[1] = true;
        b.bench.link.tmrRecvErr.start();
        QList<bool> menus;
        connect(&b.bench.link, &CommLink::menusUpdated, this, [&](bool any) { menus << any; });

        MachineList list;
        list.multiMode = true;
        list.machines = {{1, QStringLiteral("A")}, {5, QStringLiteral("B")}};
        applyMachineList(s, b.bench.link, list);

        // Slots start anew: offline, stopped, no run mode, empty columns, so
        // that the run log waits and the first reading raises no event.
        QCOMPARE(b.numbers(), (QList<int>{1, 5}));
        for (const MachineSlot &m : s.machines)
            QVERIFY(!m.MachineOnline && !m.MachineRunning && m.MachineRunMode.isEmpty());
        QVERIFY(s.image.sprdRCV.isEmpty(1, 2));
        QCOMPARE(s.sprdStatus.color(2, 1), TextTable::White);
        QVERIFY(!s.image.PatternLoaded[1]);
        QCOMPARE(menus, QList<bool>{false});
        // The exchange in progress is dropped and the new list scanned from its start.
        // (state, poll slot, request, foreground machine)
        QCOMPARE((QList<int>{s.CmdState, s.PollSlot, s.ReqCmd, s.CurrentMachine}), (QList<int>{Cmd::Who, 0, 0, 0}));
        QVERIFY(!b.bench.link.tmrRecvErr.isActive());
        QVERIFY(b.bench.link.tmrSend.isActive());

        // With the port closed nothing is sent; the foreground machine follows the list.
        b.bench.port.close();
        s.CurrentMachine = 5;
        s.CmdState = Cmd::Poll;
        list.machines = {{9, {}}};
        applyMachineList(s, b.bench.link, list);
        QCOMPARE(s.CurrentMachine, 9);
        QCOMPARE(s.CmdState, int(Cmd::Poll));
    }
};

QTEST_MAIN(TestMachineList)
#include "tst_machine_list.moc"
