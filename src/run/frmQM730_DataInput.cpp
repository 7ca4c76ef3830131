#include "frmQM730_DataInput.h"
#include "ConsoleMessages.h"
#include "ConsoleState.h"
#include "Encodings.h"
#include "EntryField.h"
#include "ScreenContext.h"
#include "ScreenLayout.h"
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

frmQM730_DataInput::frmQM730_DataInput(ScreenContext &context, QWidget *parent) : QDialog(parent), m_ctx(context)
{
    setObjectName(QStringLiteral("frmQM730_DataInput"));
    setWindowTitle(QStringLiteral("資料登錄"));
    auto *grid = new QGridLayout;
    lblMC_No = valueBox(QStringLiteral("lblMC_No"), 120);
    lblOld = valueBox(QStringLiteral("lblOld"), 120);
    txtNew = new EntryField(QStringLiteral("txtNew"), this);
    txtNew->setMinimumWidth(120);
    grid->addWidget(caption(QStringLiteral("機號")), 0, 0);
    grid->addWidget(lblMC_No, 0, 1);
    grid->addWidget(caption(QStringLiteral("現在值")), 1, 0);
    grid->addWidget(lblOld, 1, 1);
    grid->addWidget(caption(QStringLiteral("變更值")), 2, 0);
    grid->addWidget(txtNew, 2, 1);

    auto *main = new QVBoxLayout(this);
    main->addLayout(grid);
    main->addLayout(okCancelRow(this, &btnOK, &btnCancel, false));
    noDefaultButtons(this);
    setMinimumWidth(280);

    // Leaving the field clamps it; Enter clamps and confirms.
    m_entry = new EntryBinding(txtNew, this);
    m_entry->setRange([this]() -> std::optional<EntryBinding::Range> {
        const auto kind = kindOf(windowTitle(), m_ctx.state.PatternCount());
        if (!kind)
            return std::nullopt;
        return EntryBinding::Range{kind->low, kind->high, {}};
    });
    m_entry->onCommit([this](const QString &, const QString &) { btnOK_Click(); });
    connect(btnOK, &QPushButton::clicked, this, &frmQM730_DataInput::btnOK_Click);
}

std::optional<frmQM730_DataInput::Kind> frmQM730_DataInput::kindOf(const QString &title, int patternCount)
{
    if (title == QLatin1String("TEMP. SV") || title == QStringLiteral("溫度 SV"))
        return Kind{-100, 200, 2, 10000};
    if (title == QLatin1String("HUMI. SV") || title == QStringLiteral("濕度 SV"))
        return Kind{0, 100, 1, 0};
    if (title == QLatin1String("START PTN"))
        return Kind{1, double(std::max(1, patternCount)), 0, 0};
    if (title == QLatin1String("START SEG"))
        return Kind{1, 100, 0, 0};
    if (title == QLatin1String("TEMP. PID") || title == QLatin1String("HUMI. PID") || title == QStringLiteral("溫度 PID")
        || title == QStringLiteral("濕度 PID"))
        return Kind{1, 16, 0, 0};
    return std::nullopt;
}

void frmQM730_DataInput::ask(const QString &kind, int machine, const QString &present)
{
    setWindowTitle(kind);
    lblMC_No->setText(QString::number(machine));
    lblOld->setText(present);
    txtNew->setText(present);
    txtNew->selectAll();
    txtNew->setFocus();
}

void frmQM730_DataInput::btnOK_Click()
{
    m_entry->clamp();
    quint16 word = 0;
    if (const auto kind = kindOf(windowTitle(), m_ctx.state.PatternCount()))
        word = clampWord(roundHalfEvenText(txtNew->text(), kind->pow10, kind->offset));
    m_inputWord = wordBytes(word);
    emit entered(word);
    accept();
}
