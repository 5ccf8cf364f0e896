// Resource ids of Corvane: one list for the program's icons, bitmaps and dialogs.
#pragma once

#define IDI_CORVANE 1
