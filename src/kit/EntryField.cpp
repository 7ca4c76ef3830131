#include "EntryField.h"
#include "Encodings.h"
#include "Files.h"
#include <QFocusEvent>

EntryField::EntryField(const QString &name, QWidget *parent) : QLineEdit(parent)
{
    setObjectName(name);
}

void EntryField::focusOutEvent(QFocusEvent *event)
{
    QLineEdit::focusOutEvent(event);
    emit left();
}

EntryBinding::EntryBinding(EntryField *field, QObject *parent) : QObject(parent), m_field(field)
{
    m_old = field->text();
    connect(field, &QLineEdit::textEdited, this, [this] { *m_flag = true; });
    connect(field, &EntryField::left, this, [this] { leave(); });
    connect(field, &QLineEdit::returnPressed, this, [this] { commit(); });
}

void EntryBinding::setRange(const Range &range)
{
    m_range = [range] { return std::optional<Range>(range); };
}

void EntryBinding::setRange(RangeOf range)
{
    m_range = std::move(range);
}

void EntryBinding::show(const QString &text)
{
    if (*m_flag)
        return;
    m_old = text;
    if (m_field->text() != text)
        m_field->setText(text);
}

void EntryBinding::revert()
{
    m_field->setText(m_old);
}

void EntryBinding::cancelEdit()
{
    *m_flag = false;
    revert();
}

QString EntryBinding::clampText(const QString &text, const Range &r)
{
    const double value = leadingNumber(text);
    if (value < r.low)
        return formatNumber(r.low, r.pattern);
    if (value > r.high)
        return formatNumber(r.high, r.pattern);
    return text;
}

bool EntryBinding::clamp()
{
    const std::optional<Range> r = m_range ? m_range() : std::nullopt;
    if (!r)
        return false;
    const QString text = clampText(m_field->text(), *r);
    if (text == m_field->text())
        return false;
    m_field->setText(text);
    return true;
}

void EntryBinding::leave()
{
    if (m_clampAt == ClampAt::LeaveAndEnter)
        clamp();
}

void EntryBinding::commit()
{
    if (m_clampAt != ClampAt::Never)
        clamp();
    *m_flag = false;
    // The commit may revert the field to m_old; what stands afterwards is
    // the text before the next edit.
    if (m_commit)
        m_commit(m_old, m_field->text());
    m_old = m_field->text();
}
