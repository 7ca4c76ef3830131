#pragma once
#include <QDialog>

struct ScreenContext;
class QLabel;
class QPushButton;

// The model word and version; a click on lblHomePage opens the maker's web
// page in the browser.
class frmQM730_About : public QDialog {
    Q_OBJECT
public:
    explicit frmQM730_About(ScreenContext &context, QWidget *parent = nullptr);

    static const char *const HomePage;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QLabel *lblModel;
    QLabel *lblVersion;
    QLabel *lblHomePage;
    QPushButton *btnOK;
};
