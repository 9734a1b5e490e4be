// The plots' right-button menus and range commands of the main window, and the range dialogs' data exchange.
#include "platform/window.h"
#include "workspace/dialogs.h"
#include "workspace/workspace.h"

namespace {

// The screen rectangle of a control; empty when the dialog has no such control.
RECT ScreenRectOf(const CWnd& dialog, int id) {
    RECT rect;
    if (CWnd* control = dialog.GetDlgItem(id)) control->GetWindowRect(&rect);
    return rect;
}

// Shows a pair of exponent bounds in the dialog, and stores them back only after OK. A run goes on while the
// dialog is open.
template <class Plot, class Axes>
void EditBounds(Plot& plot, CRangeDlg& dialog, CAxisRange (Axes::*get)(), void (Axes::*set)(const CAxisRange&)) {
    const CAxisRange range = (plot.*get)();
    dialog.m_dLower = range.lower;
    dialog.m_dUpper = range.upper;
    if (dialog.DoModal() == IDOK) (plot.*set)(CAxisRange{dialog.m_dLower, dialog.m_dUpper});
    plot.Redraw();
}

}  // namespace

void CVantrelDlg::OnRButtonDown(UINT /*nFlags*/, CPoint point) {
    const RECT iterationRect = ScreenRectOf(*this, IDC_ITERATION_PLOT);
    const RECT summaryRect = ScreenRectOf(*this, IDC_SUMMARY_PLOT);
    ClientToScreen(&point);
    UINT menuId = 0;
    if (PtInRect(&iterationRect, point))
        menuId = IDR_ITERATION_MENU;
    else if (PtInRect(&summaryRect, point))
        menuId = IDR_SUMMARY_MENU;
    if (menuId != 0) {
        CMenu menu;
        if (menu.LoadMenu(menuId)) {
            if (CMenu* popup = menu.GetSubMenu(0))
                popup->TrackPopupMenu(TPM_RIGHTBUTTON, static_cast<int>(point.x), static_cast<int>(point.y), this);
            menu.DestroyMenu();
        }
    }
    Default();
}

void CVantrelDlg::OnIterationXRange() {
    EditBounds(m_iterationPlot, m_dlgIterationXRange, &CIterationPlot::XRange, &CIterationPlot::SetXRange);
}

void CVantrelDlg::OnIterationYRange() {
    EditBounds(m_iterationPlot, m_dlgIterationYRange, &CIterationPlot::YRange, &CIterationPlot::SetYRange);
}

void CVantrelDlg::OnSummaryYRange() {
    EditBounds(m_summaryPlot, m_dlgSummaryYRange, &CSummaryPlot::YRange, &CSummaryPlot::SetYRange);
}

void CVantrelDlg::OnSummaryXRange() {
    m_dlgSummaryXRange.m_nMultiplier = static_cast<UINT>(m_summaryPlot.Multiplier());
    if (m_dlgSummaryXRange.DoModal() == IDOK)
        m_summaryPlot.SetMultiplier(static_cast<int>(m_dlgSummaryXRange.m_nMultiplier));
    m_summaryPlot.Redraw();
}

void CRangeDlg::DoDataExchange(CDataExchange* dx) {
    CDialog::DoDataExchange(dx);
    DDX_Text(dx, IDC_UPPER_BOUNDARY, m_dUpper);
    DDX_Text(dx, IDC_LOWER_BOUNDARY, m_dLower);
}

void CSummaryXRangeDlg::DoDataExchange(CDataExchange* dx) {
    CDialog::DoDataExchange(dx);
    DDX_Text(dx, IDC_MULTIPLIER, m_nMultiplier);
}
