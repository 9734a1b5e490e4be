// The dialog layer where it can break: data exchange, radio groups, check boxes, dialog units, and the order
// and blocking of control operations made from a worker.
#include <gtest/gtest.h>

#include <QFontMetrics>
#include <QWidget>
#include <atomic>
#include <thread>
#include <string>

#include "platform/dialogwindow.h"
#include "tools/scripted/scripted.h"
#include "platform/thread.h"
#include "platform/uiqueue.h"
#include "platform/window.h"

namespace {

// A dialog on the initialization template, exchanging a few of its controls with plain fields.
class ExchangeDialog : public CDialog {
public:
    ExchangeDialog() : CDialog(130) {}
    double m_dValue = 0.0001;
    UINT m_nCount = 7;
    double m_dAfter = 2.5;
    int m_nWeightMode = 1;
    int m_nCenterMode = 2;
    int m_nFromFile = 0;

protected:
    void DoDataExchange(CDataExchange* dx) override {
        DDX_Text(dx, 1045, m_dValue);
        DDX_Text(dx, 1096, m_nCount);
        DDX_Text(dx, 1073, m_dAfter);
        DDX_Radio(dx, 1091, m_nWeightMode);
        DDX_Radio(dx, 1088, m_nCenterMode);
    }
};

class DialogLayer : public ::testing::Test {
protected:
    void SetUp() override {
        AfxSetPromptHook(&m_prompts);
        ASSERT_TRUE(m_dialog.CreateHidden());
        m_window = dynamic_cast<platform::DialogWindow*>(m_dialog.Window());
        ASSERT_NE(m_window, nullptr);
    }
    void TearDown() override { AfxSetPromptHook(nullptr); }

    std::vector<std::string> m_printed;
    CScriptedPrompts m_prompts{[this](const std::string& line) { m_printed.push_back(line); }};
    ExchangeDialog m_dialog;
    platform::DialogWindow* m_window = nullptr;
};

TEST_F(DialogLayer, DoublesShowAsTheFrameworkShowedThemAndReadBackExactly) {
    EXPECT_EQ(m_window->Text(1045), "0.0001");
    m_dialog.m_dValue = 0.1 + 0.2;
    m_dialog.UpdateData(FALSE);
    EXPECT_EQ(m_window->Text(1045), "0.3");
    m_window->TypeText(1045, " 1e-3 ");
    ASSERT_TRUE(m_dialog.UpdateData(TRUE));
    EXPECT_DOUBLE_EQ(m_dialog.m_dValue, 0.001);
}

TEST_F(DialogLayer, DoublesTakeOnlyFiniteDecimalNumbers) {
    for (const char* bad : {"nan", "inf", "-infinity", "1e400", "0x1p-3", ".", "1e", "+-1", "1.5.2"}) {
        m_window->TypeText(1045, bad);
        EXPECT_FALSE(m_dialog.UpdateData(TRUE)) << "'" << bad << "' was accepted";
        EXPECT_EQ(m_printed.back(), "box Vantrel [exclamation]: Please enter a number.") << bad;
    }
    EXPECT_DOUBLE_EQ(m_dialog.m_dValue, 0.0001) << "a refused text must leave the field as it was";
    m_window->TypeText(1045, "-.5E+2");
    ASSERT_TRUE(m_dialog.UpdateData(TRUE));
    EXPECT_DOUBLE_EQ(m_dialog.m_dValue, -50);
}

TEST_F(DialogLayer, UnsignedAcceptsDigitsOnly) {
    EXPECT_EQ(m_window->Text(1096), "7");
    m_window->TypeText(1096, "4294967295");
    ASSERT_TRUE(m_dialog.UpdateData(TRUE));
    EXPECT_EQ(m_dialog.m_nCount, 4294967295u);
    for (const char* bad : {"-1", "4294967296", "12abc", ""}) {
        m_window->TypeText(1096, bad);
        m_prompts.Boxes();
        EXPECT_FALSE(m_dialog.UpdateData(TRUE)) << "'" << bad << "' was accepted";
        EXPECT_EQ(m_printed.back(), "box Vantrel [exclamation]: Please enter a positive integer.") << bad;
    }
}

TEST_F(DialogLayer, TextThatDoesNotParseStopsTheExchangeAtThatField) {
    m_window->TypeText(1045, "0.25");
    m_window->TypeText(1096, "abc");
    m_window->TypeText(1073, "9");
    EXPECT_FALSE(m_dialog.UpdateData(TRUE));
    EXPECT_DOUBLE_EQ(m_dialog.m_dValue, 0.25) << "fields before the bad one are read";
    EXPECT_EQ(m_dialog.m_nCount, 7u) << "the bad field keeps its value";
    EXPECT_DOUBLE_EQ(m_dialog.m_dAfter, 2.5) << "fields after the bad one are not read";
    m_window->TypeText(1045, "1,5");
    EXPECT_FALSE(m_dialog.UpdateData(TRUE));
    EXPECT_EQ(m_printed.back(), "box Vantrel [exclamation]: Please enter a number.");
}

TEST_F(DialogLayer, RadioGroupsFollowTheTemplatesGroupMarks) {
    EXPECT_EQ(m_window->RadioGroupOf(1088), (std::vector<int>{1088, 1089, 1090}));
    EXPECT_EQ(m_window->Send(1092, BM_GETCHECK, 0, 0), BST_CHECKED);
    EXPECT_EQ(m_window->Send(1090, BM_GETCHECK, 0, 0), BST_CHECKED);
    ASSERT_TRUE(m_window->ClickControl(1089));
    EXPECT_EQ(m_window->Send(1090, BM_GETCHECK, 0, 0), BST_UNCHECKED) << "a click unchecks the rest of its group";
    EXPECT_EQ(m_window->Send(1092, BM_GETCHECK, 0, 0), BST_CHECKED) << "another group is untouched";
    ASSERT_TRUE(m_window->ClickControl(1089));
    EXPECT_EQ(m_window->Send(1089, BM_GETCHECK, 0, 0), BST_CHECKED) << "clicking a checked radio keeps it";
    m_dialog.UpdateData(TRUE);
    EXPECT_EQ(m_dialog.m_nCenterMode, 1);
    EXPECT_EQ(m_dialog.m_nWeightMode, 1);
    // Two radios that each start a group of their own are independent.
    m_window->ClickControl(1070);
    m_window->ClickControl(1071);
    EXPECT_EQ(m_window->Send(1070, BM_GETCHECK, 0, 0), BST_CHECKED);
}

TEST_F(DialogLayer, DisabledControlsIgnoreClicksAndTyping) {
    m_window->SetEnabled(1089, false);
    EXPECT_FALSE(m_window->ClickControl(1089));
    EXPECT_EQ(m_window->Send(1089, BM_GETCHECK, 0, 0), BST_UNCHECKED);
    m_window->SetEnabled(1045, false);
    EXPECT_FALSE(m_window->TypeText(1045, "5"));
}

TEST_F(DialogLayer, DialogUnitsComeFromTheDialogFontMetrics) {
    const QFontMetrics metrics(m_window->font());
    const int average =
        (metrics.horizontalAdvance(QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz")) / 26 + 1) / 2;
    EXPECT_EQ(m_window->DluToPixelsX(4), average);
    EXPECT_EQ(m_window->DluToPixelsY(8), metrics.height());
    EXPECT_EQ(m_window->width(), m_window->DluToPixelsX(260));
    EXPECT_EQ(m_window->height(), m_window->DluToPixelsY(294));
    const QWidget* edit = m_window->Control(1096);  // at 113,77,25,12
    EXPECT_EQ(edit->geometry(), QRect(QPoint(m_window->DluToPixelsX(113), m_window->DluToPixelsY(77)),
                                      QPoint(m_window->DluToPixelsX(113 + 25) - 1, m_window->DluToPixelsY(77 + 12) - 1)));
}

// Both boxes of the main dialog are sorted: an added line finds its place ignoring case, after its equals;
// an inserted line stays at its index.
TEST(DialogLines, AddedLinesTakeTheirSortedPlaceInsertedOnesTheirIndex) {
    CScriptedPrompts prompts([](const std::string&) {});
    AfxSetPromptHook(&prompts);
    CDialog dialog(102);
    ASSERT_TRUE(dialog.CreateHidden());
    platform::DialogControls& window = *dialog.Window();
    const struct { int id; UINT add, insert; } boxes[] = {{1014, CB_ADDSTRING, CB_INSERTSTRING},
                                                          {1015, LB_ADDSTRING, LB_INSERTSTRING}};
    for (const auto& box : boxes) {
        const auto send = [&](UINT message, int index, const char* line) {
            return window.Send(box.id, message, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(line));
        };
        window.Send(box.id, box.id == 1014 ? CB_RESETCONTENT : LB_RESETCONTENT, 0, 0);
        EXPECT_EQ(send(box.add, 0, "beta"), 0);
        EXPECT_EQ(send(box.add, 0, "Gamma"), 1);
        EXPECT_EQ(send(box.add, 0, "alpha"), 0);
        EXPECT_EQ(send(box.add, 0, "BETA"), 2) << "after its equal";
        EXPECT_EQ(send(box.insert, 1, "zeta"), 1) << "an insert keeps its index";
        EXPECT_EQ(send(box.insert, -1, "omega"), 5) << "-1 inserts at the end";
        EXPECT_EQ(window.Items(box.id),
                  (std::vector<std::string>{"alpha", "zeta", "beta", "BETA", "Gamma", "omega"})) << box.id;
    }
    AfxSetPromptHook(nullptr);
}

// ---- a worker's control operations -----------------------------------------------------------------------

struct WorkerScript {
    CDialog* dialog;
    std::atomic<bool> boxReturned{false};
    std::atomic<bool> seenBeforeAnswer{true};
};

UINT WriteManyThenAsk(void* param) {
    auto* script = static_cast<WorkerScript*>(param);
    CWnd* edit = script->dialog->GetDlgItem(1045);
    for (int i = 1; i <= 20000; ++i) {
        CString text;
        text.Format("%d", i);
        edit->SetWindowText(text);
    }
    script->dialog->GetDlgItem(1096)->EnableWindow(FALSE);
    script->dialog->MessageBox("worker asks", "Error", MB_ICONHAND);
    script->boxReturned = true;
    edit->SetWindowText("after the box");
    return 0;
}

class RecordingPrompts : public CScriptedPrompts {
public:
    RecordingPrompts(platform::DialogWindow*& window, WorkerScript& script)
        : CScriptedPrompts([](const std::string&) {}), m_window(window), m_script(script) {}
    int MessageBox(CWnd* owner, const CString& text, const CString& caption, UINT type) override {
        // Everything queued before the box is on screen when it shows, and the worker is still waiting.
        textAtBox = m_window->Text(1045);
        enabledAtBox = m_window->IsEnabled(1096);
        m_script.seenBeforeAnswer = m_script.boxReturned.load();
        return CScriptedPrompts::MessageBox(owner, text, caption, type);
    }
    std::string textAtBox;
    bool enabledAtBox = true;

private:
    platform::DialogWindow*& m_window;
    WorkerScript& m_script;
};

TEST_F(DialogLayer, WorkerOperationsArriveInOrderAndItsMessageBoxWaitsForTheAnswer) {
    WorkerScript script{&m_dialog};
    RecordingPrompts prompts(m_window, script);
    AfxSetPromptHook(&prompts);
    AfxBeginThread(WriteManyThenAsk, &script);
    ASSERT_TRUE(platform::PumpUntilWorkersDone(30000));
    EXPECT_EQ(prompts.textAtBox, "20000") << "the last text queued before the box shows when it opens";
    EXPECT_FALSE(prompts.enabledAtBox) << "the enable change queued before the box is applied first";
    EXPECT_FALSE(script.seenBeforeAnswer) << "the worker went on before its message box was answered";
    EXPECT_EQ(prompts.Boxes(), (std::vector<std::string>{"box Error [stop]: worker asks"}));
    EXPECT_EQ(m_window->Text(1045), "after the box");
}

TEST(WorkerQueue, TextsOfOneControlCoalesceButKeepTheirPlaceAmongOthers) {
    std::vector<std::string> applied;
    const int keyA = 0;
    const int keyB = 0;
    std::thread worker([&] {
        platform::PostToGui([&] { applied.push_back("A1"); }, &keyA);
        platform::PostToGui([&] { applied.push_back("B1"); }, &keyB);
        platform::PostToGui([&] { applied.push_back("enable"); });
        platform::PostToGui([&] { applied.push_back("A2"); }, &keyA);
    });
    worker.join();
    platform::DrainGuiQueue();
    EXPECT_EQ(applied, (std::vector<std::string>{"B1", "enable", "A2"}));
}

}  // namespace
