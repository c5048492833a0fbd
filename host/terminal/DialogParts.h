// Pieces the terminal's settings dialogs share: a colour button that shows its colour and
// opens the colour chooser, and the OK / Apply / Cancel row whose OK applies before closing.
#pragma once

#include <QColor>
#include <functional>

class QDialog;
class QDialogButtonBox;
class QPushButton;
class QWidget;

namespace host {
namespace terminal {

// The button shows `colour`: its name on the colour, in white or black to stay readable.
void showColour(QPushButton* button, const QColor& colour);
// Opens the colour chooser on `*colour`; a colour chosen there is stored and shown on the
// button. False when the chooser was cancelled.
bool chooseColour(QWidget* parent, QPushButton* button, QColor* colour);
// OK, Apply and Cancel (object names "ok", "apply", "cancel"): Apply runs `apply`, OK runs it
// and closes the dialog when it succeeds, Cancel rejects.
QDialogButtonBox* applyButtons(QDialog* dialog, std::function<bool()> apply);

}  // namespace terminal
}  // namespace host
