#pragma once
class QAbstractButton;

// Buttons whose colour is state: an option button is chosen while it has the
// colour 65280 (bright green), a run button is lit while it is red (255).
// Colours are Windows colour values (0x00BBGGRR); FaceColour is the normal
// button face. The colour is kept on the button and read back from it.
namespace ButtonColour {
constexpr int FaceColour = -1;
constexpr int Selected = 65280;
constexpr int Lit = 255;

void set(QAbstractButton *button, int colour);
int of(const QAbstractButton *button); // FaceColour unless set otherwise
} // namespace ButtonColour

// A push button that is "lit": red while its state word is set. The lit
// state is what the toggling buttons read to decide what to send.
namespace LitButton {
void setLit(QAbstractButton *button, bool lit);
bool isLit(const QAbstractButton *button);
} // namespace LitButton
