#pragma once
// Shared by the screen tests on the simulated line.
#include "ConsoleCore.h"
#include <QtTest>

// The console is back at its poll (after the scan, a chain or a write).
inline bool polling(const ConsoleState &s)
{
    return s.CmdState == Cmd::Poll || s.CmdState == Cmd::PollValues;
}

#ifdef QT_WIDGETS_LIB
#include <QLineEdit>

// A field typed into and ended with Enter; Chinese text comes as one key
// event carrying it, as an input method hands it over.
inline void enter(QLineEdit *e, const QString &text)
{
    e->setFocus();
    e->selectAll();
    if (std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x80; }))
        QTest::keyClicks(e, text);
    else
        QTest::sendKeyEvent(QTest::Click, e, Qt::Key_unknown, text, Qt::NoModifier);
    QTest::keyClick(e, Qt::Key_Return);
}
#endif

// A "protocol" column with a row for each protocol named.
inline void protocolRows(std::initializer_list<const char *> protocols)
{
    QTest::addColumn<QString>("protocol");
    for (const char *p : protocols)
        QTest::newRow(p) << QString::fromLatin1(p);
}
