#pragma once
// frmIE, the pane of the browser's extensions. Its controls stand ready; the
// lists are filled as the area's logic is built.
#include "ui/pane.h"

namespace corvane {

class frmIE : public Pane {
protected:
    void Form_Load() override;
};

}  // namespace corvane
