#include "frmQM730_About.h"
#include "ShellOpen.h"
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QPushButton>
#include <QVBoxLayout>

// Set by the distributor; the label shows it as it is.
const char *const frmQM730_About::HomePage = "https://www.example.com/";

frmQM730_About::frmQM730_About(ScreenContext &, QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmQM730_About"));
    setWindowTitle(QStringLiteral("關於"));

    lblModel = new QLabel(QStringLiteral("QM730"), this);
    lblModel->setObjectName(QStringLiteral("lblModel"));
    QFont big = lblModel->font();
    big.setPointSize(big.pointSize() * 2);
    big.setBold(true);
    lblModel->setFont(big);
    lblVersion = new QLabel(QStringLiteral("OV5.1.0"), this);
    lblVersion->setObjectName(QStringLiteral("lblVersion"));
    lblHomePage = new QLabel(QStringLiteral("<u>%1</u>").arg(QLatin1String(HomePage)), this);
    lblHomePage->setObjectName(QStringLiteral("lblHomePage"));
    lblHomePage->setCursor(Qt::PointingHandCursor);
    lblHomePage->setStyleSheet(QStringLiteral("color: blue"));
    lblHomePage->installEventFilter(this);
    btnOK = new QPushButton(QStringLiteral("確認"), this);
    btnOK->setObjectName(QStringLiteral("btnOK"));
    connect(btnOK, &QPushButton::clicked, this, &QDialog::accept);

    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(btnOK);
    auto *top = new QVBoxLayout(this);
    top->addWidget(lblModel, 0, Qt::AlignHCenter);
    top->addWidget(lblVersion, 0, Qt::AlignHCenter);
    top->addWidget(lblHomePage, 0, Qt::AlignHCenter);
    top->addLayout(buttons);
}

bool frmQM730_About::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == lblHomePage && event->type() == QEvent::MouseButtonRelease
        && static_cast<QMouseEvent *>(event)->button() == Qt::LeftButton) {
        shellOpen(QLatin1String(HomePage));
        return true;
    }
    return QDialog::eventFilter(watched, event);
}
