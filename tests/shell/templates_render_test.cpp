// Every dialog template builds into a window of its size with every control at its rectangle, and renders.
// The pictures land in the pictures folder, for a person to look at.
#include <gtest/gtest.h>

#include <QWidget>

#include "platform/dialogwindow.h"
#include "platform/qtaccess.h"
#include "platform/scripted.h"
#include "platform/templates.h"
#include "support/picture.h"

namespace {

class PlainDialog : public CDialog {
public:
    explicit PlainDialog(UINT idd) : CDialog(idd) {}
};

TEST(DialogTemplates, EachBuildsAtItsSizeWithEveryControlAtItsRectangleAndRenders) {
    CScriptedPrompts prompts([](const std::string&) {});
    AfxSetPromptHook(&prompts);
    const ResourceTable& table = AfxGetResourceTable();
    ASSERT_GT(table.dialogCount, 0);
    for (int d = 0; d < table.dialogCount; ++d) {
        const DialogTemplate& tpl = table.dialogs[d];
        PlainDialog dialog(static_cast<UINT>(tpl.id));
        ASSERT_TRUE(dialog.CreateHidden()) << "dialog " << tpl.id;
        platform::DialogWindow* window = dialog.Window();
        EXPECT_EQ(window->size(), QSize(window->DluToPixelsX(tpl.cx), window->DluToPixelsY(tpl.cy))) << tpl.id;
        for (int c = 0; c < tpl.controlCount; ++c) {
            const ControlTemplate& control = tpl.controls[c];
            if (control.id <= 0 || control.kind == ControlKind::ComboBox) continue;
            const QWidget* widget = window->Control(control.id);
            ASSERT_NE(widget, nullptr) << "dialog " << tpl.id << " lacks control " << control.id;
            const QRect expected(window->DluToPixelsX(control.x), window->DluToPixelsY(control.y),
                                 window->DluToPixelsX(control.cx), window->DluToPixelsY(control.cy));
            QRect actual = widget->geometry();
            // A caption may run past its rectangle to show its whole text; it never starts elsewhere.
            if (control.kind != ControlKind::Edit && actual.width() > expected.width()) actual.setWidth(expected.width());
            EXPECT_EQ(actual, expected) << "dialog " << tpl.id << " control " << control.id;
        }
        window->setAttribute(Qt::WA_DontShowOnScreen);
        window->show();
        const Picture picture = Picture::Of(*window);
        EXPECT_FALSE(picture.IsNull()) << tpl.id;
        picture.Save("dialog_" + std::to_string(tpl.id));
        window->hide();
    }
    AfxSetPromptHook(nullptr);
}

}  // namespace
