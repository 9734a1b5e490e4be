// A hidden main dialog with a small data set and a network set by hand, message boxes answered and recorded,
// and result files written into a temporary directory.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "platform/dialogwindow.h"
#include "platform/files.h"
#include "platform/scripted.h"
#include "platform/uiqueue.h"
#include "workspace/blocks.h"
#include "workspace/workspace.h"

class TrainingRun : public ::testing::Test {
protected:
    void SetUp() override {
        AfxSetPromptHook(&m_prompts);
        ASSERT_TRUE(m_dlg.CreateHidden());
        char pattern[] = "/tmp/vantrel-training-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        m_dir = pattern;
        AfxSetModuleDirectory(m_dir.c_str());
    }

    void TearDown() override {
        platform::PumpUntilWorkersDone(10000);
        AfxSetModuleDirectory("");
        AfxSetPromptHook(nullptr);
        std::filesystem::remove_all(m_dir);
    }

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

    // Calls a run function on this thread, as the worker would, with m_bTraining set as Start sets it.
    UINT Run(UINT (*run)(void*)) {
        m_dlg.m_bTraining = true;
        const UINT result = run(&m_dlg);
        platform::DrainGuiQueue();
        return result;
    }

    std::string Text(int id) {
        platform::DrainGuiQueue();
        return m_dlg.Window()->Text(id);
    }
    bool Enabled(int id) {
        platform::DrainGuiQueue();
        return m_dlg.Window()->IsEnabled(id);
    }
    void ExpectEnabled(std::initializer_list<int> ids, bool enabled) {
        for (int id : ids) EXPECT_EQ(Enabled(id), enabled) << "control " << id;
    }

    std::vector<std::string> ResultFiles() const {
        std::vector<std::string> files;
        for (const auto& entry : std::filesystem::directory_iterator(m_dir))
            if (entry.path().string().find("_result.txt") != std::string::npos) files.push_back(entry.path());
        return files;
    }
    std::string ResultText() const {
        const std::vector<std::string> files = ResultFiles();
        if (files.size() != 1) return "<" + std::to_string(files.size()) + " result files>";
        std::ifstream in(files[0], std::ios::binary);
        std::stringstream text;
        text << in.rdbuf();
        return text.str();
    }
    static int Count(const std::string& text, const std::string& what) {
        int count = 0;
        for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) ++count;
        return count;
    }

    const std::vector<std::string>& Boxes() const { return m_prompts.Boxes(); }

    std::vector<double> Curve(CDoubleArray& series) {
        return std::vector<double>(series.GetData(), series.GetData() + series.GetSize());
    }

    std::vector<std::string> m_printed;
    CScriptedPrompts m_prompts{[this](const std::string& line) { m_printed.push_back(line); }};
    CVantrelDlg m_dlg;
    std::string m_dir;

private:
    static void Store(double* array, const std::vector<double>& values) {
        std::copy(values.begin(), values.end(), array);
    }
};
