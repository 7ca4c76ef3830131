#include "ButtonColour.h"
#include <QAbstractButton>

namespace ButtonColour {

void set(QAbstractButton *button, int colour)
{
    if (of(button) == colour)
        return;
    button->setProperty("BackColor", colour);
    // Style sheets only on a change: a redraw a second touches many buttons.
    if (colour == FaceColour) {
        button->setStyleSheet(QString());
        return;
    }
    const int r = colour & 0xFF, g = (colour >> 8) & 0xFF, b = (colour >> 16) & 0xFF;
    const bool dark = r * 299 + g * 587 + b * 114 < 128000;
    button->setStyleSheet(QStringLiteral("QAbstractButton { background-color: rgb(%1, %2, %3); color: %4; }")
                              .arg(r)
                              .arg(g)
                              .arg(b)
                              .arg(dark ? QStringLiteral("white") : QStringLiteral("black")));
}

int of(const QAbstractButton *button)
{
    const QVariant v = button->property("BackColor");
    return v.isValid() ? v.toInt() : FaceColour;
}

} // namespace ButtonColour

namespace LitButton {

void setLit(QAbstractButton *button, bool lit)
{
    button->setProperty("Lit", lit);
    ButtonColour::set(button, lit ? ButtonColour::Lit : ButtonColour::FaceColour);
}

bool isLit(const QAbstractButton *button)
{
    return ButtonColour::of(button) == ButtonColour::Lit;
}

} // namespace LitButton
