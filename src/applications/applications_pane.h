#pragma once
// frmAddRemove, the pane of the installed applications. Its controls stand
// ready; the list is filled as the area's logic is built.
#include "ui/pane.h"

namespace corvane {

class frmAddRemove : public Pane {
protected:
    void Form_Load() override { PlacePane(hwnd()); }
};

}  // namespace corvane
