#pragma once
#include "Requests.h"
#include <QDialog>
#include <QImage>

class QLabel;
class QProgressBar;
class QPushButton;
struct ScreenContext;

// "擷取儀表當前畫面": a picture of what the foreground controller's display
// shows now. btnRead "接收" asks for it; ProgressBar1 follows the bytes of the
// reply as they come; the link writes the picture to DispScr.BMP in the
// program's folder (320 x 240, 24 bits) and Picture1 shows it. btnStop "停止"
// ends a capture, btnSave "儲存" copies DispScr.BMP to a file of the
// operator's choice.
//
// The picture of the last capture stays on screen until a new one is in: a
// reply that fails its check, that stops coming or that is stopped leaves it
// (and its file), and lblMsg says what happened; the link asks again by itself
// until the picture is in or btnStop is pressed. While a capture runs the
// screen cannot be closed. Modbus RTU has no screen capture: btnRead stays
// disabled and lblMsg says so.
class frmQM730Online_Screen : public QDialog {
    Q_OBJECT
public:
    explicit frmQM730Online_Screen(ScreenContext &context, QWidget *parent = nullptr);

    bool receiving() const { return m_receiving; }

    // Handlers, public so that tests can drive them.
    void btnRead_Click();
    void btnStop_Click();
    void btnSave_Click();

public slots:
    void reject() override; // not while a capture runs

private:
    QString picturePath() const;
    void setReceiving(bool on);
    bool showPicture();
    void onProgress(int percent);
    void onCaptured();
    void onFailed(CaptureFault fault);

    ScreenContext &m_ctx;
    bool m_receiving = false;
    int m_failures = 0; // failed replies of the running capture
    QImage m_picture;   // what Picture1 shows

    QLabel *Picture1;
    QProgressBar *ProgressBar1;
    QLabel *lblMsg;
    QPushButton *btnRead;
    QPushButton *btnStop;
    QPushButton *btnSave;
    QPushButton *btnClose;
};
