#include "frmQM730_PTN_Recv.h"
#include "CommLink.h"
#include "ConsoleState.h"
#include "Files.h"
#include "ProgramImage.h"
#include "ScreenContext.h"
#include "ScreenLayout.h"
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

QString stamp(const QDateTime &t)
{
    return t.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

// "程式組名稱 接收中... [3/100]"
QString progressText(const QString &what, int done, int total)
{
    return what + QStringLiteral(" 接收中... [") + QString::number(done) + u'/' + QString::number(total) + u']';
}

} // namespace

frmQM730_PTN_Recv::frmQM730_PTN_Recv(ScreenContext &context, QWidget *parent) : QDialog(parent), m_ctx(context)
{
    setObjectName(QStringLiteral("frmQM730_PTN_Recv"));
    setWindowTitle(QStringLiteral("請等待..."));

    auto *caption = named(new QLabel(QStringLiteral("從QM730接收數據中....")), QStringLiteral("lblTitle"));
    QFont big = caption->font();
    big.setPixelSize(18);
    big.setBold(true);
    caption->setFont(big);
    lblMSG = named(new QLabel, QStringLiteral("lblMSG"));
    lblMSG->setMinimumWidth(320);
    btnStop = named(new QPushButton(QStringLiteral("停止")), QStringLiteral("btnStop"));
    btnStop->setMinimumSize(100, 34);
    btnStop->setAutoDefault(false);
    connect(btnStop, &QPushButton::clicked, this, &frmQM730_PTN_Recv::btnStop_Click);

    auto *box = new QVBoxLayout(this);
    box->addWidget(named(new QLabel(QStringLiteral("請等待...")), QStringLiteral("lblWait")));
    box->addWidget(caption);
    box->addWidget(lblMSG);
    box->addWidget(btnStop, 0, Qt::AlignRight);

    const auto note = readTextLines(context.state.path(QStringLiteral("\\WChkTime.INI")));
    m_timing = note && !note->isEmpty() && leadingNumber(note->first()) != 0;

    connect(&context.link, &CommLink::bulkProgress, this, &frmQM730_PTN_Recv::progress);
    connect(&context.link, &CommLink::bulkFinished, this, [this](BulkJob job) {
        if (job == BulkJob::ProgramFetch)
            lblMSG->setText(Done);
    });
    tmrEnd.setObjectName(QStringLiteral("tmrEnd"));
    tmrEnd.setInterval(10);
    connect(&tmrEnd, &QTimer::timeout, this, &frmQM730_PTN_Recv::tmrEnd_Timer);
    start();
    tmrEnd.start();
}

QString frmQM730_PTN_Recv::message() const
{
    return lblMSG->text();
}

// The names not loaded yet first, then the patterns; what is loaded stays as
// it is, so a fetch broken off earlier goes on from where it stood.
void frmQM730_PTN_Recv::start()
{
    ConsoleState &s = m_ctx.state;
    ControllerImage &img = s.image;
    if (const int row = NextUnloadedRow(img, u"RTD", 12); row > 0) {
        for (int r = 12; r <= ControllerImage::TextRows; ++r)
            if (!img.PatternNameLoaded[size_t(r - 12)])
                img.sprdTD.setText(1, r, QString());
        StartTime = QDateTime::currentDateTime();
        m_ctx.requests().startNameFetch(row);
        return;
    }
    if (const int pattern = NextUnloadedRow(img, u"RPD", 1); pattern > 0) {
        for (int p = 1; p <= ControllerImage::MaxPatterns; ++p) {
            if (img.PatternLoaded[size_t(p - 1)])
                continue;
            img.sprdPD.setText(1, p, QString());
            img.sprdSD.setText(1, p, QString());
        }
        StartTime = QDateTime::currentDateTime();
        m_ctx.requests().startPatternFetch(pattern);
        return;
    }
    lblMSG->setText(Done);
}

void frmQM730_PTN_Recv::progress(const BulkProgress &p)
{
    if (p.job != BulkJob::ProgramFetch || p.failed || message() == Done)
        return;
    if (p.table == BulkTable::Texts)
        lblMSG->setText(progressText(QStringLiteral("程式組名稱"), p.done, p.total));
    else if (p.table == BulkTable::Patterns)
        lblMSG->setText(progressText(QStringLiteral("程式組資料"), p.done, p.total));
}

void frmQM730_PTN_Recv::tmrEnd_Timer()
{
    if (message() != Done || m_ended)
        return;
    m_ended = true;
    tmrEnd.stop();
    EndTime = QDateTime::currentDateTime();
    if (m_timing && StartTime.isValid())
        writeTimingNote();
    QDialog::accept();
}

void frmQM730_PTN_Recv::writeTimingNote()
{
    const QString line = QStringLiteral("BAUD:") + m_ctx.state.CommBaud + QStringLiteral("\tSTART:") + stamp(StartTime)
        + QStringLiteral("\tEND:") + stamp(EndTime) + QStringLiteral("\r\n");
    appendToFile(m_ctx.state.path(QStringLiteral("\\PTN_PASS.TM")), line.toUtf8());
}

void frmQM730_PTN_Recv::btnStop_Click()
{
    reject();
}

void frmQM730_PTN_Recv::reject()
{
    if (!m_ended && message() != Done) {
        m_ended = true;
        tmrEnd.stop();
        m_ctx.state.ReceptionStopped = true;
        m_ctx.requests().stop();
    }
    QDialog::reject();
}
