#pragma once
#include <QDialog>
#include <QList>
#include <functional>

class EntryField;
class ParamPage;
class ParamTable;
class QLabel;
class QTableWidget;
struct ScreenContext;

// "PID 設定": the zone boundaries of temperature and humidity, the AT gains
// and the zone choice; btnPID_Zone opens the table of PID sets.
class frmQM730SYS_PID : public QDialog {
    Q_OBJECT
public:
    explicit frmQM730SYS_PID(ScreenContext &context, QWidget *parent = nullptr);

    // The four boundaries as the fields show them now.
    QList<double> zones(bool temperature) const;

private:
    void buildZones(bool temperature, class QGridLayout *grid, int column);
    void btnPID_Zone_Click();

    ScreenContext &m_ctx;
    ParamPage *m_page;
    QList<EntryField *> m_temp, m_humi;
};

// "PID設定" ("溫度/濕度PID設定"): sprdPID, the PID sets of the 16 zones,
// six columns of temperature and six of humidity. A confirmed cell is
// written at once. The lines of zones that the boundaries leave out (a
// boundary below the one before it) are hidden; below firmware 1.8 the
// output-limit columns are.
class frmQM730SYS_PID_Val : public QDialog {
    Q_OBJECT
public:
    // The four boundaries of a side, in the order of their fields.
    using Boundaries = std::function<QList<double>(bool temperature)>;

    explicit frmQM730SYS_PID_Val(ScreenContext &context, QWidget *parent = nullptr);
    // Where the boundaries come from: the PID page's fields when it opens
    // this table; by default the boundary rows of the image.
    void setBoundaries(Boundaries boundaries);

private:
    void applyLayout();

    ScreenContext &m_ctx;
    ParamPage *m_page;
    QTableWidget *sprdPID;
    QLabel *m_tempHeading;
    QLabel *m_humiHeading;
    Boundaries m_boundaries;
};
