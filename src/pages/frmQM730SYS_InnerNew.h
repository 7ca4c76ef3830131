#pragma once
#include <QDialog>

class EntryBinding;
class EntryField;
class OptionGroup;
class ParamPage;
class QLabel;
class QWidget;
struct ScreenContext;

// "內部信號設定": the eight inner signals, software switches that turn on
// when a chosen value lies in or out of a band. txtIS_NO chooses the signal
// (btnIS_UP and btnIS_DN step it round from 8 to 1 and from 1 to 8); the page
// shows its seven rows: source, type, the band, its mode and the delay
// (picIS_Old), or for the ON/OFF type of firmware 2.14 up to 2.2 the set
// values and differences of picIS_New. From firmware 2.2 on picT_OnOff edits
// the ON/OFF bands of the five lines T1 to T4 and H1. The values of a signal
// are clamped when they are committed, by the source and type chosen.
class frmQM730SYS_InnerNew : public QDialog {
    Q_OBJECT
public:
    explicit frmQM730SYS_InnerNew(ScreenContext &context, QWidget *parent = nullptr);

    int signalNo() const { return m_signal; }

private:
    void selectSignal(int n);
    QString clampRange(int index, const QString &text) const;
    void bindOnOffTable(QWidget *table);
    void applyRules();

    ScreenContext &m_ctx;
    ParamPage *m_page;
    int m_signal = 1;
    int m_litMode = -1; // the mode whose band is drawn lit
    EntryBinding *m_signalNo;
    OptionGroup *m_source;
    OptionGroup *m_type;
    OptionGroup *m_direct;
    QList<EntryField *> m_range; // txtIS_Range 0 (low) and 1 (high)
    QLabel *lblUnit_IS;
    QWidget *picIS_Old;
    QWidget *picIS_New;
    QWidget *picT_OnOff;
};
