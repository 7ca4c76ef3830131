#include "frmQM730Online_Screen.h"
#include "CommLink.h"
#include "ConsoleState.h"
#include "FileDialogs.h"
#include "Files.h"
#include "ScreenBitmap.h"
#include "ScreenContext.h"
#include "ScreenLayout.h"
#include <QDateTime>
#include <algorithm>
#include <QFile>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QPixmap>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace {
// The controller's pixels are shown twice as large, each as a square.
constexpr int Zoom = 2;
} // namespace

frmQM730Online_Screen::frmQM730Online_Screen(ScreenContext &context, QWidget *parent)
    : QDialog(parent), m_ctx(context)
{
    setObjectName(QStringLiteral("frmQM730Online_Screen"));
    setWindowTitle(QStringLiteral("擷取儀表當前畫面"));

    Picture1 = named(new QLabel(this), QStringLiteral("Picture1"));
    Picture1->setFixedSize(screenbitmap::Width * Zoom + 4, screenbitmap::Height * Zoom + 4);
    Picture1->setFrameShape(QFrame::Panel);
    Picture1->setFrameShadow(QFrame::Sunken);
    Picture1->setAlignment(Qt::AlignCenter);
    Picture1->setAutoFillBackground(true);
    QPalette p = Picture1->palette();
    p.setColor(QPalette::Window, Qt::black);
    Picture1->setPalette(p);

    ProgressBar1 = named(new QProgressBar(this), QStringLiteral("ProgressBar1"));
    ProgressBar1->setRange(0, 100);
    ProgressBar1->setValue(0);
    lblMsg = named(new QLabel(this), QStringLiteral("lblMsg"));
    lblMsg->setMinimumWidth(300);

    btnRead = named(new QPushButton(QStringLiteral("接收"), this), QStringLiteral("btnRead"));
    btnStop = named(new QPushButton(QStringLiteral("停止"), this), QStringLiteral("btnStop"));
    btnSave = named(new QPushButton(QStringLiteral("儲存"), this), QStringLiteral("btnSave"));
    btnClose = closeButton(this);
    for (QPushButton *b : {btnRead, btnStop, btnSave})
        b->setMinimumSize(90, 32);
    connect(btnRead, &QPushButton::clicked, this, &frmQM730Online_Screen::btnRead_Click);
    connect(btnStop, &QPushButton::clicked, this, &frmQM730Online_Screen::btnStop_Click);
    connect(btnSave, &QPushButton::clicked, this, &frmQM730Online_Screen::btnSave_Click);

    auto *progress = new QHBoxLayout;
    progress->addWidget(new QLabel(QStringLiteral("接收進度"), this));
    progress->addWidget(ProgressBar1, 1);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(lblMsg, 1);
    buttons->addWidget(btnRead);
    buttons->addWidget(btnStop);
    buttons->addWidget(btnSave);
    buttons->addWidget(btnClose);
    auto *top = new QVBoxLayout(this);
    top->addWidget(Picture1, 0, Qt::AlignHCenter);
    top->addLayout(progress);
    top->addLayout(buttons);
    noDefaultButtons(this);

    connect(&m_ctx.link, &CommLink::screenProgress, this, &frmQM730Online_Screen::onProgress);
    connect(&m_ctx.link, &CommLink::screenCaptured, this, &frmQM730Online_Screen::onCaptured);
    connect(&m_ctx.link, &CommLink::screenCaptureFailed, this, &frmQM730Online_Screen::onFailed);

    setReceiving(false);
    // The picture of the last capture, if one lies in the folder.
    if (showPicture())
        lblMsg->setText(QStringLiteral("前次擷取畫面 ")
                        + QFileInfo(picturePath()).lastModified().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")));
    if (m_ctx.state.Modbus()) {
        btnRead->setEnabled(false);
        lblMsg->setText(QStringLiteral("Modbus RTU 通訊協定無擷取畫面功能"));
    }
}

QString frmQM730Online_Screen::picturePath() const
{
    return m_ctx.state.path(QStringLiteral("\\DispScr.BMP"));
}

void frmQM730Online_Screen::setReceiving(bool on)
{
    m_receiving = on;
    btnStop->setEnabled(on);
    btnRead->setEnabled(!on && !m_ctx.state.Modbus());
    btnClose->setEnabled(!on);
    btnSave->setEnabled(!on && QFile::exists(picturePath()));
}

bool frmQM730Online_Screen::showPicture()
{
    QImage image;
    if (!image.load(picturePath(), "BMP"))
        return false;
    m_picture = image;
    Picture1->setPixmap(QPixmap::fromImage(image.scaled(image.size() * Zoom, Qt::IgnoreAspectRatio,
                                                         Qt::FastTransformation)));
    return true;
}

void frmQM730Online_Screen::btnRead_Click()
{
    if (m_receiving)
        return;
    if (m_ctx.state.Modbus()) {
        lblMsg->setText(QStringLiteral("Modbus RTU 通訊協定無擷取畫面功能"));
        return;
    }
    if (m_ctx.state.CurrentMachine == 0) {
        lblMsg->setText(QStringLiteral("尚無連線的儀表"));
        return;
    }
    ProgressBar1->setValue(0);
    lblMsg->setText(QStringLiteral("畫面接收中…"));
    m_failures = 0;
    m_ctx.requests().readScreen();
    setReceiving(true);
}

void frmQM730Online_Screen::btnStop_Click()
{
    if (!m_receiving)
        return;
    m_ctx.requests().stop();
    setReceiving(false);
    ProgressBar1->setValue(0);
    lblMsg->setText(m_picture.isNull() ? QStringLiteral("已停止接收")
                                       : QStringLiteral("已停止接收，保留原畫面"));
}

void frmQM730Online_Screen::onProgress(int percent)
{
    if (m_receiving)
        ProgressBar1->setValue(std::clamp(percent, 0, 100));
}

void frmQM730Online_Screen::onCaptured()
{
    if (!m_receiving)
        return;
    setReceiving(false);
    if (!showPicture()) {
        lblMsg->setText(QStringLiteral("無法讀取畫面檔 DispScr.BMP"));
        return;
    }
    ProgressBar1->setValue(100);
    lblMsg->setText(QStringLiteral("接收完了"));
}

void frmQM730Online_Screen::onFailed(CaptureFault fault)
{
    if (!m_receiving)
        return;
    const QString kept = m_picture.isNull() ? QString() : QStringLiteral("，保留原畫面");
    switch (fault) {
    case CaptureFault::FileNotWritten:
        setReceiving(false);
        lblMsg->setText(QStringLiteral("無法寫入畫面檔 DispScr.BMP") + kept);
        return;
    case CaptureFault::BadFrame:
        ++m_failures;
        lblMsg->setText(QStringLiteral("畫面資料檢查錯誤%1，重新接收中… [%2]").arg(kept).arg(m_failures));
        break;
    case CaptureFault::NoReply:
        ++m_failures;
        lblMsg->setText(QStringLiteral("儀表無回應%1，重新接收中… [%2]").arg(kept).arg(m_failures));
        break;
    }
    ProgressBar1->setValue(0);
}

void frmQM730Online_Screen::btnSave_Click()
{
    const QString source = picturePath();
    QFile in(source);
    if (!in.open(QIODevice::ReadOnly)) {
        lblMsg->setText(QStringLiteral("尚無畫面檔 DispScr.BMP"));
        btnSave->setEnabled(false);
        return;
    }
    const QString suggested = m_ctx.state.home + QStringLiteral("/DispScr_")
                              + QFileInfo(source).lastModified().toString(QStringLiteral("yyyyMMdd_HHmmss"))
                              + QStringLiteral(".BMP");
    const QString target = askSaveFileName(this, QStringLiteral("儲存畫面"), suggested,
                                           QStringLiteral("*.BMP (*.bmp *.BMP)"), QStringLiteral("BMP"));
    if (target.isEmpty())
        return; // cancelled: nothing copied
    if (QFileInfo(target) == QFileInfo(source)) {
        lblMsg->setText(QStringLiteral("已儲存 : ") + target);
        return;
    }
    const QByteArray bytes = in.readAll();
    if (bytes.size() != in.size() || !writeFileAtomic(target, bytes)) {
        lblMsg->setText(QStringLiteral("儲存失敗 : ") + target);
        return;
    }
    lblMsg->setText(QStringLiteral("已儲存 : ") + target);
}

void frmQM730Online_Screen::reject()
{
    if (m_receiving)
        return; // closing only when no capture runs
    QDialog::reject();
}
