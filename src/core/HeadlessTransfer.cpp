// Backup and restore of one machine from the command line: the chains and the
// file set of the bulk screens, with lines on stdout in place of lblSTS.
#include "BulkTransfer.h"
#include "ConsoleCore.h"
#include "Headless.h"
#include "ParameterSet.h"
#include <QCoreApplication>
#include <QDateTime>
#include <QTextStream>
#include <QTimer>

namespace {

QString conversionText(paramset::Conversion c)
{
    switch (c) {
    case paramset::Conversion::DigitalInputActions: return QStringLiteral("D/I actions converted for F/W 2.37 and up");
    case paramset::Conversion::DigitalOutputValues: return QStringLiteral("D/O values converted for F/W 2.4 and up");
    case paramset::Conversion::None: break;
    }
    return QStringLiteral("no conversion");
}

// One run of a backup or a restore on the event loop; ends by calling finish.
class Transfer : public QObject {
public:
    Transfer(ConsoleCore &core, const TransferOptions &options, std::optional<paramset::ParameterSet> set)
        : m_s(core.state()), m_kind(options.kind), m_machine(options.machine), m_base(options.base),
          m_verify(options.verify), m_set(std::move(set))
    {
        CommLink &link = core.link();
        // Queued: the scan's end goes on after the signal (it may post a read
        // of the block), and the transfer's request must come after it.
        connect(&link, &CommLink::menusUpdated, this, [this](bool) { scanDone(); }, Qt::QueuedConnection);
        connect(&link, &CommLink::bulkProgress, this, &Transfer::progress);
        connect(&link, &CommLink::bulkFinished, this, &Transfer::finished);
    }

    int status() const { return m_status; }

    // Ends the run early (time limit, signal): the chain is stopped.
    void abandon(const QString &why)
    {
        if (m_started)
            m_s.requests().stop();
        finish(TransferFailed, why);
    }

    void print(const QString &text)
    {
        QTextStream out(stdout);
        out << QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")) << ' ' << text << '\n';
        out.flush();
    }

private:
    // The first scan is through: the machine answered or it did not.
    void scanDone()
    {
        if (m_scanned || m_status >= 0)
            return;
        m_scanned = true;
        const int slot = m_s.slotOfMachine(m_machine);
        if (slot < 0 || !m_s.machines[slot].MachineOnline) {
            finish(TransferNoMachine, QStringLiteral("machine %1 is not on the line").arg(m_machine));
            return;
        }
        m_s.setForegroundMachine(m_machine);
        print(QStringLiteral("machine %1: F/W %2, %3 parameter rows, %4 patterns")
                  .arg(m_machine)
                  .arg(m_s.FirmwareVersion())
                  .arg(m_s.image.sprdUP.rowCount())
                  .arg(m_s.PatternCount()));
        if (m_kind == TransferKind::Backup) {
            m_s.requests().startParameterReceive(true);
        } else {
            const paramset::LoadOutcome loaded =
                paramset::loadParameterSet(m_s.image, *m_set, bulktransfer::linkSettings(m_s));
            if (!loaded.fits) {
                finish(TransferSetRefused, QStringLiteral("不一致 (F/W Version): the set has %1 parameter rows, the machine %2")
                                               .arg(loaded.setRows)
                                               .arg(loaded.machineRows));
                return;
            }
            print(QStringLiteral("%1 read: F/W %2, %3")
                      .arg(paramset::setDisplayName(m_base))
                      .arg(m_set->fileVersion)
                      .arg(conversionText(loaded.conversion)));
            m_s.requests().startParameterSend(true);
        }
        m_started = true;
    }

    void progress(const BulkProgress &p)
    {
        if (!m_started || m_status >= 0)
            return;
        if (p.failed) {
            abandon(QStringLiteral("machine %1 stopped answering (%2)").arg(m_machine).arg(bulktransfer::rowLabel(p.table)));
            return;
        }
        if (const auto text = bulktransfer::statusText(p))
            print(bulktransfer::rowLabel(p.table) + u' ' + *text);
    }

    void finished(BulkJob job)
    {
        if (!m_started || m_status >= 0)
            return;
        if (job == BulkJob::ParameterSend) {
            const QString sent = QStringLiteral("%1 sent to machine %2").arg(paramset::setDisplayName(m_base)).arg(m_machine);
            if (!m_verify) {
                finish(TransferDone, sent);
                return;
            }
            print(sent + QStringLiteral(", reading it back"));
            // What was sent is kept aside and the tables emptied, so that
            // every compared cell is one the machine gave back.
            m_sent = paramset::SentTables::of(m_s.image);
            for (TextTable *t : {&m_s.image.sprdUP, &m_s.image.sprdTD, &m_s.image.sprdPD, &m_s.image.sprdSD})
                t->clearCells();
            m_verifying = true;
            m_s.requests().startParameterReceive(true);
            return;
        }
        if (m_verifying) {
            const QStringList differ =
                paramset::rowsThatDiffer(*m_sent, m_s.image, m_s.PatternCount(), m_s.FirmwareVersion());
            for (const QString &line : differ)
                print(QStringLiteral("differs: ") + line);
            if (differ.isEmpty())
                finish(TransferDone, QStringLiteral("machine %1 verified: no row differs").arg(m_machine));
            else
                finish(TransferVerifyFailed, QStringLiteral("machine %1: %2 rows differ from the set sent")
                                                 .arg(m_machine)
                                                 .arg(differ.size()));
            return;
        }
        QString why;
        if (paramset::saveParameterSet(m_s.image, m_s.FirmwareVersion(), m_base, &why))
            finish(TransferDone, QStringLiteral("machine %1 saved as %2").arg(m_machine).arg(paramset::setDisplayName(m_base)));
        else
            finish(TransferSaveFailed, QStringLiteral("cannot save %1: %2").arg(paramset::setDisplayName(m_base), why));
    }

    void finish(int status, const QString &text)
    {
        if (m_status >= 0)
            return;
        m_status = status;
        if (status == TransferDone) {
            print(text);
        } else {
            QTextStream err(stderr);
            err << text << '\n';
        }
        QCoreApplication::exit(status);
    }

    ConsoleState &m_s;
    TransferKind m_kind;
    int m_machine;
    QString m_base;
    bool m_verify;
    std::optional<paramset::ParameterSet> m_set;
    std::optional<paramset::SentTables> m_sent;
    bool m_verifying = false;
    bool m_scanned = false;
    bool m_started = false;
    int m_status = -1;
};

} // namespace

int runHeadlessTransfer(const QString &home, const TransferOptions &options)
{
    const QString &base = options.base;
    const int seconds = options.seconds;
    QTextStream err(stderr);
    std::optional<paramset::ParameterSet> set;
    if (options.kind == TransferKind::Restore) {
        // A set that cannot be read is refused before the line is touched.
        QString why;
        set = paramset::readParameterSet(base, &why);
        if (!set) {
            err << "cannot read " << paramset::setDisplayName(base) << ": " << why << '\n';
            return TransferSetRefused;
        }
    }
    ConsoleCore core(home);
    if (core.start() == ConsoleCore::StartResult::MailDatabaseMissing) {
        err << "File not found.\n";
        return TransferStartFailed;
    }
    core.link().setCommFileLog(options.commLog);
    Transfer transfer(core, options, std::move(set));
    if (core.togglePort() != ConsoleCore::PortAction::Opened) {
        err << "cannot open COM" << core.state().CommPortNo << ": " << core.link().lastOpenError()
            << " (is another console using it?)\n";
        core.shutdown();
        return TransferPortFailed;
    }
    transfer.print(QStringLiteral("COM%1 open, scanning").arg(core.state().CommPortNo));
    onTerminationSignals(&transfer, [&transfer] { transfer.abandon(QStringLiteral("stopped by a signal")); });
    QTimer limit;
    if (seconds > 0) {
        limit.setSingleShot(true);
        QObject::connect(&limit, &QTimer::timeout, &transfer, [&transfer, seconds] {
            transfer.abandon(QStringLiteral("not done within %1 s").arg(seconds));
        });
        limit.start(seconds * 1000);
    }
    QCoreApplication::exec();
    // Closing the port ends a chain that was stopped early.
    core.shutdown();
    return transfer.status();
}
