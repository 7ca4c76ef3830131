#include "frmQM730SYS_DO.h"
#include "ConsoleState.h"
#include "Files.h"
#include "PageLayout.h"
#include "ParamPage.h"
#include "ParamTable.h"
#include "ScreenContext.h"
#include "ScreenLayout.h"
#include <QPushButton>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QTableWidget>
#include <QVBoxLayout>

namespace {

enum Column { Relay = 1, OpenCollector = 2, Value = 3, Unit = 4 };

// A firmware of each layout, to tell the lines that have a value row.
constexpr double CurrentLayout = 2.2;
constexpr double LegacyLayout = 2.09;

// The lines of sprdDO2 (firmware 2.2 and above).
QList<const char *> currentItems()
{
    return {"I/S 1", "I/S 2", "I/S 3", "I/S 4", "I/S 5", "I/S 6", "I/S 7", "I/S 8",
            "T/S 1", "T/S 2", "T/S 3", "T/S 4", "T/S 5", "T/S 6", "T/S 7", "T/S 8",
            "T1 ON/OFF", "T2 ON/OFF", "T3 ON/OFF", "T4 ON/OFF", "H1 ON/OFF",
            "S.A/S 1", "S.A/S 2", "S.A/S 3", "S.A/S 4", "P.A/S 1", "P.A/S 2", "P.A/S 3", "P.A/S 4",
            "T.RUN", "H.RUN", "RUN/STOP", "WAIT", "HOLD", "Sensor BOUT", "D/I ERROR", "Normal end",
            "Delay Sig.1", "Delay Sig.2", "DRAIN Signal", "Temp.UP", "Temp.SOAK", "Temp.DOWN",
            "Humi.UP", "Humi.SOAK", "Humi.DOWN"};
}

// Units of the value cells of sprdDO2, by line.
QString currentUnit(int line)
{
    if (line >= 17 && line <= 21)
        return QStringLiteral("分");
    switch (line) {
    case 36: case 37: case 38: return QStringLiteral("秒");
    case 39: case 40: case 42: case 45: return QStringLiteral("分");
    case 41: case 43: return QStringLiteral("[℃]");
    }
    return {};
}

// The lines of sprdDO (below firmware 2.2).
QList<const char *> legacyItems()
{
    return {"I/S 1", "I/S 2", "I/S 3", "I/S 4", "I/S 5", "I/S 6", "I/S 7", "I/S 8",
            "T/S 1", "T/S 2", "T/S 3", "T/S 4", "T/S 5", "T/S 6", "T/S 7", "T/S 8",
            "A/S 1", "A/S 2", "A/S 3", "A/S 4", "Sensor BOUT", "T.RUN", "H.RUN", "RUN/STOP", "WAIT", "HOLD",
            "Temp.UP", "Temp.SOAK", "Temp.DOWN", "Humi.UP", "Humi.SOAK", "Humi.DOWN", "D/I ERROR",
            "Delay Sig.1", "Delay Sig.2", "Normal end"};
}

QString legacyUnit(int line)
{
    switch (line) {
    case 27: case 29: return QStringLiteral("[℃]");
    case 28: case 31: case 35: return QStringLiteral("分");
    case 33: case 34: return QStringLiteral("秒");
    }
    return {};
}

QTableWidget *doTable(QWidget *parent, const char *name, const QList<const char *> &items)
{
    QStringList lines;
    for (const char *item : items)
        lines << QLatin1String(item);
    QTableWidget *t = pageTable(parent, QLatin1String(name),
                                {QStringLiteral("繼電器編號"), QStringLiteral("O/C編號"), QStringLiteral("設定值"),
                                 QStringLiteral("單位")},
                                lines);
    t->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    t->setMinimumSize(480, 520);
    return t;
}

} // namespace

frmQM730SYS_DO::frmQM730SYS_DO(ScreenContext &context, QWidget *parent)
    : QDialog(parent), m_ctx(context), m_page(new ParamPage(context, this))
{
    setObjectName(QStringLiteral("frmQM730SYS_DO"));
    setWindowTitle(QStringLiteral("D/O 狀態設定"));

    QTableWidget *sprdDO2 = doTable(this, "sprdDO2", currentItems());
    QTableWidget *sprdDO = doTable(this, "sprdDO", legacyItems());
    m_current = bindTable(sprdDO2, true);
    m_legacy = bindTable(sprdDO, false);

    auto *top = new QVBoxLayout(this);
    top->addWidget(sprdDO2);
    top->addWidget(sprdDO);
    top->addLayout(closeRow(this));
    noDefaultButtons(this);

    m_page->binder().onChange([this] { applyRules(); });
    m_page->open();
}

ParamTable *frmQM730SYS_DO::bindTable(QTableWidget *table, bool current)
{
    auto *t = new ParamTable(m_page->binder(), table);
    const Param relayParam = current ? Param::sprdDO2_Relay : Param::sprdDO_Relay;
    const Param valueParam = current ? Param::sprdDO2_Value : Param::sprdDO_Value;
    const EntryBinding::Range byte{0, 255, QStringLiteral("0")};
    for (int line = 1; line <= table->rowCount(); ++line) {
        const ParamRef relay(relayParam, line);
        // The relay number in the low byte, the O/C number in the high byte.
        auto byteCell = [this, t, relay, line, byte](int column, bool high) {
            t->edit(
                line, column,
                [this, relay, high] {
                    const std::optional<qint64> word = ParamWord(m_ctx.state.image, relay);
                    return word ? QString::number(high ? highByte(*word) : lowByte(*word)) : QString();
                },
                [this, relay, high](const QString &text) {
                    const qint64 word = ParamWord(m_ctx.state.image, relay).value_or(0);
                    const int value = leadingInt(text);
                    const quint16 packed =
                        high ? packBytes(value, lowByte(word)) : packBytes(highByte(word), value);
                    m_ctx.requests().writeParameter(relay, packed);
                });
            t->setRange(line, column, byte);
        };
        byteCell(Relay, false);
        byteCell(OpenCollector, true);
        const ParamRef value(valueParam, line);
        if (RowOf(value, current ? CurrentLayout : LegacyLayout) != 0)
            t->param(line, Value, value);
        t->setText(line, Unit, current ? currentUnit(line) : legacyUnit(line));
    }
    return t;
}

void frmQM730SYS_DO::applyRules()
{
    const bool current = m_ctx.state.image.isCurrentLayout();
    m_current->table()->setVisible(current);
    m_legacy->table()->setVisible(!current);
}
