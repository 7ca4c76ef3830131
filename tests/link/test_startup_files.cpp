// The settings files read at start: each file's failure rule, lenient numbers,
// and files written in Big5 as well as UTF-8.
#include "ConsoleState.h"
#include "Files.h"
#include "StartupFiles.h"
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

class StartupFilesTest : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;
    QString home() const { return m_dir.path(); }
    void put(const QString &rel, const QByteArray &bytes)
    {
        const QString path = programPath(home(), rel);
        QDir().mkpath(QFileInfo(path).absolutePath());
        QFile f(path);
        QVERIFY(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
        f.write(bytes);
    }
    QByteArray contents(const QString &rel)
    {
        QFile f(programPath(home(), rel));
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }

private slots:
    void init()
    {
        QDir(home()).removeRecursively();
        QDir().mkpath(home());
    }

    void commWait()
    {
        const QString file = QStringLiteral("CommWait.TM");
        QCOMPARE(readCommWait(home()), 0);
        QCOMPARE(contents(file), QByteArray("0\r\n")); // a missing file is written anew
        // An empty file is written anew; an unreadable number is 0 and the file is kept.
        for (const auto &[bytes, wait, after] : {std::tuple<QByteArray, int, QByteArray>{"", 0, "0\r\n"},
                                                 {"1000\r\n", 1000, "1000\r\n"}, {" 250ms", 250, " 250ms"},
                                                 {"slow", 0, "slow"}}) {
            put(file, bytes);
            QCOMPARE(readCommWait(home()), wait);
            QCOMPARE(contents(file), after);
        }
    }

    void commPortFile()
    {
        ConsoleState s(home());
        auto settings = [&s] {
            return QStringList({QString::number(s.CommPortNo), s.CommSettingsText(), s.CommProtocol, s.CommRTS});
        };
        // A port that is not a number is port 0.
        put(QStringLiteral("CommPort.CFG"), "COMx\n57600\nN\n8\n1\nModbus RTU\nOFF\n");
        QVERIFY(readCommPortCfg(s));
        QCOMPARE(settings(), QStringList({"0", "57600,N,8,1", "Modbus RTU", "OFF"}));
        QVERIFY(s.Modbus());
        put(QStringLiteral("CommPort.CFG"), "COM12\r\n9600\r\nE\r\n7\r\n2\r\nPC Link + crc\r\nON\r\n");
        QVERIFY(readCommPortCfg(s));
        QCOMPARE(settings(), QStringList({"12", "9600,E,7,2", "PC Link + crc", "ON"}));
        QVERIFY(s.CrcMode());
        // Five lines are too short: every setting falls back to its default.
        put(QStringLiteral("CommPort.CFG"), "COM3\r\n9600\r\nE\r\n7\r\n2\r\n");
        QVERIFY(!readCommPortCfg(s));
        QCOMPARE(settings(), QStringList({"1", "115200,N,8,1", "PC Link", "OFF"}));
        QVERIFY(!s.CrcMode());
        ConsoleState missing(home() + QStringLiteral("/nowhere"));
        missing.CommBaud = QStringLiteral("1200");
        QVERIFY(!readCommPortCfg(missing));
        QCOMPARE(missing.CommBaud, QStringLiteral("115200"));
    }

    void runIniMissingOrSingle()
    {
        MachineList list = Get_RunCFG(home());
        QVERIFY(QDir(programPath(home(), QStringLiteral("CFG"))).exists()); // the folder is made
        QVERIFY(!list.multiMode && list.machines.size() == 1);
        QCOMPARE(list.machines[0].MachineNumber, 1);
        QVERIFY(contents(QStringLiteral("Err.LOG")).contains(",Get_RunCFG"));

        put(QStringLiteral("CFG/Run.INI"), QByteArray("單機\r\n7\r\nO\tA\r\n"));
        list = Get_RunCFG(home());
        QVERIFY(!list.multiMode && list.machines.size() == 1);
        QCOMPARE(list.machines[0].MachineNumber, 7);
        QVERIFY(list.machines[0].MachineName.isEmpty());
    }

    void runIniMultiModeInBig5AndUtf8()
    {
        // The same list written by the controllers' code page and by a UTF-8 editor.
        const QString text = QStringLiteral("多機\r\n5\r\nO\t一號\r\n\t\r\nX\t三號\r\nO\t四號\r\n");
        for (const QByteArray &bytes : {toAnsi(text), text.toUtf8()}) {
            put(QStringLiteral("CFG/Run.INI"), bytes);
            const MachineList list = Get_RunCFG(home());
            QVERIFY(list.multiMode);
            QCOMPARE(list.singleMachine, 5);
            QCOMPARE(list.machines.size(), 2);
            // Numbers keep their gaps.
            QCOMPARE(QList<int>({list.machines[0].MachineNumber, list.machines[1].MachineNumber}), QList<int>({1, 4}));
            QCOMPARE(QStringList({list.machines[0].MachineName, list.machines[1].MachineName}), QStringList({"一號", "四號"}));
            QVERIFY(!list.machines[1].MachineOnline && !list.machines[1].MachineRunning);
        }
    }

    void systemPassword()
    {
        QVERIFY(!loadSystemPassword(home()));
        put(QStringLiteral("QM730_ID.INI"), "not a table");
        QVERIFY(!loadSystemPassword(home()));
        QVERIFY(saveSystemPassword(home(), QStringLiteral("Abc 密碼\t1")));
        QCOMPARE(loadSystemPassword(home()).value_or(QString()), QStringLiteral("Abc 密碼\t1"));
    }

    void lenientNumbers()
    {
        for (const auto &[text, number] : {std::pair{"12abc", 12.0}, {" -3.5e1x", -35.0}, {"abc", 0.0}, {"", 0.0},
                                           {"1 2", 12.0}})
            QCOMPARE(leadingNumber(QLatin1String(text)), number);
        QCOMPARE(leadingInt(QStringLiteral("2.5")), 2);
        QCOMPARE(leadingInt(QStringLiteral("3.5")), 4);
    }
};

QTEST_GUILESS_MAIN(StartupFilesTest)
#include "test_startup_files.moc"
