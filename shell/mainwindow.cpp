// The main dialog: start-up, the information list, the algorithm rules, the curve radios and the close.
#include "shell/mainwindow.h"

#include "platform/drawing.h"
#include "platform/shared.h"
#include "platform/thread.h"

namespace {

const char* const kAlgorithmNames[] = {
    "Second Order Gradient Method", "Improved Second Order Method", "Error Correction Algorithm",
    "First Order Gradient Method",  "Improved First Order Method",
};

const char* const kWelcomeLines[] = {
    "--Welcome to Vantrel",
    "--Current Version: 1.0",
    "--Recently Updated: 03/17/2011",
    "--Detailed Introduction is in file: intro.doc",
    "--Developer: The Vantrel team",
    "--Supervisor: Head of the neural networks laboratory",
    "--Contact: vantrel@example.org",
};

constexpr UINT kAboutCommand = 0x0010;
constexpr int kMaxInfoLines = 2000;

// Empties the series of both curve plots, each under its plot's lock.
void EmptyCurves(CVantrelDlg& dlg) {
    {
        auto lock = dlg.m_iterationPlot.SeriesLock();
        dlg.m_iterationPlot.m_arrX.SetSize(0);
        dlg.m_iterationPlot.m_arrY.SetSize(0);
    }
    auto lock = dlg.m_summaryPlot.SeriesLock();
    dlg.m_summaryPlot.m_arrX.SetSize(0);
    dlg.m_summaryPlot.m_arrY.SetSize(0);
}

}  // namespace

BEGIN_MESSAGE_MAP(CVantrelDlg, CDialog)
    ON_WM_SYSCOMMAND()
    ON_WM_PAINT()
    ON_WM_QUERYDRAGICON()
    ON_WM_CLOSE()
    ON_BN_CLICKED(1009, OnLoadData)
    ON_BN_CLICKED(1039, OnClearCurves)
    ON_BN_CLICKED(1063, OnShowInfo)
    ON_CBN_SELCHANGE(1014, OnSelchangeAlgorithm)
    ON_BN_CLICKED(1064, OnInitialization)
    ON_BN_CLICKED(1055, OnSaveResults)
    ON_BN_CLICKED(1061, OnOneCurve)
    ON_BN_CLICKED(1062, OnMultipleCurves)
    ON_BN_CLICKED(1010, OnStartTraining)
    ON_WM_RBUTTONDOWN()
    ON_COMMAND(32771, OnIterationXRange)
    ON_COMMAND(32772, OnSummaryXRange)
    ON_COMMAND(32773, OnIterationYRange)
    ON_COMMAND(32774, OnSummaryYRange)
END_MESSAGE_MAP()

void CVantrelDlg::DoDataExchange(CDataExchange* dx) {
    CDialog::DoDataExchange(dx);
    DDX_Control(dx, 1058, m_btnCreate2D);
    DDX_Control(dx, 1059, m_btnCreate1D);
    DDX_Control(dx, 1056, m_btnTrainingPatterns);
    DDX_Control(dx, 1057, m_btnTestingPatterns);
    DDX_Control(dx, 1048, m_btnOnline);
    DDX_Control(dx, 1102, m_lblTotalTime);
    DDX_Control(dx, 1101, m_lblTotalError);
    DDX_Control(dx, 1093, m_editInfo);
    DDX_Control(dx, 1022, m_dataPlot);
    DDX_Control(dx, 1015, m_listInfo);
    DDX_Control(dx, 1014, m_comboAlgorithm);
    DDX_Control(dx, 1012, m_summaryPlot);
    DDX_Control(dx, 1013, m_iterationPlot);
    DDX_Text(dx, 1020, m_dDesiredError);
    DDX_Text(dx, 1019, m_nIterations);
    DDX_Text(dx, 1029, m_strDataTitle);
    DDX_Text(dx, 1024, m_nCurrentIteration);
    DDX_Text(dx, 1025, m_dPartialError);
    DDX_Text(dx, 1027, m_dPartialTime);
    // Edit 1023 is read-only and a run writes it after m_nUnits has changed: reading it back could only set
    // the count of a growing network to a value the window has not caught up with yet.
    if (!dx->m_bSaveAndValidate) DDX_Text(dx, 1023, m_nUnits);
    DDX_Text(dx, 1026, m_dTotalError);
    DDX_Text(dx, 1028, m_dTotalTime);
    DDX_Text(dx, 1047, m_nTrials);
    DDX_Check(dx, 1048, m_bOnline);
    DDX_Check(dx, 1055, m_bSaveResults);
    DDX_Text(dx, 1093, m_strInfoEntry);
    DDX_Radio(dx, 1061, m_nCurveMode);
}

BOOL CVantrelDlg::OnInitDialog() {
    CDialog::OnInitDialog();

    if (CMenu* systemMenu = GetSystemMenu(FALSE)) {
        CString about;
        AfxLoadString(101, about);
        if (!about.IsEmpty()) {
            systemMenu->AppendMenu(MF_SEPARATOR);
            systemMenu->AppendMenu(MF_STRING, kAboutCommand, about);
        }
    }
    SendMessage(WM_SETICON, ICON_BIG, m_hIcon);
    SendMessage(WM_SETICON, ICON_SMALL, m_hIcon);

    AppendInfo(CString(std::string(86, '-')));
    for (const char* line : kWelcomeLines) AppendInfo(line);

    for (int i = 0; i < 5; ++i)
        GetDlgItem(1014)->SendMessage(CB_INSERTSTRING, i, reinterpret_cast<LPARAM>(kAlgorithmNames[i]));
    GetDlgItem(1014)->SendMessage(CB_SETCURSEL, 0);

    ApplyAlgorithmRules();

    GetDlgItem(1038)->EnableWindow(FALSE);
    GetDlgItem(1048)->EnableWindow(FALSE);

    m_nGeneralization = 0;
    GetDlgItem(1059)->SendMessage(BM_SETCHECK, BST_UNCHECKED);
    GetDlgItem(1058)->SendMessage(BM_SETCHECK, BST_UNCHECKED);
    GetDlgItem(1056)->SendMessage(BM_SETCHECK, BST_CHECKED);
    GetDlgItem(1057)->SendMessage(BM_SETCHECK, BST_UNCHECKED);
    return TRUE;
}

void CVantrelDlg::AppendInfo(CString strLine) {
    if (m_nInfoLines == kMaxInfoLines) ClearInfo();
    GetDlgItem(1015)->SendMessage(LB_INSERTSTRING, m_nInfoLines, reinterpret_cast<LPARAM>(static_cast<const char*>(strLine)));
    ++m_nInfoLines;
    GetDlgItem(1015)->SendMessage(LB_SETCURSEL, m_nInfoLines - 1);
}

void CVantrelDlg::ClearInfo() {
    GetDlgItem(1015)->SendMessage(LB_RESETCONTENT);
    m_nInfoLines = 0;
}

void CVantrelDlg::OnSelchangeAlgorithm() {
    m_nAlgorithm = static_cast<int>(GetDlgItem(1014)->SendMessage(CB_GETCURSEL));
    m_bNetworkReady = false;
    ApplyAlgorithmRules();
}

void CVantrelDlg::ApplyAlgorithmRules() {
    const bool growing = m_nAlgorithm == 2;
    GetDlgItem(1101)->SetWindowText(growing ? "Current Total Error:" : "Current Average Error:");
    GetDlgItem(1102)->SetWindowText(growing ? "Current Total Time(s)" : "Current Average Time(s)");
    if (growing) {
        GetDlgItem(1047)->EnableWindow(FALSE);
        m_nTrials = 1;
        UpdateData(FALSE);
        m_summaryPlot.SetSummaryAxis(1, 2);
        GetDlgItem(1061)->SendMessage(BM_SETCHECK, BST_CHECKED);
        GetDlgItem(1062)->SendMessage(BM_SETCHECK, BST_UNCHECKED);
        m_nCurveMode = 0;
        GetDlgItem(1062)->EnableWindow(FALSE);
    } else {
        GetDlgItem(1047)->EnableWindow(TRUE);
        m_summaryPlot.SetSummaryAxis(1, 0);
        GetDlgItem(1062)->EnableWindow(TRUE);
        GetDlgItem(1048)->SendMessage(BM_SETCHECK, BST_UNCHECKED);
        m_bOnline = 0;
        GetDlgItem(1048)->EnableWindow(FALSE);
    }
    // The default depends on the algorithm alone and replaces what the user had typed.
    m_nIterations = (m_nAlgorithm == 3 || m_nAlgorithm == 4) ? 100000 : 200;
    UpdateData(FALSE);
}

void CVantrelDlg::OnClearCurves() {
    EmptyCurves(*this);
    m_iterationPlot.Redraw();
    m_summaryPlot.Redraw();
}

void CVantrelDlg::OnShowInfo() { ShowSettings(); }

void CVantrelDlg::OnSaveResults() { m_bSaveResults = m_bSaveResults == 0 ? 1 : 0; }

void CVantrelDlg::OnOneCurve() { AfxWriteShared(m_nCurveMode, 0); }

void CVantrelDlg::OnMultipleCurves() { AfxWriteShared(m_nCurveMode, 1); }

void CVantrelDlg::OnClose() {
    // A run under way is stopped, and awaited, before anything it uses is released. The window stays live
    // while it waits (the worker may be waiting on a message box), so Start is taken away first: no new run
    // may begin between the end of this one and the release.
    m_bTraining = false;
    GetDlgItem(1010)->EnableWindow(FALSE);
    AfxWaitForWorkers();
    ReleaseArrays();
    {
        auto lock = m_dataPlot.SeriesLock();
        CDoubleArray* series[] = {&m_dataPlot.m_arrPatternX, &m_dataPlot.m_arrPatternY,
                                  &m_dataPlot.m_arrPatternClass, &m_dataPlot.m_arrGridX,
                                  &m_dataPlot.m_arrGridY, &m_dataPlot.m_arrGridValue};
        for (CDoubleArray* s : series) s->SetSize(0);
    }
    EmptyCurves(*this);
    Default();
}

void CVantrelDlg::OnSysCommand(UINT nID, LPARAM) {
    if ((nID & 0xFFF0) == kAboutCommand) {
        CAboutDlg about;
        about.DoModal();
    } else {
        Default();
    }
}

void CVantrelDlg::OnPaint() {
    if (!IsIconic()) {
        Default();
        return;
    }
    CPaintDC dc(this);
    SendMessage(WM_ICONERASEBKGND, 0);
    RECT rect;
    GetClientRect(&rect);
    const int x = (rect.right - rect.left - GetSystemMetrics(SM_CXICON) + 1) / 2;
    const int y = (rect.bottom - rect.top - GetSystemMetrics(SM_CYICON) + 1) / 2;
    dc.DrawIcon(x, y, m_hIcon);
}

HCURSOR CVantrelDlg::OnQueryDragIcon() { return m_hIcon; }
