// Chief header of workspace/. CVantrelDlg: the workspace and main dialog. All state of the tool lives here: the
// data set, the network, the training scratch arrays, every setting, the control wrappers, the three plots and
// the ten dialogs.
//
// workspace/ holds this object and what it is made of: the table of control names (controls.h), the ten
// dialogs (dialogs.h), the one owner of its heap blocks (blocks.h), the engine's views of its network
// (network.h), CDoubleArray and the plots' series, ranges and paint (plots.h). It may include files/,
// platform/ and engine/, never training/ or shell/. It owns every block, series and setting; nothing else does.
//
// Fields stand in their declared order. Every member is declared here, as C++ declares a class in one place,
// and defined in the folder of the subsystem it belongs to, each group below naming its file: the network
// members are thin, in workspace/numerics.cpp: they size the workspace's blocks and hand them to the engine;
// the runs are training/'s; the main window's handlers, its virtual members and the dialog's making are
// shell/'s (shell/mainwindow.h tells the shell). Nothing in workspace/ calls a member defined above it.
#pragma once

#include <atomic>

#include "engine/cancel.h"
#include "engine/defaults.h"
#include "engine/network.h"
#include "platform/window.h"
#include "workspace/dialogs.h"
#include "workspace/doublearray.h"
#include "workspace/plots.h"

class CVantrelDlg : public CDialog {
public:
    enum { IDD = IDD_MAIN };
    // shell/mainwindow.cpp, with the other virtual members: the dialog's making hands the plots their painters.
    explicit CVantrelDlg(CWnd* parent = nullptr);
    ~CVantrelDlg() override;

    // ---- data set, network and scratch --------------------------------------------------------------------
    CString m_strDataPath;
    UINT m_nPatterns = 0;
    UINT m_nOutputs = 0;
    UINT m_nInputs = 0;
    UINT m_nMaxUnits = engine::kDefaultMaxUnits;
    UINT m_nParams = 0;
    // The number of inputs the network arrays were shaped for. Load Data changes m_nInputs and leaves the
    // network as it was, so the two can differ until the next Initialization or run.
    UINT m_nNetworkInputs = 0;
    // The number of patterns m_pOutputs was made for (ResetNetwork, and the merge of new patterns): online
    // training goes on from the network only while both counts still hold.
    UINT m_nNetworkPatterns = 0;

    double* m_pInputs = nullptr;             // m_nPatterns x m_nInputs
    double* m_pTargets = nullptr;            // m_nPatterns x m_nOutputs
    double* m_pInputWeights = nullptr;       // units x m_nInputs
    double* m_pOutputWeights = nullptr;      // (units + 1) x m_nOutputs, bias first
    double* m_pWidths = nullptr;             // units
    double* m_pCenters = nullptr;            // units x m_nInputs
    double* m_pInitInputWeights = nullptr;   // copies as the latest initialization made them
    double* m_pInitOutputWeights = nullptr;
    double* m_pInitWidths = nullptr;
    double* m_pInitCenters = nullptr;
    double* m_pOutputs = nullptr;            // m_nPatterns x m_nOutputs
    double* m_pGradient = nullptr;           // m_nParams
    double* m_pHessian = nullptr;            // m_nParams x m_nParams
    double* m_pHessianInv = nullptr;         // m_nParams x m_nParams
    double* m_pParams = nullptr;             // m_nParams
    double* m_pDelta = nullptr;              // m_nParams

    // ---- flags and algorithm ------------------------------------------------------------------------------
    // A run is under way: set by Start, cleared as the run ends. Atomic, because a plain byte shared between
    // threads has no defined meaning in C++.
    std::atomic<bool> m_bTraining{false};
    // The one signal from the window to a running worker: Stop asks for a stop at the head of the next
    // iteration, a close abandons the iteration under way. Reset as a run starts.
    engine::CCancelToken m_cancel;
    bool m_bDataLoaded = false;
    bool m_bNetworkReady = false;
    bool m_bClassification = false;
    int m_nAlgorithm = engine::kSecondOrder;  // an engine::Algorithm, int for the combo box's data exchange

    int m_nInfoLines = 0;
    double m_dLearningConstant = engine::kDefaultLearningConstant;
    double m_dMomentum = engine::kDefaultMomentum;

    // ---- dialogs ------------------------------------------------------------------------------------------
    CDataSetInfoDlg m_dlgDataSetInfo;
    CInitializationDlg m_dlgInitialization;
    CErrCorInitDlg m_dlgErrCorInit;
    CIterationXRangeDlg m_dlgIterationXRange;
    CIterationYRangeDlg m_dlgIterationYRange;
    CSummaryXRangeDlg m_dlgSummaryXRange;
    CSummaryYRangeDlg m_dlgSummaryYRange;
    CTest1DDlg m_dlgTest1D;
    CTest2DDlg m_dlgTest2D;
    COnlineSettingsDlg m_dlgOnlineSettings;

    // ---- control wrappers and plots -------------------------------------------------------------------------
    CButton m_btnCreate2D;
    CButton m_btnCreate1D;
    CButton m_btnTrainingPatterns;
    CButton m_btnTestingPatterns;
    CButton m_btnOnline;
    CStatic m_lblTotalTime;
    CStatic m_lblTotalError;
    CEdit m_editInfo;
    CDataPlot m_dataPlot;
    CListBox m_listInfo;
    CComboBox m_comboAlgorithm;
    CSummaryPlot m_summaryPlot;
    CIterationPlot m_iterationPlot;

    // ---- values exchanged with the main dialog's controls ----------------------------------------------------
    double m_dDesiredError = engine::kDefaultDesiredError;
    UINT m_nIterations = engine::DefaultIterations(engine::kSecondOrder);
    CString m_strDataTitle;
    UINT m_nCurrentIteration = 0;
    double m_dPartialError = 0.0;
    double m_dPartialTime = 0.0;
    UINT m_nUnits = 0;
    double m_dTotalError = 0.0;
    double m_dTotalTime = 0.0;
    UINT m_nTrials = engine::kDefaultTrials;
    int m_bOnline = 0;
    int m_bSaveResults = 0;
    CString m_strInfoEntry;
    int m_nCurveMode = 0;
    int m_nGeneralization = GeneralizationTrainingPatterns;
    HICON m_hIcon = IDI_PROGRAM;

    // ---- network model (workspace/numerics.cpp, on the engine) ---------------------------------------------------
    void PackParameters();
    void UnpackParameters();
    double ComputeError();
    double ComputeOutputs();
    double EvaluatePoint(double x, double y);
    UINT FindWorstPattern();
    void AccumulateSecondOrder();
    void AccumulateImprovedSecondOrder();
    void AccumulateGradient();
    void AccumulateImprovedGradient();
    void InitializeNetwork();

    void ResetNetwork();
    void AddUnitAtWorstPattern();

    // ---- matrix decomposition (workspace/numerics.cpp, on the engine) ------------------------------------------
    // The damped step without forming the inverse: x solves (m_pHessian + damping I) x = m_pGradient, with
    // m_pHessian read from its strict lower triangle and `diagonal`, and its factors written beside that
    // (engine::kernels::SolveDamped; a singular matrix raises "Singular matrix in LUdcmp").
    void SolveHessian(const double* diagonal, double damping, double* x);
    void LUdcmp(double* a, int n, int* indx);

    // ---- training (training/: start.cpp, online.cpp) -------------------------------------------------------------
    void OnStartTraining();
    void OnOnlineTraining();
    int LoadOnlineData(CString* path);

    // ---- result and output files (workspace/writtenfiles.cpp, on the formats of files/) ------------------------
    int CreateResultFile(CString* path);
    void WriteRunResults(CString* path, UINT units, UINT iterations, double error);
    void WriteErrCorResults(CString* path, UINT units, UINT iterations, double error);
    int CreateOutputFile(CString* stampedPath, CString* outputPath);

    // ---- main window (shell/) ------------------------------------------------------------------------------------
    void OnLoadData();                  // loaddata.cpp
    void OnInitialization();            // initialization.cpp
    void ShowSettings();                // initialization.cpp
    void OnVerification();              // verification.cpp
    // The rest in mainwindow.cpp, but for the plots' menus and ranges (plotcommands.cpp) and the choice of
    // the verification's patterns (verifydialogs.cpp).
    BOOL OnInitDialog() override;
    // The information list (infolist.cpp, in workspace/: runs and the written files' members tell it too).
    void AppendInfo(CString strLine);
    void ClearInfo();
    // Tells in the information list where a file was written: "title NAME", then its folder on lines short
    // enough for the list to show whole. On the window's thread.
    void AppendPathInfo(const char* title, const CString& path);
    // Enter and Esc do not end the program: only the close box does (OnClose).
    void OnOK() override {}
    void OnCancel() override {}

    void OnSysCommand(UINT nID, LPARAM lParam);
    void OnPaint() override;
    HCURSOR OnQueryDragIcon();
    void OnClose();
    void OnClearCurves();
    void OnShowInfo();
    void OnSelchangeAlgorithm();
    void OnSaveResults();
    void OnTrainingPatterns();          // verifydialogs.cpp, as the three below
    void OnTestingPatterns();
    void OnCreate2DPatterns();
    void OnCreate1DPatterns();
    void OnOneCurve();
    void OnMultipleCurves();
    void OnRButtonDown(UINT nFlags, CPoint point);  // plotcommands.cpp, as the four below
    void OnIterationXRange();
    void OnSummaryXRange();
    void OnIterationYRange();
    void OnSummaryYRange();

    // Releases every array the workspace owns (the close of the dialog, and the destructor). blocks.cpp.
    void ReleaseArrays();
    // The rules that the algorithm's selection sets: read-out captions, trials, curve radios, summary axis,
    // online training, and the default number of iterations.
    void ApplyAlgorithmRules();

protected:
    void DoDataExchange(CDataExchange* dx) override;
    DECLARE_MESSAGE_MAP()
};

// The run functions (training/runs.cpp): one argument, the workspace; 0 after a normal end, 1 after Stop or a
// failed result file.
UINT TrainSecondOrder(void* pParam);
UINT TrainImprovedSecondOrder(void* pParam);
UINT TrainByErrorCorrection(void* pParam);
UINT TrainFirstOrder(void* pParam);
UINT TrainImprovedFirstOrder(void* pParam);
