// A workspace without its window, whose prompts (file dialogs, modal dialogs, message boxes) are answered
// from a queue and recorded.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "platform/prompt.h"
#include "platform/scripted.h"
#include "workspace/workspace.h"

class WorkspaceTest : public ::testing::Test {
protected:
    using Action = CScriptedPrompts::DialogAction;

    WorkspaceTest() { AfxSetPromptHook(&prompts); }
    ~WorkspaceTest() override { AfxSetPromptHook(nullptr); }

    static std::string Sample(const char* name) { return std::string(VANTREL_SOURCE_DIR) + "/data/" + name; }

    // Writes bytes to a file in the test's temporary directory and returns its path.
    static std::string TempFile(const std::string& name, const std::string& bytes) {
        const std::string path = ::testing::TempDir() + name;
        std::FILE* file = std::fopen(path.c_str(), "wb");
        if (file != nullptr) {
            std::fwrite(bytes.data(), 1, bytes.size(), file);
            std::fclose(file);
        }
        return path;
    }

    static Action Ok() { return Action{Action::Ok, 0, ""}; }
    static Action Cancel() { return Action{Action::Cancel, 0, ""}; }
    static Action Click(int id) { return Action{Action::Click, id, ""}; }
    static Action Set(int id, const char* text) { return Action{Action::Set, id, text}; }

    static std::string Box(const char* text) { return std::string("box Error [stop]: ") + text; }

    // Load Data with the file at path; the Data Set Information dialog gets the actions (none: it is closed
    // without OK).
    void LoadData(const std::string& path, std::vector<Action> info = {Ok()}) {
        prompts.QueueFile(path, false, "data file");
        prompts.QueueDialog(CDataSetInfoDlg::IDD, std::move(info), "data set information");
        dlg.OnLoadData();
    }

    std::vector<std::string> transcript;
    CScriptedPrompts prompts{[this](const std::string& line) { transcript.push_back(line); }};
    CVantrelDlg dlg;
};
