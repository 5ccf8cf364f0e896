#pragma once
// frmOptions, the pane of the legend, the backups and the full report: the
// colours and bold font of marked rows, the process backups with Restore and
// Delete, and one report of the areas the user ticks.
#include <windows.h>

#include <array>

#include "ui/pane.h"

namespace corvane {

class frmOptions : public Pane {
public:
    frmOptions();
    ~frmOptions() override;

    // The options pane behind a pane window; null for any other window.
    static frmOptions* Of(HWND pane) { return dynamic_cast<frmOptions*>(Pane::Of(pane)); }

    // The legend: a double click on a colour box, and the bold check box.
    void picSuspicious_DblClick() { ColourBox_DblClick(0); }
    void picDisabled_DblClick() { ColourBox_DblClick(1); }
    void picSusDis_DblClick() { ColourBox_DblClick(2); }
    void chkFontBold_Click();

    // The backups.
    void refreshBackupList();
    void cmdrestore_Click();
    void cmdDelete_Click();
    void chkDelete_Click();

    // The full report of the ticked areas.
    void cmdReport_Click();

    RowList& backups() { return lstvBackup_; }

protected:
    void Form_Load() override;
    void Form_Unload() override;
    void OnCommand(int id, int code) override;
    HBRUSH StaticBrush(HWND control, HDC dc) override;

private:
    void ColourBox_DblClick(size_t box);
    void PaintBox(size_t box);
    bool Ticked(int id) const { return IsDlgButtonChecked(hwnd(), id) == BST_CHECKED; }

    RowList lstvBackup_;
    std::array<HBRUSH, 3> boxBrushes_{};
};

}  // namespace corvane
