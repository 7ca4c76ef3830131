#pragma once
#include <QApplication>
#include <QDialog>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QQueue>
#include <QTimer>
#include <functional>

// Answers modal windows in the order they open, each with the next queued
// answer; `met` gets a message box's text or a dialog's object name. A modal
// window with no answer left is closed and noted in `unexpected`.
class ModalDriver : public QObject {
public:
    using Answer = std::function<void(QWidget *)>;
    QStringList met, unexpected;

    ModalDriver()
    {
        connect(&m_timer, &QTimer::timeout, this, &ModalDriver::tick);
        m_timer.start(5);
    }
    bool done() const { return m_answers.isEmpty(); }
    void then(Answer a) { m_answers.enqueue(std::move(a)); }
    void box(QMessageBox::StandardButton button = QMessageBox::Ok)
    {
        then([button](QWidget *w) { static_cast<QMessageBox *>(w)->button(button)->click(); });
    }
    // Optionally types into a line edit, then clicks a button.
    void dialog(const char *button, const char *field = nullptr, const QString &text = {})
    {
        then([=](QWidget *w) {
            if (field)
                w->findChild<QLineEdit *>(QLatin1String(field))->setText(text);
            w->findChild<QPushButton *>(QLatin1String(button))->click();
        });
    }

    // A file dialog gets the path typed as the file's name and is accepted (a
    // question to replace an existing file comes as the next modal window).
    void file(const QString &path)
    {
        then([path](QWidget *w) {
            if (auto *name = w->findChild<QLineEdit *>(QStringLiteral("fileNameEdit")))
                name->setText(path);
            else
                static_cast<QFileDialog *>(w)->selectFile(path);
            static_cast<QDialog *>(w)->accept();
        });
    }

private:
    void tick()
    {
        QWidget *w = QApplication::activeModalWidget();
        if (!w || !w->isVisible() || m_busy.contains(w))
            return;
        auto *b = qobject_cast<QMessageBox *>(w);
        const QString name = b ? b->text() : w->objectName();
        if (m_answers.isEmpty()) {
            unexpected << name;
            static_cast<QDialog *>(w)->reject();
            return;
        }
        met << name;
        // From a timer of its own: a timer is not fired again while its slot
        // runs, and the answer may open a nested modal window.
        m_busy << w;
        QTimer::singleShot(0, this, [this, w, a = m_answers.dequeue(), guard = QPointer<QWidget>(w)] {
            if (guard)
                a(w);
            m_busy.removeOne(w);
        });
    }

    QTimer m_timer;
    QQueue<Answer> m_answers;
    QList<QWidget *> m_busy;
};
