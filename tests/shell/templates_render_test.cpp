// Every dialog template builds into a window of its size with every control at its rectangle, every caption
// fits its rectangle in the dialog font, no control runs into a frame or a neighbour, and each renders. The
// pictures land in the pictures folder, for a person to look at.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QComboBox>
#include <QStyleOptionButton>
#include <QStyleOptionComboBox>

#include "platform/dialogwindow.h"
#include "tools/scripted/scripted.h"
#include "support/picture.h"
#include "workspace/workspace.h"

namespace {

class PlainDialog : public CDialog {
public:
    explicit PlainDialog(UINT idd) : CDialog(idd) {}
};

template <class Check>
void ForEachDialog(Check check) {
    CScriptedPrompts prompts([](const std::string&) {});
    AfxSetPromptHook(&prompts);
    const ResourceTable& table = AfxGetResourceTable();
    ASSERT_GT(table.dialogCount, 0);
    for (int d = 0; d < table.dialogCount; ++d) {
        PlainDialog dialog(static_cast<UINT>(table.dialogs[d].id));
        ASSERT_TRUE(dialog.CreateHidden()) << "dialog " << table.dialogs[d].id;
        check(table.dialogs[d], *dynamic_cast<platform::DialogWindow*>(dialog.Window()));
    }
    AfxSetPromptHook(nullptr);
}

// The width a control draws its caption in: a label's whole rectangle, a button's contents as its style lays
// them out beside the check mark or inside the bevel, a group's frame less the title's indent and padding.
// -1 for none, and for a rule of hyphens, which is meant to be cut.
int CaptionRoom(const ControlTemplate& control, const platform::DialogWindow& window) {
    const QString caption = QString::fromLatin1(control.caption != nullptr ? control.caption : "");
    if (caption.isEmpty() || caption.count('-') == caption.size()) return -1;
    if (control.kind == ControlKind::Static) return (control.style & SS_SUNKEN) ? -1 : window.ControlRect(control).width();
    if (control.kind == ControlKind::GroupBox) return window.ControlRect(control).width() - window.DluToPixelsX(4) - 4;
    auto* button = qobject_cast<QAbstractButton*>(window.Control(control.id));
    if (button == nullptr) return -1;
    QStyleOptionButton option;
    option.initFrom(button);
    const auto element = control.kind == ControlKind::AutoCheckBox      ? QStyle::SE_CheckBoxContents
                         : control.kind == ControlKind::AutoRadioButton ? QStyle::SE_RadioButtonContents
                                                                        : QStyle::SE_PushButtonContents;
    return button->style()->subElementRect(element, &option, button).width();
}

}  // namespace

TEST(DialogTemplates, EachBuildsAtItsSizeWithEveryControlAtItsRectangleAndRenders) {
    ForEachDialog([](const DialogTemplate& tpl, platform::DialogWindow& window) {
        EXPECT_EQ(window.size(), QSize(window.DluToPixelsX(tpl.cx), window.DluToPixelsY(tpl.cy))) << tpl.id;
        for (int c = 0; c < tpl.controlCount; ++c) {
            const ControlTemplate& control = tpl.controls[c];
            if (control.id <= 0 || control.kind == ControlKind::ComboBox) continue;
            const QWidget* widget = window.Control(control.id);
            ASSERT_NE(widget, nullptr) << "dialog " << tpl.id << " lacks control " << control.id;
            const QRect expected(QPoint(window.DluToPixelsX(control.x), window.DluToPixelsY(control.y)),
                                 QPoint(window.DluToPixelsX(control.x + control.cx) - 1,
                                        window.DluToPixelsY(control.y + control.cy) - 1));
            EXPECT_EQ(widget->geometry(), expected) << "dialog " << tpl.id << " control " << control.id;
        }
        window.setAttribute(Qt::WA_DontShowOnScreen);
        window.show();
        const Picture picture = Picture::Of(window);
        EXPECT_FALSE(picture.IsNull()) << tpl.id;
        picture.Save("dialog_" + std::to_string(tpl.id));
        window.hide();
    });
}

TEST(DialogTemplates, EveryCaptionFitsItsRectangleInTheDialogFont) {
    ForEachDialog([](const DialogTemplate& tpl, platform::DialogWindow& window) {
        const QFontMetrics metrics(window.font());
        EXPECT_LE(metrics.height(), window.DluToPixelsY(8)) << "a line of text is taller than 8 dialog units";
        for (int c = 0; c < tpl.controlCount; ++c) {
            const int room = CaptionRoom(tpl.controls[c], window);
            if (room < 0) continue;
            EXPECT_LE(metrics.horizontalAdvance(QString::fromLatin1(tpl.controls[c].caption)), room)
                << "dialog " << tpl.id << ": \"" << tpl.controls[c].caption << "\" is cut at its rectangle";
        }
    });
}

TEST(DialogTemplates, NoControlRunsIntoAFrameOrNeighbourItsRectangleKeepsClearOf) {
    ForEachDialog([](const DialogTemplate& tpl, platform::DialogWindow& window) {
        for (int i = 0; i < tpl.controlCount; ++i)
            for (int j = 0; j < tpl.controlCount; ++j) {
                const ControlTemplate& a = tpl.controls[i];
                const ControlTemplate& b = tpl.controls[j];
                const QRect tableA(a.x, a.y, a.cx, a.cy), tableB(b.x, b.y, b.cx, b.cy);
                const QRect shownA = window.ControlRect(a), shownB = window.ControlRect(b);
                const std::string pair = "dialog " + std::to_string(tpl.id) + ": control #" + std::to_string(i) +
                                         " and #" + std::to_string(j);
                if (i < j && !tableA.intersects(tableB)) {
                    EXPECT_FALSE(shownA.intersects(shownB)) << pair << " overlap";
                }
                // A combo box's rectangle is its open list, not a frame.
                if (i != j && a.kind != ControlKind::ComboBox && tableA.contains(tableB)) {
                    EXPECT_TRUE(shownA.contains(shownB)) << pair << ": the second leaves the first's frame";
                }
            }
    });
}

TEST(DialogTemplates, AlgorithmComboShowsEveryTextWhole) {
    CScriptedPrompts prompts([](const std::string&) {});
    AfxSetPromptHook(&prompts);
    CVantrelDlg dlg;
    ASSERT_TRUE(dlg.CreateHidden());
    auto* combo = qobject_cast<QComboBox*>(platform::WidgetOf(&dlg.m_comboAlgorithm));
    ASSERT_NE(combo, nullptr);
    ASSERT_EQ(combo->count(), 5);
    QStyleOptionComboBox option;
    option.initFrom(combo);
    const int field = combo->style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, combo).width();
    for (int i = 0; i < combo->count(); ++i)
        EXPECT_LE(combo->fontMetrics().horizontalAdvance(combo->itemText(i)), field)
            << "\"" << combo->itemText(i).toStdString() << "\" is cut in the closed combo box";
    AfxSetPromptHook(nullptr);
}
