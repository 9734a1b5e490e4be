// Consistency of the resource tables: what the dialog layer relies on when it builds windows from them.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "platform/templates.h"

namespace {

std::vector<const DialogTemplate*> AllDialogs() {
    const ResourceTable& table = AfxGetResourceTable();
    std::vector<const DialogTemplate*> dialogs;
    for (int i = 0; i < table.dialogCount; ++i) dialogs.push_back(&table.dialogs[i]);
    return dialogs;
}

int IndexOf(const DialogTemplate& dialog, int id) {
    for (int i = 0; i < dialog.controlCount; ++i)
        if (dialog.controls[i].id == id) return i;
    return -1;
}

// The radio buttons that exclude each other with the one at `index`: from the nearest WS_GROUP mark at or
// before it up to the next mark, as the dialog manager and DDX_Radio count them.
std::vector<int> RadioGroupAt(const DialogTemplate& dialog, int index) {
    int first = index;
    while (first > 0 && !(dialog.controls[first].style & WS_GROUP)) --first;
    std::vector<int> group;
    for (int i = first; i < dialog.controlCount; ++i) {
        if (i > first && (dialog.controls[i].style & WS_GROUP)) break;
        if (dialog.controls[i].kind == ControlKind::AutoRadioButton) group.push_back(dialog.controls[i].id);
    }
    return group;
}

}  // namespace

TEST(ResourceTable, EveryControlLiesInsideItsDialog) {
    for (const DialogTemplate* dialog : AllDialogs()) {
        for (int i = 0; i < dialog->controlCount; ++i) {
            const ControlTemplate& c = dialog->controls[i];
            EXPECT_TRUE(c.x >= 0 && c.y >= 0 && c.cx > 0 && c.cy > 0 && c.x + c.cx <= dialog->cx &&
                        c.y + c.cy <= dialog->cy)
                << "dialog " << dialog->id << ", control #" << i << " (ID " << c.id << ") at " << c.x << ","
                << c.y << "," << c.cx << "," << c.cy << " leaves " << dialog->cx << " x " << dialog->cy;
        }
    }
}

TEST(ResourceTable, ControlIdsAreUniqueWithinEachDialog) {
    for (const DialogTemplate* dialog : AllDialogs()) {
        std::set<int> seen;
        for (int i = 0; i < dialog->controlCount; ++i) {
            const int id = dialog->controls[i].id;
            if (id == -1) continue;
            EXPECT_TRUE(seen.insert(id).second) << "dialog " << dialog->id << " has ID " << id << " twice";
        }
    }
}

TEST(ResourceTable, BoundRadioGroupsHoldExactlyTheirButtons) {
    struct Group {
        int dialog;
        std::vector<int> radios;
    };
    const Group groups[] = {
        {102, {1061, 1062}}, {129, {1043, 1044}}, {130, {1091, 1092}},
        {130, {1076, 1077}}, {130, {1082, 1083}}, {130, {1088, 1089, 1090}},
    };
    for (const Group& group : groups) {
        const DialogTemplate* dialog = AfxFindDialogTemplate(group.dialog);
        ASSERT_NE(dialog, nullptr) << "dialog " << group.dialog;
        const int first = IndexOf(*dialog, group.radios.front());
        ASSERT_GE(first, 0) << "dialog " << group.dialog << " lacks radio " << group.radios.front();
        EXPECT_TRUE(dialog->controls[first].style & WS_GROUP)
            << "dialog " << group.dialog << ": radio " << group.radios.front() << " does not open its group";
        EXPECT_EQ(RadioGroupAt(*dialog, first), group.radios)
            << "dialog " << group.dialog << ": the group of radio " << group.radios.front() << " is off";
    }
}

TEST(ResourceTable, LookupsFindEveryResourceAndRejectUnknownIds) {
    for (int id : {100, 102, 129, 130, 136, 137, 138, 139, 140, 1038, 1039, 1040}) {
        const DialogTemplate* dialog = AfxFindDialogTemplate(id);
        ASSERT_NE(dialog, nullptr) << "dialog " << id << " missing";
        EXPECT_EQ(dialog->id, id);
    }
    EXPECT_EQ(AfxFindDialogTemplate(101), nullptr) << "101 is a string, not a dialog";
    EXPECT_EQ(AfxFindMenuTemplate(136), nullptr) << "136 is a dialog, not a menu";
    EXPECT_EQ(AfxFindIconTemplate(100), nullptr) << "100 is a dialog, not an icon";

    const DialogTemplate& main = *AfxFindDialogTemplate(102);
    const ControlTemplate* list = AfxFindControlTemplate(main, 1015);
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->id, 1015);
    EXPECT_EQ(AfxFindControlTemplate(main, 4242), nullptr);
    EXPECT_EQ(AfxFindControlTemplate(main, -1), nullptr) << "-1 is shared by unnamed controls";
}

TEST(ResourceTable, PlotMenusOfferXThenYRangeWithDistinctCommands) {
    std::set<UINT> commands;
    for (int id : {134, 135}) {
        const MenuTemplate* menu = AfxFindMenuTemplate(id);
        ASSERT_NE(menu, nullptr) << "menu " << id;
        ASSERT_EQ(menu->itemCount, 2) << "menu " << id;
        EXPECT_STREQ(menu->items[0].text, "Set X Range") << "menu " << id;
        EXPECT_STREQ(menu->items[1].text, "Set Y Range") << "menu " << id;
        for (int i = 0; i < menu->itemCount; ++i)
            EXPECT_TRUE(commands.insert(menu->items[i].id).second) << "command " << menu->items[i].id << " twice";
    }
    EXPECT_EQ(commands, (std::set<UINT>{32771, 32772, 32773, 32774}));
}

TEST(ResourceTable, IconControlsNameExistingIcons) {
    for (const DialogTemplate* dialog : AllDialogs())
        for (int i = 0; i < dialog->controlCount; ++i) {
            const ControlTemplate& c = dialog->controls[i];
            if (c.kind != ControlKind::Icon) continue;
            ASSERT_NE(c.caption, nullptr) << "dialog " << dialog->id;
            EXPECT_NE(AfxFindIconTemplate(std::atoi(c.caption)), nullptr)
                << "dialog " << dialog->id << " shows unknown icon " << c.caption;
        }
}

TEST(ResourceTable, EveryDialogButTheMainOneHasADefaultOk) {
    for (const DialogTemplate* dialog : AllDialogs()) {
        if (dialog->id == 102) continue;
        const int ok = IndexOf(*dialog, IDOK);
        ASSERT_GE(ok, 0) << "dialog " << dialog->id << " has no OK";
        EXPECT_EQ(dialog->controls[ok].kind, ControlKind::DefPushButton) << "dialog " << dialog->id;
    }
}
