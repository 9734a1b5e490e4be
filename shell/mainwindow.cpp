// The main dialog: its making and end, start-up, the information list, the algorithm rules, the curve radios
// and the close.
#include "shell/mainwindow.h"

#include "platform/drawing.h"
#include "platform/shared.h"
#include "platform/thread.h"
#include "platform/uiqueue.h"
#include "shell/plotaxes.h"
#include "shell/plots.h"

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


}  // namespace

CVantrelDlg::CVantrelDlg(CWnd* parent) : CDialog(IDD, parent) {
    HandPainter(m_iterationPlot);
    HandPainter(m_summaryPlot);
    HandPainter(m_dataPlot);
}

CVantrelDlg::~CVantrelDlg() {
    // A worker must never outlive the arrays it uses: the window's close waits for it, and so does this.
    m_cancel.Abandon();
    if (AfxRunningWorkers() > 0) AfxWaitForWorkers();
    m_bTraining = false;
    ReleaseArrays();
}

BEGIN_MESSAGE_MAP(CVantrelDlg, CDialog)
    ON_WM_SYSCOMMAND()
    ON_WM_PAINT()
    ON_WM_QUERYDRAGICON()
    ON_WM_CLOSE()
    ON_BN_CLICKED(IDC_LOAD_DATA, OnLoadData)
    ON_BN_CLICKED(IDC_CLEAR_CURVES, OnClearCurves)
    ON_BN_CLICKED(IDC_SHOW_INFO, OnShowInfo)
    ON_CBN_SELCHANGE(IDC_ALGORITHMS, OnSelchangeAlgorithm)
    ON_BN_CLICKED(IDC_INITIALIZATION, OnInitialization)
    ON_BN_CLICKED(IDC_SAVE_TRAINING_RESULTS, OnSaveResults)
    ON_BN_CLICKED(IDC_ONE_CURVE, OnOneCurve)
    ON_BN_CLICKED(IDC_MULTIPLE_CURVES, OnMultipleCurves)
    ON_BN_CLICKED(IDC_START_TRAINING, OnStartTraining)
    ON_BN_CLICKED(IDC_VERIFICATION, OnVerification)
    ON_BN_CLICKED(IDC_TRAINING_PATTERNS, OnTrainingPatterns)
    ON_BN_CLICKED(IDC_TESTING_PATTERNS, OnTestingPatterns)
    ON_BN_CLICKED(IDC_CREATE_2D_PATTERNS, OnCreate2DPatterns)
    ON_BN_CLICKED(IDC_CREATE_1D_PATTERNS, OnCreate1DPatterns)
    ON_BN_CLICKED(IDC_ONLINE_TRAINING, OnOnlineTraining)
    ON_WM_RBUTTONDOWN()
    ON_COMMAND(ID_ITERATION_X_RANGE, OnIterationXRange)
    ON_COMMAND(ID_SUMMARY_X_RANGE, OnSummaryXRange)
    ON_COMMAND(ID_ITERATION_Y_RANGE, OnIterationYRange)
    ON_COMMAND(ID_SUMMARY_Y_RANGE, OnSummaryYRange)
END_MESSAGE_MAP()

void CVantrelDlg::DoDataExchange(CDataExchange* dx) {
    CDialog::DoDataExchange(dx);
    DDX_Control(dx, IDC_CREATE_2D_PATTERNS, m_btnCreate2D);
    DDX_Control(dx, IDC_CREATE_1D_PATTERNS, m_btnCreate1D);
    DDX_Control(dx, IDC_TRAINING_PATTERNS, m_btnTrainingPatterns);
    DDX_Control(dx, IDC_TESTING_PATTERNS, m_btnTestingPatterns);
    DDX_Control(dx, IDC_ONLINE_TRAINING, m_btnOnline);
    DDX_Control(dx, IDC_TOTAL_TIME_LABEL, m_lblTotalTime);
    DDX_Control(dx, IDC_TOTAL_ERROR_LABEL, m_lblTotalError);
    DDX_Control(dx, IDC_INFO_ENTRY, m_editInfo);
    DDX_Control(dx, IDC_DATA_PLOT, m_dataPlot);
    DDX_Control(dx, IDC_INFO_LIST, m_listInfo);
    DDX_Control(dx, IDC_ALGORITHMS, m_comboAlgorithm);
    DDX_Control(dx, IDC_SUMMARY_PLOT, m_summaryPlot);
    DDX_Control(dx, IDC_ITERATION_PLOT, m_iterationPlot);
    DDX_Text(dx, IDC_DESIRED_AVERAGE_ERROR, m_dDesiredError);
    DDX_Text(dx, IDC_NUMBER_OF_ITERATIONS, m_nIterations);
    // The read-only edits 1023 to 1029 show what a load or a run wrote; they are no settings, and are shown but
    // never read back. Read back, a text a run left ("nan" after a run that ended at NaN) would prompt for a
    // number the user never typed and end the exchange before the settings behind it were read; and edit 1023,
    // which a run writes after m_nUnits has changed, could only set the count of a growing network to a value
    // the window has not caught up with yet.
    if (!dx->m_bSaveAndValidate) {
        DDX_Text(dx, IDC_CURRENT_TRAINING_SET, m_strDataTitle);
        DDX_Text(dx, IDC_CURRENT_ITERATIONS, m_nCurrentIteration);
        DDX_Text(dx, IDC_CURRENT_PARTIAL_ERROR, m_dPartialError);
        DDX_Text(dx, IDC_CURRENT_PARTIAL_TIME, m_dPartialTime);
        DDX_Text(dx, IDC_CURRENT_RBF_UNITS, m_nUnits);
        DDX_Text(dx, IDC_CURRENT_TOTAL_ERROR, m_dTotalError);
        DDX_Text(dx, IDC_CURRENT_TOTAL_TIME, m_dTotalTime);
    }
    DDX_Text(dx, IDC_NUMBER_OF_TRIALS, m_nTrials);
    DDX_Check(dx, IDC_ONLINE_TRAINING, m_bOnline);
    DDX_Check(dx, IDC_SAVE_TRAINING_RESULTS, m_bSaveResults);
    DDX_Text(dx, IDC_INFO_ENTRY, m_strInfoEntry);
    DDX_Radio(dx, IDC_ONE_CURVE, m_nCurveMode);
}

BOOL CVantrelDlg::OnInitDialog() {
    CDialog::OnInitDialog();

    if (CMenu* systemMenu = GetSystemMenu(FALSE)) {
        CString about;
        AfxLoadString(IDS_ABOUT, about);
        if (!about.IsEmpty()) {
            systemMenu->AppendMenu(MF_SEPARATOR);
            systemMenu->AppendMenu(MF_STRING, IDM_ABOUTBOX, about);
        }
    }
    SendMessage(WM_SETICON, ICON_BIG, m_hIcon);
    SendMessage(WM_SETICON, ICON_SMALL, m_hIcon);

    AppendInfo(CString(std::string(86, '-')));
    for (const char* line : kWelcomeLines) AppendInfo(line);

    for (int i = 0; i < 5; ++i)
        GetDlgItem(IDC_ALGORITHMS)->SendMessage(CB_INSERTSTRING, i, reinterpret_cast<LPARAM>(kAlgorithmNames[i]));
    GetDlgItem(IDC_ALGORITHMS)->SendMessage(CB_SETCURSEL, 0);

    ApplyAlgorithmRules();
    plotaxes::NamePlot(m_iterationPlot, plotaxes::kIterationTitle);

    GetDlgItem(IDC_VERIFICATION)->EnableWindow(FALSE);
    GetDlgItem(IDC_ONLINE_TRAINING)->EnableWindow(FALSE);

    m_nGeneralization = GeneralizationTrainingPatterns;
    GetDlgItem(IDC_CREATE_1D_PATTERNS)->SendMessage(BM_SETCHECK, BST_UNCHECKED);
    GetDlgItem(IDC_CREATE_2D_PATTERNS)->SendMessage(BM_SETCHECK, BST_UNCHECKED);
    GetDlgItem(IDC_TRAINING_PATTERNS)->SendMessage(BM_SETCHECK, BST_CHECKED);
    GetDlgItem(IDC_TESTING_PATTERNS)->SendMessage(BM_SETCHECK, BST_UNCHECKED);
    return TRUE;
}

void CVantrelDlg::OnSelchangeAlgorithm() {
    m_nAlgorithm = static_cast<int>(GetDlgItem(IDC_ALGORITHMS)->SendMessage(CB_GETCURSEL));
    m_bNetworkReady = false;
    ApplyAlgorithmRules();
}

void CVantrelDlg::ApplyAlgorithmRules() {
    const bool growing = m_nAlgorithm == engine::kErrorCorrection;
    GetDlgItem(IDC_TOTAL_ERROR_LABEL)->SetWindowText(growing ? "Current Total Error:" : "Current Average Error:");
    GetDlgItem(IDC_TOTAL_TIME_LABEL)->SetWindowText(growing ? "Current Total Time(s)" : "Current Average Time(s)");
    if (growing) {
        GetDlgItem(IDC_NUMBER_OF_TRIALS)->EnableWindow(FALSE);
        m_nTrials = 1;
        UpdateData(FALSE);
        m_summaryPlot.SetSummaryAxis(1, 2);
        GetDlgItem(IDC_ONE_CURVE)->SendMessage(BM_SETCHECK, BST_CHECKED);
        GetDlgItem(IDC_MULTIPLE_CURVES)->SendMessage(BM_SETCHECK, BST_UNCHECKED);
        m_nCurveMode = 0;
        GetDlgItem(IDC_MULTIPLE_CURVES)->EnableWindow(FALSE);
    } else {
        GetDlgItem(IDC_NUMBER_OF_TRIALS)->EnableWindow(TRUE);
        m_summaryPlot.SetSummaryAxis(1, 0);
        GetDlgItem(IDC_MULTIPLE_CURVES)->EnableWindow(TRUE);
        GetDlgItem(IDC_ONLINE_TRAINING)->SendMessage(BM_SETCHECK, BST_UNCHECKED);
        m_bOnline = 0;
        GetDlgItem(IDC_ONLINE_TRAINING)->EnableWindow(FALSE);
    }
    plotaxes::NamePlot(m_summaryPlot, plotaxes::SummaryTitle(m_summaryPlot.m_nMode, m_summaryPlot.m_nMultiplier));
    // The default depends on the algorithm alone and replaces what the user had typed.
    m_nIterations = engine::DefaultIterations(m_nAlgorithm);
    UpdateData(FALSE);
}

void CVantrelDlg::OnClearCurves() {
    m_iterationPlot.ClearSeries();
    m_summaryPlot.ClearSeries();
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
    // may begin between the end of this one and the release. The iteration under way is abandoned, not
    // finished: on a large network it would keep the window waiting for minutes.
    m_cancel.Abandon();
    GetDlgItem(IDC_START_TRAINING)->EnableWindow(FALSE);
    AfxWaitForWorkers();
    m_bTraining = false;
    ReleaseArrays();
    m_dataPlot.ClearSeries();
    m_iterationPlot.ClearSeries();
    m_summaryPlot.ClearSeries();
    Default();
}

void CVantrelDlg::OnSysCommand(UINT nID, LPARAM) {
    if ((nID & 0xFFF0) == IDM_ABOUTBOX) {
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
