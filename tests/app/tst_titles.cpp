// Window titles as the window system shows them (under Xvfb): exactly the
// screens' own, with nothing of the application's name added.
#include "ConsoleApplication.h"
#include "MainFixture.h"
#include "frmQM730_About.h"
#include <QProcess>

namespace {
// _NET_WM_NAME of a window, read back from the X server.
QString shownTitle(QWidget *w)
{
    QProcess xprop;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    xprop.setProcessEnvironment(env);
    xprop.start(QStringLiteral("xprop"),
                {QStringLiteral("-id"), QString::number(w->winId()), QStringLiteral("-notype"),
                 QStringLiteral("_NET_WM_NAME")});
    if (!xprop.waitForFinished(5000))
        return QStringLiteral("(xprop did not answer)");
    const QString out = QString::fromUtf8(xprop.readAllStandardOutput()).trimmed();
    const qsizetype first = out.indexOf(u'"'), last = out.lastIndexOf(u'"');
    return first >= 0 && last > first ? out.mid(first + 1, last - first - 1) : out;
}
} // namespace

class TitlesTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase()
    {
        if (QGuiApplication::platformName() != QLatin1String("xcb"))
            QSKIP("needs an X server (run under xvfb-run)");
        prepareConsoleApplication(*qApp);
    }

    void titlesAreTheScreensOwn()
    {
        MainFixture f;
        QTRY_COMPARE(shownTitle(f.window.get()), QStringLiteral("QM730 OV5.1.0"));
        frmQM730_About about(f.core->context(), f.window.get());
        about.show();
        QVERIFY(QTest::qWaitForWindowExposed(&about));
        QTRY_COMPARE(shownTitle(&about), QStringLiteral("關於"));
    }
};

QTEST_MAIN(TitlesTest)
#include "tst_titles.moc"
