#pragma once
#include <windows.h>

namespace corvane {

// Dialog templates are laid out in dialog units, which grow and shrink with
// the dialog's font, while the windows have fixed sizes in twips.
// These two functions reconcile them: the window takes its size in twips at
// the screen's resolution, every control is scaled by the same factor from
// where the template put it, and when a control's text would no longer fit
// its control (a substitute font wider than the one the template was drawn
// for), the whole dialog steps down to a smaller cut of its own font until
// every text fits.
//
// Both are meant to be called once, as the dialog is made: the controls must
// still stand where the template put them.

// A child dialog (a pane): its client area becomes widthTwips x heightTwips.
// Only the size changes; the caller places it.
void FitChildDialog(HWND dialog, int widthTwips, int heightTwips);

// The same for a child dialog that fills an area of its parent given in
// pixels (a tab of a pane, over the area its pane keeps for it).
void FitChildDialogPixels(HWND dialog, int width, int height);

// A top-level dialog: its window, frame and caption included, becomes
// widthTwips x heightTwips, and the controls are fitted into the client area
// that leaves. Only the size changes; the caller places it.
void FitDialogWindow(HWND dialog, int widthTwips, int heightTwips);

}  // namespace corvane
