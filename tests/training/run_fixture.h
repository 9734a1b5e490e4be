// The hidden main dialog with a small data set and a network set by hand, for whole training runs.
#pragma once

#include <string>
#include <vector>

#include <algorithm>

#include "support/main_dialog.h"
#include "workspace/blocks.h"

class TrainingRun : public MainDialogTest {
protected:
    // Rows of inputs followed by the desired output.
    void LoadPatterns(const std::vector<std::vector<double>>& rows) {
        const UINT inputs = static_cast<UINT>(rows.at(0).size() - 1);
        m_dlg.m_nPatterns = static_cast<UINT>(rows.size());
        m_dlg.m_nInputs = inputs;
        m_dlg.m_nOutputs = 1;
        ReplaceBlocks(m_dlg, {Block::Inputs, Block::Targets}, CountsOf(m_dlg));
        for (size_t p = 0; p < rows.size(); ++p) {
            for (UINT i = 0; i < inputs; ++i) m_dlg.m_pInputs[p * inputs + i] = rows[p][i];
            m_dlg.m_pTargets[p] = rows[p][inputs];
        }
        m_dlg.m_bDataLoaded = true;
    }

    // A network as a parameter file would leave it: trials go on from it and never draw a new one.
    void SetNetwork(const std::vector<double>& inputWeights, const std::vector<double>& outputWeights,
                    const std::vector<double>& widths, const std::vector<double>& centers) {
        m_dlg.m_nUnits = static_cast<UINT>(widths.size());
        ReplaceBlocks(m_dlg,
                      {Block::InputWeights, Block::OutputWeights, Block::Widths, Block::Centers,
                       Block::InitInputWeights, Block::InitOutputWeights, Block::InitWidths, Block::InitCenters},
                      CountsOf(m_dlg));
        Store(m_dlg.m_pInputWeights, inputWeights);
        Store(m_dlg.m_pOutputWeights, outputWeights);
        Store(m_dlg.m_pWidths, widths);
        Store(m_dlg.m_pCenters, centers);
        Store(m_dlg.m_pInitInputWeights, inputWeights);
        Store(m_dlg.m_pInitOutputWeights, outputWeights);
        Store(m_dlg.m_pInitWidths, widths);
        Store(m_dlg.m_pInitCenters, centers);
        m_dlg.m_dlgInitialization.m_nLoadFromFile = 1;
        m_dlg.m_bNetworkReady = true;
    }

    // Five patterns of one input and two units.
    void LoadSmallProblem() {
        LoadPatterns({{0.0, 0.2}, {0.5, 0.9}, {1.0, 0.6}, {1.5, -0.3}, {2.0, 0.1}});
        SetNetwork({1.0, 1.0}, {0.1, 0.8, -0.5}, {0.5, 0.7}, {0.4, 1.6});
    }

    // Calls a run function on this thread, as the worker would, with m_bTraining and the token as Start sets
    // them.
    UINT Run(UINT (*run)(void*)) {
        m_dlg.m_cancel.Reset();
        m_dlg.m_bTraining = true;
        const UINT result = run(&m_dlg);
        platform::DrainGuiQueue();
        return result;
    }

    // How a run that did not end normally leaves the window: Start is back and the controls it locked are free,
    // but Verification stays off.
    void ExpectEndedAbnormally() {
        EXPECT_FALSE(m_dlg.m_bTraining);
        EXPECT_EQ(Text(1010), "Start Training");
        ExpectEnabled({1009, 1014, 1064, 1055}, true);
        EXPECT_FALSE(Enabled(1038)) << "Verification must stay off";
    }

    std::vector<double> Curve(CDoubleArray& series) {
        std::vector<double> values;
        for (int i = 0; i < series.GetSize(); ++i) values.push_back(series.GetAt(i));
        return values;
    }

private:
    static void Store(double* array, const std::vector<double>& values) {
        std::copy(values.begin(), values.end(), array);
    }
};
