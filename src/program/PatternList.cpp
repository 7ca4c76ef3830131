#include "PatternList.h"
#include "ControllerImage.h"
#include "GroupedHeader.h"
#include "ProgramImage.h"
#include "ScreenLayout.h"
#include <QHeaderView>
#include <QTableWidget>

namespace PatternList {

QTableWidget *create(int rows)
{
    auto *header = new GroupedHeader;
    header->addGroup(WaitTemp, WaitMinutes, QStringLiteral("程式待機"));
    header->setCaption(Name, Name, QStringLiteral("程式組名稱"));
    header->setCaption(WaitTemp, WaitTemp, QStringLiteral("溫度待機"));
    header->setCaption(WaitHumi, WaitHumi, QStringLiteral("濕度待機"));
    header->setCaption(WaitHours, WaitHours, QStringLiteral("待機時間\n小時"));
    header->setCaption(WaitMinutes, WaitMinutes, QStringLiteral("待機時間\n分鐘"));
    header->setCaption(RepeatAll, RepeatAll, QStringLiteral("全部循環"));
    header->setCaption(LinkPattern, LinkPattern, QStringLiteral("連接程式"));
    header->setCaption(StartMode, StartMode, QStringLiteral("起始模式"));
    header->setCaption(StartTemp, StartTemp, QStringLiteral("溫度起始值"));
    header->setCaption(StartHumi, StartHumi, QStringLiteral("濕度起始值"));
    auto *list = named(new QTableWidget(rows, Columns), QStringLiteral("sprdPattern"));
    list->setHorizontalHeader(header);
    list->setSelectionMode(QAbstractItemView::SingleSelection);
    list->setSelectionBehavior(QAbstractItemView::SelectRows);
    list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    list->verticalHeader()->setDefaultSectionSize(22);
    list->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    const int widths[Columns] = {170, 62, 62, 58, 58, 62, 62, 62, 72, 72};
    for (int c = 0; c < Columns; ++c)
        list->setColumnWidth(c, widths[c]);
    return list;
}

void fill(QTableWidget *list, const ControllerImage &image, double fw)
{
    for (int p = 1; p <= list->rowCount(); ++p) {
        auto word = [&](int w) { return patternWord(image, p, w); };
        const QString texts[Columns] = {
            patternName(image, p),
            programText(ProgramValue::WaitBand, word(Pd::WaitTemp), fw),
            programText(ProgramValue::WaitBand, word(Pd::WaitHumi), fw),
            QString::number(highByte(word(Pd::WaitTime))),
            QString::number(lowByte(word(Pd::WaitTime))),
            QString::number(word(Pd::RepeatAll)),
            QString::number(word(Pd::LinkPattern)),
            word(Pd::StartMode) == 1 ? QStringLiteral("S.PV") : QStringLiteral("S.SV"),
            programText(ProgramValue::StartTemp, word(Pd::StartTemp), fw),
            programText(ProgramValue::StartHumi, word(Pd::StartHumi), fw),
        };
        for (int c = 0; c < Columns; ++c) {
            QTableWidgetItem *item = list->item(p - 1, c);
            if (!item) {
                item = new QTableWidgetItem;
                item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
                item->setTextAlignment(c == Name ? Qt::Alignment(Qt::AlignLeft | Qt::AlignVCenter) : Qt::Alignment(Qt::AlignCenter));
                list->setItem(p - 1, c, item);
            }
            if (item->text() != texts[c])
                item->setText(texts[c]);
        }
    }
}

} // namespace PatternList
