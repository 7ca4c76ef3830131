#include "frmSys_AlarmCode.h"
#include "ScreenLayout.h"
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

const QList<frmSys_AlarmCode::AlarmType> &frmSys_AlarmCode::types()
{
    static const QList<AlarmType> list = {
        {1, "偏差上限警報"},       {2, "偏差下限警報"},       {3, "絕對值上限警報"},
        {4, "絕對值下限警報"},     {5, "偏差上下限警報"},     {6, "偏差上下限範圍內警報"},
        {7, "待機偏差上限警報"},   {8, "待機偏差下限警報"},
    };
    return list;
}

QString frmSys_AlarmCode::codeText(int code)
{
    return code == 0 ? QStringLiteral("--") : QStringLiteral("%1").arg(code, 2, 10, QLatin1Char('0'));
}

frmSys_AlarmCode::frmSys_AlarmCode(ScreenContext &, QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmSys_AlarmCode"));
    setWindowTitle(QStringLiteral("警報類型選擇"));

    lblRow = named(new QLabel(this), QStringLiteral("lblRow"));
    vaSpread1 = named(new QTableWidget(int(types().size()), 2, this), QStringLiteral("vaSpread1"));
    vaSpread1->setHorizontalHeaderLabels({QStringLiteral("類型"), QStringLiteral("說明")});
    vaSpread1->verticalHeader()->hide();
    vaSpread1->setEditTriggers(QAbstractItemView::NoEditTriggers);
    vaSpread1->setSelectionBehavior(QAbstractItemView::SelectRows);
    vaSpread1->setSelectionMode(QAbstractItemView::SingleSelection);
    for (int r = 0; r < types().size(); ++r) {
        vaSpread1->setItem(r, 0, new QTableWidgetItem(codeText(types()[r].code)));
        vaSpread1->setItem(r, 1, new QTableWidgetItem(QString::fromUtf8(types()[r].name)));
    }
    vaSpread1->horizontalHeader()->setSectionResizeMode(1, QHeaderView::Stretch);
    vaSpread1->setMinimumSize(320, 260);
    connect(vaSpread1, &QTableWidget::cellDoubleClicked, this, [this](int row, int) { chooseRow(row); });

    btnAlarmOff = named(new QPushButton(QStringLiteral("關閉"), this), QStringLiteral("btnAlarmOff"));
    connect(btnAlarmOff, &QPushButton::clicked, this, [this] {
        m_choice = 0;
        accept();
    });

    auto *bottom = new QHBoxLayout;
    bottom->addWidget(lblRow);
    bottom->addStretch();
    bottom->addWidget(btnAlarmOff);
    auto *top = new QVBoxLayout(this);
    top->addWidget(vaSpread1);
    top->addLayout(bottom);
}

void frmSys_AlarmCode::setRow(int row)
{
    lblRow->setText(QString::number(row));
}

void frmSys_AlarmCode::chooseRow(int row)
{
    if (row < 0 || row >= types().size())
        return;
    m_choice = types()[row].code;
    accept();
}

std::optional<int> frmSys_AlarmCode::choose(ScreenContext &context, QWidget *parent, int row)
{
    frmSys_AlarmCode chooser(context, parent);
    chooser.setRow(row);
    chooser.exec();
    return chooser.choice();
}
