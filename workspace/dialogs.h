// The ten dialogs that the workspace keeps as members, so that what a user typed stays from one opening to
// the next, and the choices that the main dialog's radio groups hold. The dialogs' handlers are defined with
// the handlers they serve: shell/ (data set, initialization, verification, plot ranges), training/ (online
// training).
#pragma once

#include "engine/defaults.h"
#include "platform/window.h"
#include "workspace/controls.h"

class CDataSetInfoDlg : public CDialog {
public:
    enum { IDD = IDD_DATA_SET_INFO };
    CDataSetInfoDlg() : CDialog(IDD) {}
    void OnOK() override;
    void OnClassification();
    void OnApproximation();

    UINT m_nInputs = 0;
    UINT m_nOutputs = 0;
    int m_nDataSetType = 0;
    UINT m_nPatterns = 0;

protected:
    void DoDataExchange(CDataExchange* dx) override;
    DECLARE_MESSAGE_MAP()
};

class CInitializationDlg : public CDialog {
public:
    enum { IDD = IDD_INITIALIZATION };
    CInitializationDlg() : CDialog(IDD) {}
    BOOL OnInitDialog() override;
    void OnOK() override;

    double m_dInputWeightMin = 0.5;
    double m_dInputWeightMax = 1.0;
    double m_dInputWeightFixed = 1.0;
    double m_dOutputWeightMin = 0.5;
    double m_dOutputWeightMax = 1.0;
    double m_dOutputWeightFixed = 1.0;
    double m_dWidthMin = 0.5;
    double m_dWidthMax = 1.0;
    double m_dWidthFixed = 1.0;
    int m_nInputWeightMode = 1;
    int m_nOutputWeightMode = 1;
    int m_nWidthMode = 1;
    int m_nCenterMode = 2;
    UINT m_nUnits = 1;
    double m_dMomentum = engine::kDefaultMomentum;
    double m_dLearningConstant = engine::kDefaultLearningConstant;
    int m_nLoadFromFile = 0;
    UINT m_nPatterns = 0;

    CEdit m_editLearningConstant;
    CEdit m_editMomentum;
    CButton m_btnLoadFromFile;
    CButton m_btnManual;

protected:
    void DoDataExchange(CDataExchange* dx) override;
    void OnManualSelection();
    void OnLoadFromFile();
    void OnInputWeightRandom();
    void OnInputWeightFixed();
    void OnOutputWeightRandom();
    void OnOutputWeightFixed();
    void OnWidthRandom();
    void OnWidthFixed();
    void OnCenterFromRange();
    void OnCenterWithRepetition();
    void OnCenterNoRepetition();
    // Enables the controls of the manual selection (or disables all of them when loading from a file).
    void ApplyEnableRules();
    void ApplyGroupRule(int mode, int lowerId, int upperId, int fixedId);
    DECLARE_MESSAGE_MAP()
};

class CErrCorInitDlg : public CDialog {
public:
    enum { IDD = IDD_ERRCOR_INIT };
    CErrCorInitDlg() : CDialog(IDD) {}
    UINT m_nMaxUnits = engine::kDefaultMaxUnits;

protected:
    void DoDataExchange(CDataExchange* dx) override;
};

// The three dialogs of a pair of boundaries (exponents of ten) share their shape.
class CRangeDlg : public CDialog {
public:
    explicit CRangeDlg(UINT idd) : CDialog(idd) {}
    double m_dLower = 0;
    double m_dUpper = 0;

protected:
    void DoDataExchange(CDataExchange* dx) override;
};

class CIterationXRangeDlg : public CRangeDlg {
public:
    enum { IDD = IDD_ITERATION_X_RANGE };
    CIterationXRangeDlg() : CRangeDlg(IDD) {}
};

class CIterationYRangeDlg : public CRangeDlg {
public:
    enum { IDD = IDD_ITERATION_Y_RANGE };
    CIterationYRangeDlg() : CRangeDlg(IDD) {}
};

class CSummaryYRangeDlg : public CRangeDlg {
public:
    enum { IDD = IDD_SUMMARY_Y_RANGE };
    CSummaryYRangeDlg() : CRangeDlg(IDD) {}
};

class CSummaryXRangeDlg : public CDialog {
public:
    enum { IDD = IDD_SUMMARY_X_RANGE };
    CSummaryXRangeDlg() : CDialog(IDD) {}
    UINT m_nMultiplier = 0;

protected:
    void DoDataExchange(CDataExchange* dx) override;
};

// The pattern set of a verification, as the Generalization Setting radios choose it. Int-backed and unscoped,
// so that m_nGeneralization stays the int that radio data exchange works on.
enum Generalization : int {
    GeneralizationTrainingPatterns = 0,  // 1056 "Training Patterns": the workspace's patterns
    GeneralizationTestingPatterns = 1,   // 1057 "Testing Patterns": a file chosen at each press
    GeneralizationCreate1D = 2,          // 1059 "Create 1-D Patterns": the grid of m_dlgTest1D
    GeneralizationCreate2D = 3,          // 1058 "Create 2-D Patterns": the grid of m_dlgTest2D
};

class CTest1DDlg : public CDialog {
public:
    enum { IDD = IDD_TEST_1D };
    CTest1DDlg() : CDialog(IDD) {}
    double m_dMaxValue = 0;
    double m_dMinValue = 0;
    UINT m_nPoints = 0;

    void OnOK() override;

protected:
    void DoDataExchange(CDataExchange* dx) override;
};

class CTest2DDlg : public CDialog {
public:
    enum { IDD = IDD_TEST_2D };
    CTest2DDlg() : CDialog(IDD) {}
    double m_dMaxX = 0;
    double m_dMinX = 0;
    UINT m_nPointsX = 0;
    double m_dMaxY = 0;
    double m_dMinY = 0;
    UINT m_nPointsY = 0;

    void OnOK() override;

protected:
    void DoDataExchange(CDataExchange* dx) override;
};

class COnlineSettingsDlg : public CDialog {
public:
    enum { IDD = IDD_ONLINE_SETTINGS };
    COnlineSettingsDlg() : CDialog(IDD) {}
    UINT m_nCurrentUnits = 0;
    UINT m_nExtraUnits = 0;
    CString m_strNewDataPath;

    // Stays open while the extra count is 0; the path may be empty.
    void OnOK() override;

protected:
    void DoDataExchange(CDataExchange* dx) override;
    void OnBrowse();
    DECLARE_MESSAGE_MAP()
};

class CAboutDlg : public CDialog {
public:
    enum { IDD = IDD_ABOUT };
    CAboutDlg() : CDialog(IDD) {}
};
