// Resource ids of Corvane: one list for the program's icons, bitmaps and dialogs.
// Ranges: 1-99 icons and cursors; 100-199 main window and panes; 200-299 skin
// bitmaps; 300-399 about; 1000-1099 file detail dialog; 1100-1199 process pane;
// 1200-1299 startup pane; 1300-1399 browser pane; 1400-1499 applications pane;
// 1500-1599 options pane.
#pragma once

#define IDI_CORVANE 1
