#include "PageBinder.h"
#include "ButtonColour.h"
#include "ConsoleState.h"
#include "Files.h"
#include "ScreenContext.h"
#include <QAbstractButton>

bool commitParameterText(ScreenContext &context, ParamRef ref, const QString &text, std::optional<Encoding> encoding,
                         RowAddressing addressing)
{
    const Encoding e = encoding.value_or(encodingOf(ref, context.state.FirmwareVersion()));
    return context.requests().writeParameter(ref, wordFromText(e, text), scaledValueText(e, text), addressing);
}

// ---------------------------------------------------------------- option groups

OptionGroup::OptionGroup(ScreenContext &context, ParamRef ref, QList<QAbstractButton *> buttons,
                         QList<int> currentWords, QList<int> legacyWords, QObject *parent)
    : OptionGroup(context, [ref] { return std::optional<ParamRef>(ref); }, std::move(buttons),
                  std::move(currentWords), std::move(legacyWords), parent)
{
}

OptionGroup::OptionGroup(ScreenContext &context, Which which, QList<QAbstractButton *> buttons,
                         QList<int> currentWords, QList<int> legacyWords, QObject *parent)
    : QObject(parent), m_ctx(context), m_which(std::move(which)), m_ref(m_which().value_or(ParamRef(Param{}))),
      m_buttons(std::move(buttons)), m_current(std::move(currentWords)),
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
    const std::optional<ParamRef> ref = m_which();
    if (!ref) {
        colour(-1);
        return;
    }
    m_ref = *ref;
    const std::optional<qint64> word = ParamWord(m_ctx.state.image, m_ref);
    if (!word)
        colour(-1);
    else if (m_indexOf)
        colour(m_indexOf(*word));
    else
        colour(*word < 0 ? -1 : int(words().indexOf(int(*word))));
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
    const std::optional<ParamRef> ref = m_which();
    if (!ref)
        return;
    m_ref = *ref;
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
    m_fields.push_back({binding, std::move(which), {}, {}, {}});
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

void PageBinder::setEncoding(EntryBinding *binding, std::function<Encoding()> encoding)
{
    if (Field *f = find(binding))
        f->encoding = std::move(encoding);
}

void PageBinder::adjust(EntryBinding *binding, std::function<QString(const QString &)> rule)
{
    if (Field *f = find(binding))
        f->adjust = std::move(rule);
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

OptionGroup *PageBinder::addGroup(OptionGroup *group)
{
    connect(group, &OptionGroup::chosen, this, [this] { runRules(); });
    m_groups << group;
    return group;
}

OptionGroup *PageBinder::options(ParamRef ref, QList<QAbstractButton *> buttons, QList<int> currentWords,
                                 QList<int> legacyWords)
{
    return addGroup(new OptionGroup(m_ctx, ref, std::move(buttons), std::move(currentWords), std::move(legacyWords), this));
}

OptionGroup *PageBinder::options(Which which, QList<QAbstractButton *> buttons, QList<int> currentWords,
                                 QList<int> legacyWords)
{
    return addGroup(
        new OptionGroup(m_ctx, std::move(which), std::move(buttons), std::move(currentWords), std::move(legacyWords), this));
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

Encoding PageBinder::fieldEncoding(const Field &f, ParamRef ref) const
{
    return f.encoding ? f.encoding() : encodingOf(ref, m_ctx.state.FirmwareVersion());
}

std::optional<EntryBinding::Range> PageBinder::rangeOf(const Field &f) const
{
    const std::optional<ParamRef> ref = f.which();
    if (!ref)
        return std::nullopt;
    const ControllerImage &image = m_ctx.state.image;
    const QString pattern = screenPattern(fieldEncoding(f, *ref), image.tempDecimals());
    if (f.range) {
        std::optional<EntryBinding::Range> r = f.range();
        if (r && r->pattern.isEmpty())
            r->pattern = pattern;
        return r;
    }
    if (const auto bounds = ParamRange(*ref, image.firmwareVersion()))
        return EntryBinding::Range{bounds->low, bounds->high, pattern};
    return std::nullopt;
}

QString PageBinder::textOf(const Field &f, ParamRef ref) const
{
    const ControllerImage &image = m_ctx.state.image;
    const std::optional<qint64> word = ParamWord(image, ref);
    if (!word)
        return {};
    const Encoding e = fieldEncoding(f, ref);
    const std::optional<EntryBinding::Range> own = f.range ? f.range() : std::nullopt;
    if (own && !own->pattern.isEmpty())
        return formatWordWith(e, *word, own->pattern);
    return formatWord(e, *word, image.tempDecimals());
}

void PageBinder::load()
{
    for (OptionGroup *g : m_groups)
        g->load();
    for (Field &f : m_fields)
        if (const auto ref = f.which())
            f.binding->show(textOf(f, *ref));
    runRules();
}

void PageBinder::discardEdits()
{
    for (Field &f : m_fields)
        if (f.binding->editing())
            f.binding->cancelEdit();
}

void PageBinder::commit(Field &f, const QString &oldText, const QString &newText)
{
    const std::optional<ParamRef> ref = f.which();
    if (!ref)
        return;
    QString text = newText;
    if (f.adjust) {
        text = f.adjust(text);
        if (text != f.binding->field()->text())
            f.binding->field()->setText(text);
    }
    bool refused = false;
    if (f.partner) {
        const double mine = leadingNumber(text);
        const double other = leadingNumber(f.partner->field()->text());
        const double high = f.high ? mine : other;
        const double low = f.high ? other : mine;
        refused = high <= low;
    }
    const double value = leadingNumber(text);
    for (const auto &accept : f.checks)
        refused = refused || !accept(value);
    if (refused) {
        f.binding->revert();
        text = oldText;
    }
    // A refused value is written again as it was; a field never loaded has
    // nothing to write again.
    if (!(refused && text.isEmpty()))
        commitParameterText(m_ctx, *ref, text, fieldEncoding(f, *ref), f.addressing);
    runRules();
}

void PageBinder::runRules()
{
    for (const auto &rule : m_rules)
        rule();
}
