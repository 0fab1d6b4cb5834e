#pragma once

class QDialog;

namespace quillery {

// Runs the dialog modally and then gives the keyboard back to the widget that had it, in its
// window made active again: without this, a desktop that does not hand the focus back (or no
// window manager at all) leaves the app with no widget taking keys once the dialog closes.
// Returns what QDialog::exec() returned.
int execDialog(QDialog& dialog);

} // namespace quillery
