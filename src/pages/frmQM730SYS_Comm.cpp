#include "frmQM730SYS_Comm.h"
#include "ConsoleState.h"
#include "EntryField.h"
#include "PageLayout.h"
#include "ParamPage.h"
#include "ScreenContext.h"
#include "ScreenLayout.h"
#include <QPushButton>
#include <QAbstractItemView>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QVBoxLayout>

namespace {

const QStringList Bauds{QStringLiteral("115200"), QStringLiteral("57600"), QStringLiteral("38400"), QStringLiteral("19200"),
                        QStringLiteral("9600"),   QStringLiteral("4800"),  QStringLiteral("2400"),  QStringLiteral("1200")};

// The baud rows count down from 8 (115200) to 1 (1200); 0 is 600, which the
// list does not offer.
int baudWord(int index) { return 8 - index; }
int baudIndex(int word) { return word >= 1 && word <= 8 ? 8 - word : -1; }
int plainWord(int index) { return index; }
int plainIndex(int word) { return word; }
int stopWord(int index) { return index + 1; }
int stopIndex(int word) { return word - 1; }
int dataWord(int index) { return index + 5; }
int dataIndex(int word) { return word - 5; }

QComboBox *list(QWidget *parent, const char *name, const QStringList &items)
{
    auto *box = named(new QComboBox(parent), QLatin1String(name));
    box->addItems(items);
    box->setMinimumWidth(120);
    return box;
}

} // namespace

frmQM730SYS_Comm::frmQM730SYS_Comm(ScreenContext &context, QWidget *parent)
    : QDialog(parent), m_ctx(context), m_page(new ParamPage(context, this))
{
    setObjectName(QStringLiteral("frmQM730SYS_Comm"));
    setWindowTitle(QStringLiteral("通訊設定"));
    PageBinder &b = m_page->binder();

    cmbCommType = list(this, "cmbCommType", {QStringLiteral("RS232"), QStringLiteral("RS485")});
    cmbProtocol = list(this, "cmbProtocol", {});
    cmbBaud = list(this, "cmbBaud", Bauds);
    QComboBox *cmbParity = list(this, "cmbParity", {QStringLiteral("NONE"), QStringLiteral("ODD"), QStringLiteral("EVEN")});
    QComboBox *cmbStop = list(this, "cmbStop", {QStringLiteral("1"), QStringLiteral("2")});
    QComboBox *cmbData = list(this, "cmbData", {QStringLiteral("5"), QStringLiteral("6"), QStringLiteral("7"), QStringLiteral("8")});
    m_lists = {{cmbProtocol, Param::cmbProtocol, plainWord, plainIndex},
               {cmbBaud, Param::cmbBaud, baudWord, baudIndex},
               {cmbParity, Param::cmbParity, plainWord, plainIndex},
               {cmbStop, Param::cmbStop, stopWord, stopIndex},
               {cmbData, Param::cmbData, dataWord, dataIndex}};
    for (const List &l : m_lists)
        connect(l.box, &QComboBox::activated, this, [this, l](int index) { choose(l, index); });

    auto *txtResTime = new EntryField(QStringLiteral("txtResTime"), this);
    auto *txtMC_No = new EntryField(QStringLiteral("txtMC_No"), this);
    for (EntryField *f : {txtResTime, txtMC_No})
        f->setMaximumWidth(120);
    b.field(txtResTime, [this] { return std::optional<ParamRef>(ParamRef(Param::txtResTime, set())); });
    b.field(txtMC_No, [this] { return std::optional<ParamRef>(ParamRef(Param::txtMC_No, set())); });

    connect(cmbCommType, &QComboBox::currentIndexChanged, this, [this] {
        m_page->binder().discardEdits();
        m_page->binder().load();
    });

    auto *grid = new QGridLayout;
    addPageLine(grid, QStringLiteral("通訊埠"), cmbCommType);
    addPageLine(grid, QStringLiteral("通訊協定"), cmbProtocol);
    addPageLine(grid, QStringLiteral("傳輸速率"), cmbBaud);
    addPageLine(grid, QStringLiteral("同位檢查"), cmbParity);
    addPageLine(grid, QStringLiteral("停止位元"), cmbStop);
    addPageLine(grid, QStringLiteral("資料位元"), cmbData);
    addPageLine(grid, QStringLiteral("應答時間"), txtResTime);
    addPageLine(grid, QStringLiteral("機台編號"), txtMC_No);
    auto *top = new QVBoxLayout(this);
    top->addLayout(grid);
    top->addLayout(closeRow(this));
    noDefaultButtons(this);

    b.onChange([this] { applyRules(); });
    m_page->open();
}

int frmQM730SYS_Comm::set() const
{
    return cmbCommType->currentIndex() == 1 ? 2 : 1;
}

void frmQM730SYS_Comm::choose(const List &l, int index)
{
    m_ctx.requests().writeParameter(ParamRef(l.param, set()), quint16(l.wordOf(index)));
}

void frmQM730SYS_Comm::applyRules()
{
    const ControllerImage &image = m_ctx.state.image;
    // Modbus RTU is a protocol of firmware 2.3 and above.
    QStringList protocols{QStringLiteral("PCLINK"), QStringLiteral("PCLINK+crc")};
    if (image.firmwareVersion() >= 2.3)
        protocols << QStringLiteral("Modbus RTU");
    if (cmbProtocol->count() != protocols.size()) {
        cmbProtocol->clear();
        cmbProtocol->addItems(protocols);
    }
    for (const List &l : m_lists) {
        if (l.box->view()->isVisible())
            continue; // the operator is choosing
        const std::optional<qint64> word = ParamWord(image, ParamRef(l.param, set()));
        int index = word ? l.indexOf(int(*word)) : -1;
        if (index < 0 || index >= l.box->count())
            index = -1;
        l.box->setCurrentIndex(index);
        l.box->setPlaceholderText(l.box == cmbBaud && word == 0 ? QStringLiteral("600") : QString());
    }
}
