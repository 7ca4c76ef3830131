#include "PageBinder.h"
#include "ButtonColour.h"
#include "ConsoleState.h"
#include "Files.h"
#include "ScreenContext.h"
#include <QAbstractButton>

// ---------------------------------------------------------------- option groups

OptionGroup::OptionGroup(ScreenContext &context, ParamRef ref, QList<QAbstractButton *> buttons,
                         QList<int> currentWords, QList<int> legacyWords, QObject *parent)
    : QObject(parent), m_ctx(context), m_ref(ref), m_buttons(std::move(buttons)), m_current(std::move(currentWords)),
      m_legacy(legacyWords.isEmpty() ? m_current : std::move(legacyWords))
{
    for (int i = 0; i < m_buttons.size(); ++i)
        connect(m_buttons[i], &QAbstractButton::clicked, this, [this, i] { choose(i); });
}

QList<int> OptionGroup::words() const
{
    const ParamInfo &info = paramInfo(m_ref.param);
    return info.sameInBothLayouts || m_ctx.state.image.isCurrentLayout() ? m_current : m_legacy;
}

void OptionGroup::colour(int index)
{
    for (int i = 0; i < m_buttons.size(); ++i)
        ButtonColour::set(m_buttons[i], i == index ? ButtonColour::Selected : ButtonColour::FaceColour);
}

void OptionGroup::load()
{
    const ControllerImage &image = m_ctx.state.image;
    const int row = RowOf(m_ref, image.firmwareVersion());
    const TextTable &t = paramInfo(m_ref.param).block == UpBlock::UpPlus ? image.sprdUP_PLUS : image.sprdUP;
    if (row == 0 || t.isEmpty(1, row)) {
        colour(-1);
        return;
    }
    const qint64 word = t.number(1, row);
    if (m_indexOf)
        colour(m_indexOf(word));
    else
        colour(word < 0 ? -1 : int(words().indexOf(int(word))));
}

int OptionGroup::selected() const
{
    for (int i = 0; i < m_buttons.size(); ++i)
        if (ButtonColour::of(m_buttons[i]) == ButtonColour::Selected)
            return i;
    return -1;
}

void OptionGroup::choose(int index)
{
    const QList<int> w = words();
    if (index < 0 || index >= w.size() || w[index] < 0)
        return;
    colour(index);
    m_ctx.requests().writeParameter(m_ref, quint16(w[index]));
    emit chosen(index);
}

// ---------------------------------------------------------------- the binder

PageBinder::PageBinder(ScreenContext &context, QObject *parent) : QObject(parent), m_ctx(context)
{
}

EntryBinding *PageBinder::field(EntryField *edit, ParamRef ref)
{
    return field(edit, [ref] { return std::optional<ParamRef>(ref); });
}

EntryBinding *PageBinder::field(EntryField *edit, Which which)
{
    auto *binding = new EntryBinding(edit, this);
    m_fields.push_back({binding, std::move(which), {}});
    binding->setRange([this, binding]() -> std::optional<EntryBinding::Range> {
        const Field *f = find(binding);
        return f ? rangeOf(*f) : std::nullopt;
    });
    binding->onCommit([this, binding](const QString &oldText, const QString &newText) {
        if (Field *f = find(binding))
            commit(*f, oldText, newText);
    });
    return binding;
}

void PageBinder::setRange(EntryBinding *binding, const EntryBinding::Range &range)
{
    setRange(binding, [range] { return std::optional<EntryBinding::Range>(range); });
}

void PageBinder::setRange(EntryBinding *binding, EntryBinding::RangeOf range)
{
    if (Field *f = find(binding))
        f->range = std::move(range);
}

void PageBinder::check(EntryBinding *binding, std::function<bool(double)> accept)
{
    if (Field *f = find(binding))
        f->checks.push_back(std::move(accept));
}

void PageBinder::setAddressing(EntryBinding *binding, RowAddressing addressing)
{
    if (Field *f = find(binding))
        f->addressing = addressing;
}

void PageBinder::pair(EntryBinding *high, EntryBinding *low)
{
    Field *h = find(high);
    Field *l = find(low);
    if (!h || !l)
        return;
    h->partner = low;
    h->high = true;
    l->partner = high;
    l->high = false;
}

OptionGroup *PageBinder::options(ParamRef ref, QList<QAbstractButton *> buttons, QList<int> currentWords,
                                 QList<int> legacyWords)
{
    auto *group = new OptionGroup(m_ctx, ref, std::move(buttons), std::move(currentWords), std::move(legacyWords), this);
    connect(group, &OptionGroup::chosen, this, [this] { runRules(); });
    m_groups << group;
    return group;
}

ParamTable *PageBinder::table(QTableWidget *widget, ParamTable::CellParam cellParam)
{
    auto *t = new ParamTable(m_ctx, widget, std::move(cellParam), this);
    m_tables << t;
    return t;
}

PageBinder::Field *PageBinder::find(const EntryBinding *binding)
{
    for (Field &f : m_fields)
        if (f.binding == binding)
            return &f;
    return nullptr;
}

const PageBinder::Field *PageBinder::find(const EntryBinding *binding) const
{
    for (const Field &f : m_fields)
        if (f.binding == binding)
            return &f;
    return nullptr;
}

std::optional<ParamRef> PageBinder::paramOf(const EntryBinding *binding) const
{
    const Field *f = find(binding);
    return f ? f->which() : std::nullopt;
}

std::optional<EntryBinding::Range> PageBinder::rangeOf(const Field &f) const
{
    const std::optional<ParamRef> ref = f.which();
    if (!ref)
        return std::nullopt;
    const ControllerImage &image = m_ctx.state.image;
    const double version = image.firmwareVersion();
    const QString pattern = screenPattern(encodingOf(*ref, version), image.tempDecimals());
    if (f.range) {
        std::optional<EntryBinding::Range> r = f.range();
        if (r && r->pattern.isEmpty())
            r->pattern = pattern;
        return r;
    }
    if (const auto bounds = ParamRange(*ref, version))
        return EntryBinding::Range{bounds->low, bounds->high, pattern};
    return std::nullopt;
}

void PageBinder::load()
{
    const ControllerImage &image = m_ctx.state.image;
    for (OptionGroup *g : m_groups)
        g->load();
    for (Field &f : m_fields)
        if (const auto ref = f.which())
            f.binding->show(ParamText(image, *ref));
    for (ParamTable *t : m_tables)
        t->load();
    runRules();
}

void PageBinder::commit(Field &f, const QString &oldText, const QString &newText)
{
    const std::optional<ParamRef> ref = f.which();
    if (!ref)
        return;
    bool refused = false;
    if (f.partner) {
        const double mine = leadingNumber(newText);
        const double other = leadingNumber(f.partner->field()->text());
        const double high = f.high ? mine : other;
        const double low = f.high ? other : mine;
        refused = high <= low;
    }
    const double value = leadingNumber(newText);
    for (const auto &accept : f.checks)
        refused = refused || !accept(value);
    if (refused)
        f.binding->revert();
    const QString text = refused ? oldText : newText;
    // A refused value is written again as it was; a field never loaded has
    // nothing to write again.
    if (!(refused && text.isEmpty())) {
        const Encoding e = encodingOf(*ref, m_ctx.state.FirmwareVersion());
        m_ctx.requests().writeParameter(*ref, wordFromText(e, text), scaledValueText(e, text), f.addressing);
    }
    runRules();
}

void PageBinder::runRules()
{
    for (const auto &rule : m_rules)
        rule();
}
