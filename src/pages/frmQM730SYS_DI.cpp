#include "frmQM730SYS_DI.h"
#include "ButtonColour.h"
#include "ConsoleState.h"
#include "Files.h"
#include "PageLayout.h"
#include "ParamPage.h"
#include "ParamTable.h"
#include "ProgramImage.h"
#include "ScreenContext.h"
#include "ScreenLayout.h"
#include <QPushButton>
#include <QAbstractButton>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QTableWidget>
#include <QVBoxLayout>

namespace {

constexpr int Inputs = 8;
constexpr int Functions = 3;
constexpr int NameBytes = 29; // a text row on the wire

// The action byte of a checked cell: an input's action is 1 from firmware
// 2.37 on and 8 below; a function's is always 8.
int inputAction(double firmware) { return firmware >= 2.37 ? 1 : 8; }
constexpr int FunctionAction = 8;

} // namespace

frmQM730SYS_DI::frmQM730SYS_DI(ScreenContext &context, QWidget *parent)
    : QDialog(parent), m_ctx(context), m_page(new ParamPage(context, this))
{
    setObjectName(QStringLiteral("frmQM730SYS_DI"));
    setWindowTitle(QStringLiteral("D/I 狀態設定"));
    PageBinder &b = m_page->binder();
    const EntryBinding::Range byte{0, 255, QStringLiteral("0")};

    // The functions and the input each is tied to.
    QTableWidget *sprdDI_State =
        pageTable(this, QStringLiteral("sprdDI_State"),
                  {QStringLiteral("功能"), QStringLiteral("動作"), QStringLiteral("D/I 編號")},
                  {QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3")});
    sprdDI_State->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    fitTableHeight(sprdDI_State);
    m_functions = new ParamTable(b, sprdDI_State);
    const QStringList functions{QStringLiteral("運轉/停止"), QStringLiteral("跳段"), QStringLiteral("保持")};
    for (int i = 1; i <= Functions; ++i) {
        const ParamRef ref(Param::sprdDI_State, i);
        m_functions->setText(i, 1, functions[i - 1]);
        m_functions->check(
            i, 2, [this, ref] { return highByte(ParamWord(m_ctx.state.image, ref).value_or(0)) != 0; },
            [this, ref](bool on) { writeByte(ref, true, on ? FunctionAction : 0); });
        m_functions->edit(
            i, 3,
            [this, ref] {
                const std::optional<qint64> word = ParamWord(m_ctx.state.image, ref);
                return word ? QString::number(lowByte(*word)) : QString();
            },
            [this, ref](const QString &text) { writeByte(ref, false, leadingInt(text)); });
        m_functions->setRange(i, 3, EntryBinding::Range{0, Inputs, QStringLiteral("0")});
    }

    // The bits of the input state word.
    QStringList numbers;
    for (int i = 1; i <= Inputs; ++i)
        numbers << QString::number(i);
    m_status = optionButtons(this, QStringLiteral("btnDI_Status"), numbers);
    for (int i = 0; i < Inputs; ++i) {
        m_status[i]->setMinimumWidth(40);
        connect(m_status[i], &QAbstractButton::clicked, this, [this, i] { toggleInput(i); });
    }

    // The inputs: name, action, wait time.
    QStringList inputs;
    for (int i = 1; i <= Inputs; ++i)
        inputs << QStringLiteral("D/I %1").arg(i);
    QTableWidget *sprdDI = pageTable(this, QStringLiteral("sprdDI"),
                                     {QStringLiteral("名稱"), QStringLiteral("動作"), QStringLiteral("待機時間")}, inputs);
    sprdDI->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
    sprdDI->setMinimumWidth(420);
    fitTableHeight(sprdDI);
    m_inputs = new ParamTable(b, sprdDI);
    for (int i = 1; i <= Inputs; ++i) {
        const ParamRef ref(Param::sprdDI, i);
        // The name is text row i, not a parameter row.
        m_inputs->edit(
            i, 1, [this, i] { return m_ctx.state.image.sprdTD.text(1, i); },
            [this, i](const QString &text) {
                m_ctx.state.image.sprdTD.setText(1, i, tdFitText(text, NameBytes));
                m_ctx.requests().writeTextRow(i);
            });
        m_inputs->check(
            i, 2, [this, ref] { return highByte(ParamWord(m_ctx.state.image, ref).value_or(0)) != 0; },
            [this, ref](bool on) { writeByte(ref, true, on ? inputAction(m_ctx.state.FirmwareVersion()) : 0); });
        m_inputs->edit(
            i, 3,
            [this, ref] {
                const std::optional<qint64> word = ParamWord(m_ctx.state.image, ref);
                return word ? QString::number(lowByte(*word)) : QString();
            },
            [this, ref](const QString &text) { writeByte(ref, false, leadingInt(text)); });
        m_inputs->setRange(i, 3, byte);
    }

    auto *grid = new QGridLayout;
    addPageLine(grid, QStringLiteral("D/I 輸入狀態"), strip(m_status));
    auto *top = new QVBoxLayout(this);
    top->addWidget(sprdDI_State);
    top->addLayout(grid);
    top->addWidget(sprdDI);
    top->addLayout(closeRow(this));
    noDefaultButtons(this);

    b.onChange([this] { applyRules(); });
    m_page->open();
    m_ctx.requests().readTextRows(1, Inputs);
}

void frmQM730SYS_DI::writeByte(ParamRef ref, bool high, int value)
{
    const qint64 word = ParamWord(m_ctx.state.image, ref).value_or(0);
    m_ctx.requests().writeParameter(ref, high ? packBytes(value, lowByte(word)) : packBytes(highByte(word), value));
}

void frmQM730SYS_DI::toggleInput(int bit)
{
    const std::optional<qint64> word = ParamWord(m_ctx.state.image, Param::btnDI_Status);
    if (!word)
        return;
    m_ctx.requests().writeParameter(Param::btnDI_Status, quint16(*word ^ (1 << bit)));
    applyRules();
}

void frmQM730SYS_DI::applyRules()
{
    const std::optional<qint64> word = ParamWord(m_ctx.state.image, Param::btnDI_Status);
    for (int i = 0; i < Inputs; ++i) {
        ButtonColour::set(m_status[i], (word && ((*word >> i) & 1)) ? ButtonColour::Selected : ButtonColour::FaceColour);
        m_status[i]->setEnabled(word.has_value()); // nothing to turn over before the word is read
    }
}
