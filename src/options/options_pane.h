#pragma once
// frmOptions, the pane of the legend, the backups and the full report. Its
// controls stand ready; they are filled as the area's logic is built.
#include "ui/pane.h"

namespace corvane {

class frmOptions : public Pane {
protected:
    void Form_Load() override { PlacePane(hwnd()); }
};

}  // namespace corvane
