// Resource data: dialog templates, menus, strings and icons, as plain tables.
//
// Rectangles are in dialog units. The layer converts them to pixels with the dialog font's metrics:
// one horizontal unit is a quarter of the average character width, one vertical unit an eighth of the
// character height.
#pragma once

#include "platform/types.h"

// Window and control styles that the layer honours.
constexpr UINT WS_GROUP = 0x00020000;
constexpr UINT WS_TABSTOP = 0x00010000;
constexpr UINT WS_DISABLED = 0x08000000;
constexpr UINT WS_VSCROLL = 0x00200000;
constexpr UINT WS_HSCROLL = 0x00100000;
constexpr UINT WS_BORDER = 0x00800000;
constexpr UINT WS_CAPTION = 0x00C00000;
constexpr UINT WS_SYSMENU = 0x00080000;
constexpr UINT DS_MODALFRAME = 0x80;
constexpr UINT WS_EX_APPWINDOW = 0x40000;

constexpr UINT ES_LEFT = 0x0;
constexpr UINT ES_CENTER = 0x1;
constexpr UINT ES_RIGHT = 0x2;
constexpr UINT ES_AUTOHSCROLL = 0x80;
constexpr UINT ES_READONLY = 0x800;

constexpr UINT SS_LEFT = 0x0;
constexpr UINT SS_CENTER = 0x1;
constexpr UINT SS_ICON = 0x3;
constexpr UINT SS_SUNKEN = 0x1000;

constexpr UINT LBS_NOTIFY = 0x1;
constexpr UINT LBS_SORT = 0x2;
constexpr UINT LBS_NOINTEGRALHEIGHT = 0x100;

constexpr UINT CBS_DROPDOWNLIST = 0x3;
constexpr UINT CBS_SORT = 0x100;

enum class ControlKind {
    PushButton,     // BS_PUSHBUTTON
    DefPushButton,  // BS_DEFPUSHBUTTON
    GroupBox,
    Static,         // text label, a rule, or a plain frame for a control that paints itself
    Icon,           // static showing an icon resource; the caption holds the icon's number as text
    Edit,
    ComboBox,
    ListBox,
    AutoCheckBox,
    AutoRadioButton,
};

struct ControlTemplate {
    int id;  // -1 for a control without an ID
    ControlKind kind;
    int x, y, cx, cy;     // dialog units
    const char* caption;  // null for none
    UINT style;
};

struct DialogTemplate {
    int id;
    const char* caption;
    int cx, cy;  // dialog units
    const char* fontFace;
    int fontPoints;
    UINT style;
    UINT exStyle;
    const ControlTemplate* controls;
    int controlCount;
};

struct MenuItemTemplate {
    UINT id;
    const char* text;
};

struct MenuTemplate {
    int id;
    const char* popupName;
    const MenuItemTemplate* items;
    int itemCount;
};

struct StringTemplate {
    int id;
    const char* text;
};

// An icon as rows of characters, one a pixel, each mapped to a colour by the palette.
struct IconTemplate {
    int id;
    int size;  // width and height in pixels
    const char* const* rows;
    const char* paletteKeys;        // one key character per colour
    const COLORREF* paletteColors;  // same length as paletteKeys; ' ' is always transparent
};

struct ResourceTable {
    const DialogTemplate* dialogs;
    int dialogCount;
    const MenuTemplate* menus;
    int menuCount;
    const StringTemplate* strings;
    int stringCount;
    const IconTemplate* icons;
    int iconCount;
};

// The application's resources: the application hands its table to the layer at start-up, before it builds
// its first dialog, and the layer finds every template, menu, string and icon in it. Until then the table is
// empty. The table must outlive every dialog.
void AfxSetResourceTable(const ResourceTable& table);
const ResourceTable& AfxGetResourceTable();

const DialogTemplate* AfxFindDialogTemplate(int id);
const MenuTemplate* AfxFindMenuTemplate(int id);
const IconTemplate* AfxFindIconTemplate(int id);
// A control of a template by ID, or null.
const ControlTemplate* AfxFindControlTemplate(const DialogTemplate& dialog, int id);
