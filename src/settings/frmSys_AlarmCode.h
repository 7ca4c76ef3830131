#pragma once
#include <QDialog>
#include <optional>

class QLabel;
class QPushButton;
class QTableWidget;
struct ScreenContext;

// "警報類型選擇": the alarm-type chooser of the system alarm page and the
// pattern editor. vaSpread1 lists the alarm types; a double click on one
// chooses its code, btnAlarmOff ("關閉") chooses 0, no alarm. The caller
// writes its own row with the choice ("00" or "--" in its cell and the word
// to the controller), so the chooser needs to know nothing of the caller's
// parameters or their addresses; lblRow shows the caller's row.
class frmSys_AlarmCode : public QDialog {
    Q_OBJECT
public:
    explicit frmSys_AlarmCode(ScreenContext &context, QWidget *parent = nullptr);

    void setRow(int row);
    // The code chosen, 0 for no alarm; none when the chooser was closed
    // otherwise.
    std::optional<int> choice() const { return m_choice; }

    // Opens the chooser for a row and returns the choice.
    static std::optional<int> choose(ScreenContext &context, QWidget *parent, int row);

    // The alarm types the chooser offers, by code.
    struct AlarmType {
        int code;
        const char *name;
    };
    static const QList<AlarmType> &types();
    // "00"-formatted code, or "--" for 0.
    static QString codeText(int code);

private:
    void chooseRow(int row);

    std::optional<int> m_choice;
    QLabel *lblRow;
    QTableWidget *vaSpread1;
    QPushButton *btnAlarmOff;
};
