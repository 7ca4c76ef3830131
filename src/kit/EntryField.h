#pragma once
#include <QLineEdit>
#include <functional>
#include <memory>
#include <optional>

// An entry field with the three moments of an edit: the operator's first
// change (QLineEdit::textEdited), leaving the field (left) and the Enter key
// (QLineEdit::returnPressed). Text set by the program raises none of them.
class EntryField : public QLineEdit {
    Q_OBJECT
public:
    explicit EntryField(const QString &name, QWidget *parent = nullptr);

signals:
    void left();

protected:
    void focusOutEvent(QFocusEvent *event) override;
};

// What a field does at the three moments of an edit:
//  1. the first change raises its edit flag, and the refresh leaves the field
//     alone from then on (show() does nothing while the flag is up);
//  2. leaving the field clamps its text to the range: below the low bound it
//     becomes the low bound, above the high one the high bound, formatted
//     with the range's pattern; nothing is sent;
//  3. Enter clamps the same way (so no value outside the range is ever sent),
//     lowers the flag and calls the commit with the text before the edit and
//     the text now.
// Text that is not a number counts as 0 before the clamp.
class EntryBinding : public QObject {
    Q_OBJECT
public:
    struct Range {
        double low = 0;
        double high = 0;
        QString pattern; // "0", "0.0" ...; empty: the shortest plain number
    };
    using RangeOf = std::function<std::optional<Range>()>;
    // When the range is applied: on leaving and on Enter (the usual field),
    // on Enter only (fields whose commit does the clamp), or never (fields
    // whose commit refuses a value outside instead of clamping it).
    enum class ClampAt { LeaveAndEnter, Enter, Never };
    using Commit = std::function<void(const QString &oldText, const QString &newText)>;

    EntryBinding(EntryField *field, QObject *parent);

    EntryField *field() const { return m_field; }
    void setRange(const Range &range);
    void setRange(RangeOf range); // worked out at each clamp (bounds that follow the firmware)
    void setClampAt(ClampAt when) { m_clampAt = when; }
    void onCommit(Commit commit) { m_commit = std::move(commit); }
    // Two fields that show one value share one edit flag.
    void shareFlagWith(const EntryBinding &other) { m_flag = other.m_flag; }

    bool editing() const { return *m_flag; }
    // The program shows a value: ignored while the operator edits the field.
    // The text becomes the field's text before the next edit.
    void show(const QString &text);
    // The text the field had before the operator's edit.
    QString oldText() const { return m_old; }
    // Puts the text back to the one before the edit.
    void revert();
    // Drops an edit that was not committed: the text before it comes back and
    // the refresh shows the field again.
    void cancelEdit();

    // The clamp to the range; true when the text changed.
    bool clamp();
    // The clamp of a text: below the low bound the low bound, above the high
    // one the high bound, formatted with the range's pattern; else the text
    // as it stands.
    static QString clampText(const QString &text, const Range &range);

private:
    void leave();
    void commit();

    EntryField *m_field;
    RangeOf m_range;
    ClampAt m_clampAt = ClampAt::LeaveAndEnter;
    Commit m_commit;
    std::shared_ptr<bool> m_flag = std::make_shared<bool>(false);
    QString m_old;
};
