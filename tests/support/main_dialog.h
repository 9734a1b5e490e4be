// The main dialog built hidden, its prompts (file dialogs, modal dialogs, message boxes, menus) answered from a
// queue and recorded, and the program directory, where result and output files land, moved to a temporary
// folder of the test's own.
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <vector>

#include "platform/dialogwindow.h"
#include "platform/files.h"
#include "tools/scripted/scripted.h"
#include "platform/thread.h"
#include "platform/uiqueue.h"
#include "support/paths.h"
#include "support/tempfolder.h"
#include "workspace/workspace.h"

class MainDialogTest : public ::testing::Test {
protected:
    using Action = CScriptedPrompts::DialogAction;

    void SetUp() override {
        AfxSetPromptHook(&m_prompts);
        AfxSetModuleDirectory(m_folder.Path().c_str());
        ASSERT_TRUE(m_dlg.CreateHidden());
    }
    void TearDown() override {
        m_dlg.m_cancel.Abandon();  // a test that failed during a run leaves no worker behind
        platform::PumpUntilWorkersDone(10000);
        AfxSetModuleDirectory("");
        AfxSetPromptHook(nullptr);
    }

    // What the window shows once the operations that workers queued are taken in.
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

    // The path that the information list tells on the lines from the last one that begins with title: the name
    // behind the title, the folder on the lines after it ("in ...", then "   ..."). Empty when no line tells one.
    std::string ToldPath(const std::string& title) {
        const std::vector<std::string> lines = m_dlg.Window()->Items(1015);
        std::string folder, name;
        for (const std::string& line : lines) {
            if (line.rfind(title + " ", 0) == 0) {
                name = line.substr(title.size() + 1);
                folder.clear();
            } else if (!name.empty() && (line.rfind("in ", 0) == 0 || line.rfind("   ", 0) == 0)) {
                folder += line.substr(3);
            }
        }
        return name.empty() ? std::string() : folder + name;
    }

    const std::vector<std::string>& Boxes() const { return m_prompts.Boxes(); }
    static std::string Box(const char* text) { return std::string("box Error [stop]: ") + text; }

    static Action Ok() { return Action{Action::Ok, 0, ""}; }
    static Action Cancel() { return Action{Action::Cancel, 0, ""}; }
    static Action Click(int id) { return Action{Action::Click, id, ""}; }
    static Action Set(int id, const char* text) { return Action{Action::Set, id, text}; }

    // Load Data with the file at path; the Data Set Information dialog gets the actions (none: it is closed
    // without OK).
    void LoadData(const std::string& path, std::vector<Action> info = {Ok()}) {
        m_prompts.QueueFile(path, false, "data file");
        m_prompts.QueueDialog(CDataSetInfoDlg::IDD, std::move(info), "data set information");
        m_dlg.OnLoadData();
    }

    std::vector<std::string> ResultFiles() const { return m_folder.Files("_result.txt"); }
    // The one result file's bytes, or a note on how many there are.
    std::string ResultText() const {
        const std::vector<std::string> files = ResultFiles();
        if (files.size() != 1) return "<" + std::to_string(files.size()) + " result files>";
        return TempFolder::Read(files[0]);
    }
    static int Count(const std::string& text, const std::string& what) {
        int count = 0;
        for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) ++count;
        return count;
    }

    TempFolder m_folder;
    std::vector<std::string> m_printed;
    CScriptedPrompts m_prompts{[this](const std::string& line) { m_printed.push_back(line); }};
    CVantrelDlg m_dlg;
};
