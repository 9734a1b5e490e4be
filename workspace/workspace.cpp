#include "workspace/workspace.h"

#include "platform/thread.h"

CVantrelDlg::CVantrelDlg(CWnd* parent) : CDialog(IDD, parent) {}

CVantrelDlg::~CVantrelDlg() {
    // A worker must never outlive the arrays it uses: the window's close waits for it, and so does this.
    m_bTraining = false;
    if (AfxRunningWorkers() > 0) AfxWaitForWorkers();
    ReleaseArrays();
}

void CVantrelDlg::ReleaseArrays() {
    double** arrays[] = {&m_pInputs,           &m_pTargets,        &m_pInputWeights,     &m_pOutputWeights,
                         &m_pWidths,           &m_pCenters,        &m_pInitInputWeights, &m_pInitOutputWeights,
                         &m_pInitWidths,       &m_pInitCenters,    &m_pOutputs,          &m_pGradient,
                         &m_pHessian,          &m_pHessianInv,     &m_pParams,           &m_pDelta};
    for (double** array : arrays) {
        delete[] *array;
        *array = nullptr;
    }
}
