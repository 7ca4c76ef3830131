#pragma once
#include "ConsoleState.h"
#include <QDateTime>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QStringList>
#include <memory>

// A console state with the given machines, each online and running unless told otherwise.
inline std::unique_ptr<ConsoleState> makeState(const QString &home, const QList<int> &numbers)
{
    auto state = std::make_unique<ConsoleState>(home);
    QVector<MachineSlot> list;
    for (int n : numbers)
        list.append({n, {}, true, true});
    state->setMachines(list);
    return state;
}

// The six measured words of a slot's column of sprdRCV (rows 1 to 6).
inline void setValues(ConsoleState &state, int slot, const QList<int> &words)
{
    for (int i = 0; i < words.size(); ++i)
        state.image.sprdRCV.setNumber(slot + 1, i + 1, words[i]);
}

inline QByteArray fileBytes(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// The lines of a CR LF file, without their line ends; a missing file gives none.
inline QStringList crlfLines(const QString &path)
{
    QString text = QString::fromUtf8(fileBytes(path));
    if (text.endsWith(QLatin1String("\r\n")))
        text.chop(2);
    return text.isEmpty() ? QStringList() : text.split(QStringLiteral("\r\n"));
}

inline QDateTime at(const QString &stamp)
{
    return QDateTime::fromString(stamp, QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

// Runs one statement on a database file on a connection of its own and
// returns every row's first column (nothing for a statement without rows).
inline QVariantList sql(const QString &file, const QString &statement)
{
    QVariantList out;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase("QSQLITE", "fixture");
        db.setDatabaseName(file);
        db.setConnectOptions("QSQLITE_BUSY_TIMEOUT=10000");
        if (db.open()) {
            QSqlQuery q(db);
            if (!q.exec(statement))
                out << QStringLiteral("failed: ") + statement;
            while (q.next())
                out << q.value(0);
        }
    }
    QSqlDatabase::removeDatabase("fixture");
    return out;
}
