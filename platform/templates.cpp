#include "platform/templates.h"

namespace {

template <typename T>
const T* FindById(const T* items, int count, int id) {
    for (int i = 0; i < count; ++i)
        if (items[i].id == id) return &items[i];
    return nullptr;
}

const ResourceTable kNoResources{};
const ResourceTable* g_resources = &kNoResources;

}  // namespace

void AfxSetResourceTable(const ResourceTable& table) { g_resources = &table; }

const ResourceTable& AfxGetResourceTable() { return *g_resources; }

const DialogTemplate* AfxFindDialogTemplate(int id) {
    const ResourceTable& table = AfxGetResourceTable();
    return FindById(table.dialogs, table.dialogCount, id);
}

const MenuTemplate* AfxFindMenuTemplate(int id) {
    const ResourceTable& table = AfxGetResourceTable();
    return FindById(table.menus, table.menuCount, id);
}

const IconTemplate* AfxFindIconTemplate(int id) {
    const ResourceTable& table = AfxGetResourceTable();
    return FindById(table.icons, table.iconCount, id);
}

const ControlTemplate* AfxFindControlTemplate(const DialogTemplate& dialog, int id) {
    // -1 is shared by every control without an ID, so it names none of them.
    if (id == -1) return nullptr;
    return FindById(dialog.controls, dialog.controlCount, id);
}
