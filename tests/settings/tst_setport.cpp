// The port page: each port tested as chosen, OK saving and applying at once, Cancel keeping nothing.
#include "ConsoleCore.h"
#include "FakeCommPort.h"
#include "ScreenBench.h"
#include "Pty.h"
#include "TestHome.h"
#include "Widgets.h"
#include "frmQM730_Set_Port.h"
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QSerialPort>
#include <QtTest>

namespace {
QString text(QWidget &page, const char *label) { return child<QLabel>(page, label)->text(); }
void click(QWidget &page, const char *button) { child<QPushButton>(page, button)->click(); }
void choose(QWidget &page, const char *box, const QString &text)
{
    auto *b = child<QComboBox>(page, box);
    b->setCurrentIndex(b->findText(text));
}
QStringList fileLines(const QString &home) { return readTextLines(home + "/CommPort.CFG").value_or(QStringList()); }
} // namespace

class SetPortTest : public QObject {
    Q_OBJECT
private slots:
    void portTest()
    {
        TestHome home;
        Pty free, held;
        home.mapPorts({"COM1=" + free.path, "COM2=" + held.path, "COM3=" + home.path() + "/no-such-tty"});
        QSerialPort holder(held.path);
        QVERIFY(holder.open(QIODevice::ReadWrite));

        ScreenBench b(home.path());
        frmQM730_Set_Port page(b.ctx);
        // The present port is tested at load; its device shows beside it.
        QCOMPARE(text(page, "lblMSG"), QStringLiteral("COM1 : 可使用的通訊端口"));
        QVERIFY(text(page, "lblDevice").contains(free.path));
        choose(page, "cmbPort", "COM2");
        QCOMPARE(text(page, "lblMSG"), QStringLiteral("COM2 : 不可使用的通訊端口 (使用中)"));
        choose(page, "cmbPort", "COM3");
        QCOMPARE(text(page, "lblMSG"), QStringLiteral("COM3 : 不可使用的通訊端口"));
        QVERIFY(text(page, "lblDevice").contains("no-such-tty"));
        // The test let go of the free port.
        QSerialPort after(free.path);
        QVERIFY(after.open(QIODevice::ReadWrite));
    }

    void okSavesAndAppliesAtOnce()
    {
        TestHome home;
        auto *fake = new FakeCommPort;
        ConsoleCore core(home.path(), std::unique_ptr<CommPort>(fake));
        QCOMPARE(core.start(), ConsoleCore::StartResult::Ok);
        ConsoleState &s = core.state();
        QCOMPARE(core.link().replyTimeoutMs(), 500);

        frmQM730_Set_Port page(core.context());
        const QStringList chosen = {"COM4", "9600", "E", "7", "2", "PC Link + crc", "ON"};
        const char *boxes[] = {"cmbPort", "cmbBaud", "cmbParity", "cmbData", "cmbStop", "cmbProtocol", "cmbRTS"};
        for (int i = 0; i < 7; ++i)
            choose(page, boxes[i], chosen[i]);
        click(page, "btnOK");
        QCOMPARE(page.result(), int(QDialog::Accepted));
        QCOMPARE(fileLines(home.path()), chosen);
        QCOMPARE(QStringList({s.statusPanel(1), s.statusPanel(2), s.statusPanel(6)}),
                 QStringList({"COM4", "9600,E,7,2", "PC Link + crc"}));
        QCOMPARE(s.CommPortNo, 4);
        QCOMPARE(s.CommRTS, QStringLiteral("ON"));
        QCOMPARE(core.link().replyTimeoutMs(), 500); // the start-up value, although the baud changed

        // The next open uses the new settings, and its first frame carries the sum.
        QCOMPARE(core.togglePort(), ConsoleCore::PortAction::Opened);
        QCOMPARE(fake->openedSettings, QStringLiteral("9600,E,7,2"));
        QTRY_COMPARE(fake->lastFrame(), QByteArray::fromHex("0230303157484F030D0A019B")); // WHO to machine 1
        core.shutdown();
    }

    void lastPortAndCancel()
    {
        TestHome home;
        // A baud the list does not offer is shown and written back.
        writeCommPortCfg(home.path(), {"COM2", "4800", "N", "8", "1", "Modbus RTU", "OFF"});
        ScreenBench b(home.path());
        ConsoleState &s = b.state;
        readCommPortCfg(s);
        {
            frmQM730_Set_Port page(b.ctx);
            choose(page, "cmbProtocol", "PC Link");
            click(page, "btnCancel");
        }
        QCOMPARE(s.CommProtocol, QStringLiteral("Modbus RTU"));
        QCOMPARE(fileLines(home.path()).value(5), QStringLiteral("Modbus RTU"));

        frmQM730_Set_Port page(b.ctx);
        auto *ports = page.findChild<QComboBox *>(QStringLiteral("cmbPort"));
        ports->setCurrentIndex(ports->count() - 1);
        click(page, "btnOK");
        QCOMPARE(s.CommPortNo, 16);
        QCOMPARE(fileLines(home.path()), QStringList({"COM16", "4800", "N", "8", "1", "Modbus RTU", "OFF"}));
    }
};

QTEST_MAIN(SetPortTest)
#include "tst_setport.moc"
