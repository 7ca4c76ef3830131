#include "frmQM730_Set_DSave.h"
#include "Files.h"
#include "ConsoleMessages.h"
#include "Recorder.h"
#include "RunLogger.h"
#include "ScreenContext.h"
#include "frmSelectFolder.h"
#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

QLabel *caption(const QString &text, QWidget *parent)
{
    auto *l = new QLabel(text, parent);
    l->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    return l;
}

template <typename W>
W *named(W *w, const char *name)
{
    w->setObjectName(QLatin1String(name));
    return w;
}

// Shows a text in a list; a text that is not in the list picks the entry
// that means the same to the logger.
void selectText(QComboBox *box, const QString &text, const QString &otherwise)
{
    const int i = box->findText(text);
    box->setCurrentIndex(i >= 0 ? i : box->findText(otherwise));
}

} // namespace

frmQM730_Set_DSave::frmQM730_Set_DSave(ScreenContext &context, QWidget *parent)
    : QDialog(parent), m_ctx(context), m_logger(context.recorder.runLog())
{
    setObjectName(QStringLiteral("frmQM730_Set_DSave"));
    setWindowTitle(QStringLiteral("數據儲存設定"));

    cmbSave = named(new QComboBox(this), "cmbSave");
    txtSaveInterval = named(new QLineEdit(this), "txtSaveInterval");
    cmbUnit = named(new QComboBox(this), "cmbUnit");
    lblFolder = named(new QLabel(this), "lblFolder");
    lblFolder->setFrameShape(QFrame::Panel);
    lblFolder->setFrameShadow(QFrame::Sunken);
    lblFolder->setCursor(Qt::PointingHandCursor);
    lblFolder->setMinimumWidth(260);
    txtFName = named(new QLineEdit(this), "txtFName");
    chbDSaveF = named(new QCheckBox(QStringLiteral("以一天為儲存單位"), this), "chbDSaveF");
    txtDayHH = named(new QLineEdit(this), "txtDayHH");
    txtDayMM = named(new QLineEdit(this), "txtDayMM");
    txtDayHH->setMaximumWidth(40);
    txtDayMM->setMaximumWidth(40);
    auto *lblEX = named(new QLabel(QStringLiteral("EX) Folder : C:\\QM730_Data   File Name :  QM730"), this), "lblEX");
    lblMSG = named(new QLabel(this), "lblMSG");
    lblMSG2 = named(new QLabel(this), "lblMSG2");
    lblCallWin = named(new QLabel(this), "lblCallWin");
    lblCallWin->hide();
    auto *buttons = okCancelRow(this, &btnOK, &btnCancel, false);

    auto *grid = new QGridLayout;
    grid->addWidget(caption(QStringLiteral("儲存"), this), 0, 0);
    grid->addWidget(cmbSave, 0, 1);
    grid->addWidget(caption(QStringLiteral("記錄間隔"), this), 1, 0);
    grid->addWidget(txtSaveInterval, 1, 1);
    grid->addWidget(caption(QStringLiteral("單位"), this), 2, 0);
    grid->addWidget(cmbUnit, 2, 1);
    grid->addWidget(caption(QStringLiteral("儲存路徑"), this), 3, 0);
    grid->addWidget(lblFolder, 3, 1);
    grid->addWidget(caption(QStringLiteral("檔案名稱"), this), 4, 0);
    grid->addWidget(txtFName, 4, 1);
    auto *day = new QHBoxLayout;
    day->addWidget(chbDSaveF);
    day->addSpacing(12);
    day->addWidget(new QLabel(QStringLiteral("TIME :"), this));
    day->addWidget(txtDayHH);
    day->addWidget(new QLabel(QStringLiteral(":"), this));
    day->addWidget(txtDayMM);
    day->addStretch();
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addLayout(day);
    layout->addWidget(lblEX);
    layout->addWidget(lblMSG);
    layout->addWidget(lblMSG2);
    layout->addWidget(lblCallWin);
    layout->addLayout(buttons);

    txtSaveInterval->installEventFilter(this);
    lblFolder->installEventFilter(this);
    connect(chbDSaveF, &QCheckBox::toggled, this, &frmQM730_Set_DSave::showExamples);
    connect(btnOK, &QPushButton::clicked, this, &frmQM730_Set_DSave::btnOK_Click);

    fillControls();
    showExamples();
}

void frmQM730_Set_DSave::setCallWin(const QString &screenName)
{
    lblCallWin->setText(screenName);
}

QString frmQM730_Set_DSave::callWin() const
{
    return lblCallWin->text();
}

// The file's lines as they stand; the running values when it cannot be read.
void frmQM730_Set_DSave::fillControls()
{
    cmbSave->addItems({QStringLiteral("Yes"), QStringLiteral("No")});
    cmbUnit->addItems({QStringLiteral("sec"), QStringLiteral("min")});
    const auto lines = readTextLines(saveSettingsPath(m_logger.home()));
    const QStringList l = lines && lines->size() >= 8 ? *lines : m_logger.settings().toLines();
    selectText(cmbSave, l[0], QStringLiteral("No"));
    txtSaveInterval->setText(l[1]);
    selectText(cmbUnit, l[2], QStringLiteral("sec"));
    lblFolder->setText(l[3]);
    txtFName->setText(l[4]);
    chbDSaveF->setChecked(leadingNumber(l[5]) == 1);
    txtDayHH->setText(l[6]);
    txtDayMM->setText(l[7]);
}

void frmQM730_Set_DSave::showExamples()
{
    if (chbDSaveF->isChecked()) {
        lblMSG->setText(QStringLiteral("-. Meter = 1 :  C:\\QM730_Data\\QM730_001_YYYYMMDD.QM7"));
        lblMSG2->setText(QStringLiteral("-. Meter = 999 :  C:\\QM730_Data\\QM730_999_YYYYMMDD.QM7"));
    } else {
        lblMSG->setText(QStringLiteral("-. Meter = 1 :  C:\\QM730_Data\\QM730_001.QM7"));
        lblMSG2->setText(QStringLiteral("-. Meter = 999 :  C:\\QM730_Data\\QM730_999.QM7"));
    }
}

void frmQM730_Set_DSave::clampInterval()
{
    const double v = leadingNumber(txtSaveInterval->text());
    if (v < 1)
        txtSaveInterval->setText(QStringLiteral("1"));
    else if (v > 60)
        txtSaveInterval->setText(QStringLiteral("60"));
}

bool frmQM730_Set_DSave::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == txtSaveInterval && event->type() == QEvent::FocusOut)
        clampInterval();
    if (watched == lblFolder && event->type() == QEvent::MouseButtonRelease) {
        chooseFolder();
        return true;
    }
    return QDialog::eventFilter(watched, event);
}

void frmQM730_Set_DSave::chooseFolder()
{
    frmSelectFolder picker(lblFolder->text(), m_logger.home(), this);
    if (picker.exec() == QDialog::Accepted && !picker.folder().isEmpty())
        lblFolder->setText(picker.folder());
}

void frmQM730_Set_DSave::btnOK_Click()
{
    if (lblFolder->text().isEmpty()) {
        showConsoleMessage(this, QStringLiteral("選擇儲存路徑"));
        return;
    }
    if (txtFName->text().isEmpty()) {
        showConsoleMessage(this, QStringLiteral("錄入檔案名稱"));
        return;
    }
    // Enter on OK does not take the focus from the interval: clamp it here too.
    clampInterval();
    writeSaveSettingsFile(m_logger.home(),
                          {cmbSave->currentText(), txtSaveInterval->text(), cmbUnit->currentText(), lblFolder->text(),
                           txtFName->text(), chbDSaveF->isChecked() ? QStringLiteral("1") : QStringLiteral("0"),
                           txtDayHH->text(), txtDayMM->text()});

    SaveSettings running;
    running.SaveEnable = cmbSave->currentText();
    running.SaveInterval = leadingInt(txtSaveInterval->text());
    running.SaveUnit = cmbUnit->currentText();
    running.SaveFolder = lblFolder->text();
    running.SaveFileName = txtFName->text();
    m_logger.applySavedSettings(running);

    emit saved(lblCallWin->text());
    accept();
}
