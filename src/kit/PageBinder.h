#pragma once
#include "Dictionary.h"
#include "EntryField.h"
#include <QList>
#include <QObject>
#include <functional>
#include <optional>
#include <vector>

class QAbstractButton;
struct ScreenContext;

// Stores a value typed for a parameter and writes its row: the image cell
// takes the value scaled by the encoding (exact, not rounded), the word is
// rounded half to even. The encoding is the parameter's at the firmware
// unless one is given. False when the firmware has no such row.
bool commitParameterText(ScreenContext &context, ParamRef ref, const QString &text,
                         std::optional<Encoding> encoding = std::nullopt,
                         RowAddressing addressing = RowAddressing::Normal);

// A group of option buttons bound to one parameter row. Each button stands
// for a word, which may differ between the layouts (legacy 0 and 1, current
// 1 and 2); a negative word: the button has no word in that layout and its
// click does nothing. The group's state is its colours: the chosen button has
// the colour 65280, the others the face colour, and selected() reads that back.
class OptionGroup : public QObject {
    Q_OBJECT
public:
    using Which = std::function<std::optional<ParamRef>()>;

    OptionGroup(ScreenContext &context, ParamRef ref, QList<QAbstractButton *> buttons, QList<int> currentWords,
                QList<int> legacyWords, QObject *parent);
    // A group whose row follows a mode of the page (the inner signal shown),
    // asked at each load and click; none: no button is chosen and a click
    // writes nothing.
    OptionGroup(ScreenContext &context, Which which, QList<QAbstractButton *> buttons, QList<int> currentWords,
                QList<int> legacyWords, QObject *parent);

    // Colours the button of the row's word; a word that fits no button, or a
    // row not read yet, leaves every button in the face colour.
    void load();
    // Which button a word of the row chooses, where it is not simply the
    // button of that word (any word above 0 standing for one button, a word
    // out of range for the last): the button's index, -1 for none.
    void setIndexOfWord(std::function<int(qint64 word)> indexOf) { m_indexOf = std::move(indexOf); }
    // The index of the chosen button by its colour, -1 when none is.
    int selected() const;
    // As the operator's click: colours, stores the word, writes the row.
    void choose(int index);

    const QList<QAbstractButton *> &buttons() const { return m_buttons; }
    // The parameter of the group (for a group that follows a mode, the one of
    // its last load or click).
    ParamRef param() const { return m_ref; }

signals:
    void chosen(int index);

private:
    QList<int> words() const;
    void colour(int index);

    ScreenContext &m_ctx;
    Which m_which;
    ParamRef m_ref;
    QList<QAbstractButton *> m_buttons;
    QList<int> m_current;
    QList<int> m_legacy;
    std::function<int(qint64)> m_indexOf;
};

// The fields of a parameter page bound to the parameters of the dictionary.
//
// A field shows its parameter's word decoded by the row's encoding at the
// controller's firmware, with the controller's display resolution (the row
// by the version test of the layouts). Leaving it clamps to the parameter's
// range, formatted with the field's pattern. Enter clamps the same way,
// stores the value in the image cell and writes the row to the controller at
// the parameter's wire address; the page reloads when the reply is in.
//
// A high/low pair keeps the high value above the low one: a commit that would
// break it takes back the edited field's old text, which is written again.
// A page's own relation checks (points that must rise) work the same way.
//
// A page may narrow a field's range (fixed or worked out at each clamp, such
// as between the neighbours of a line), give it a pattern of its own (shown
// and used by the clamp), an encoding of its own, and a rule of its own that
// adjusts the text on Enter before it is written (fields that clamp only in
// the commit, by the state of other controls).
//
// The page's own rules (fields enabled by another row, rows that follow a
// mode) run after every load and every change through onChange().
class PageBinder : public QObject {
    Q_OBJECT
public:
    using Which = std::function<std::optional<ParamRef>()>;

    explicit PageBinder(ScreenContext &context, QObject *parent = nullptr);

    // A field of a parameter.
    EntryBinding *field(EntryField *edit, ParamRef ref);
    // A field whose parameter follows a mode of the page (the RTD or the
    // voltage row of an offset), asked at each load and commit; none: the
    // field is left alone.
    EntryBinding *field(EntryField *edit, Which which);
    // Narrower bounds than the dictionary's, or a range where it has none. A
    // pattern given with the range is the field's pattern: the field shows
    // its value with it as well.
    void setRange(EntryBinding *field, const EntryBinding::Range &range);
    // Bounds worked out at each clamp; none: the field is not clamped.
    void setRange(EntryBinding *field, EntryBinding::RangeOf range);
    // An encoding other than the parameter's (a row used two ways).
    void setEncoding(EntryBinding *field, std::function<Encoding()> encoding);
    // A rule run on Enter after the clamp: the text it returns is shown and written.
    void adjust(EntryBinding *field, std::function<QString(const QString &text)> rule);
    // The high (index 1) and low (index 0) field of a pair.
    void pair(EntryBinding *high, EntryBinding *low);
    // A relation check of the commit: a value it refuses takes back the
    // field's old text, which is written again.
    void check(EntryBinding *field, std::function<bool(double value)> accept);
    // A field written on purpose otherwise than it is read (see RowAddressing).
    void setAddressing(EntryBinding *field, RowAddressing addressing);

    OptionGroup *options(ParamRef ref, QList<QAbstractButton *> buttons, QList<int> currentWords,
                         QList<int> legacyWords = {});
    OptionGroup *options(Which which, QList<QAbstractButton *> buttons, QList<int> currentWords,
                         QList<int> legacyWords = {});

    // Every option group, then every field from the image (so a field that
    // follows a mode can read the group's colours), then the page's rules
    // (the tables of the page among them).
    void load();
    void onChange(std::function<void()> rule) { m_rules.push_back(std::move(rule)); }
    // Drops every edit not yet committed (the fields now stand for other rows).
    void discardEdits();

    // The parameter a field stands for now.
    std::optional<ParamRef> paramOf(const EntryBinding *field) const;
    ScreenContext &context() const { return m_ctx; }

private:
    struct Field {
        EntryBinding *binding;
        Which which;
        EntryBinding::RangeOf range; // the page's own bounds, if any
        std::function<Encoding()> encoding;
        std::function<QString(const QString &)> adjust;
        std::vector<std::function<bool(double)>> checks;
        RowAddressing addressing = RowAddressing::Normal;
        EntryBinding *partner = nullptr; // the other field of a pair
        bool high = false;
    };
    Field *find(const EntryBinding *binding);
    const Field *find(const EntryBinding *binding) const;
    std::optional<EntryBinding::Range> rangeOf(const Field &f) const;
    Encoding fieldEncoding(const Field &f, ParamRef ref) const;
    QString textOf(const Field &f, ParamRef ref) const;
    OptionGroup *addGroup(OptionGroup *group);
    void commit(Field &f, const QString &oldText, const QString &newText);
    void runRules();

    ScreenContext &m_ctx;
    std::vector<Field> m_fields;
    QList<OptionGroup *> m_groups;
    std::vector<std::function<void()>> m_rules;
};
