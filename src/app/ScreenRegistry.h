#pragma once
#include <QString>
#include <functional>
#include <memory>
#include <vector>

class QDialog;
class QWidget;
struct ScreenContext;

// Every screen of the console by its name, with what happens before it
// opens and how it is made. The main screen's menu opens screens only
// through it, and a test opens every screen it can make. A screen that is
// not built yet has no maker; its menu entries do nothing.
class ScreenRegistry {
public:
    // What the console does before the screen opens.
    enum Before {
        Nothing = 0,
        RefreshOnOpen = 1,  // the next poll cycle reads the parameter block and refreshes the screen
        ReadParameters = 2, // a read of the parameter block is posted first
    };
    // Makes the screen, ready to be shown modally; null: nothing to show.
    using Maker = std::function<std::unique_ptr<QDialog>(ScreenContext &, QWidget *parent)>;

    struct Entry {
        QString name;
        int before = Nothing;
        Maker make;
    };

    // The console's screens.
    static ScreenRegistry console();

    const std::vector<Entry> &entries() const { return m_entries; }
    const Entry *find(const QString &name) const;
    // Replaces how a screen is made (a new entry when the name is unknown).
    void setMaker(const QString &name, Maker make);

    // The before steps of a screen alone.
    void prepare(const QString &name, ScreenContext &context) const;
    // The before steps, then the screen made and run modally. False when the
    // screen has no maker (and then nothing at all happens).
    bool open(const QString &name, ScreenContext &context, QWidget *parent) const;

private:
    std::vector<Entry> m_entries;
};
