// The Qt side of a dialog: a QDialog built from a dialog template, with one widget per control at the
// rectangle the template gives, and the routing of user events to the dialog's owner. The wrappers reach it
// only through DialogControls (dialoglink.h).
#pragma once

#include <QDialog>
#include <QRect>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/dialoglink.h"
#include "platform/templates.h"

class CWnd;
class QKeyEvent;
class QScrollArea;
class QWidget;

namespace platform {

class DialogWindow : public QDialog, public DialogControls {
public:
    DialogWindow(DialogOwner& owner, const DialogTemplate& tpl, QWidget* parent);
    ~DialogWindow() override;

    QWidget* Control(int id) const;
    // Control id, or the dialog itself for 0.
    QWidget* Widget(int id) const { return id == 0 ? const_cast<DialogWindow*>(this) : Control(id); }
    // Where control id has its pixels: the dialog's client area for 0 is the surface its controls stand on.
    QWidget* Surface(int id) const { return id == 0 ? m_content : Control(id); }

    int DluToPixelsX(int dlu) const;
    int DluToPixelsY(int dlu) const;
    // Where a control of the template stands, in pixels of the dialog.
    QRect ControlRect(const ControlTemplate& control) const;

    // Where room (a screen's available size, frame included) is smaller than the dialog, the dialog takes
    // what there is and its controls scroll. Done for the screen whenever the window is shown on one.
    void FitInto(const QSize& room);

    bool HasControl(int id) const override { return Control(id) != nullptr; }
    const void* ControlKey(int id) const override;
    std::vector<int> RadioGroupOf(int id) const override;

    bool ClickControl(int id) override;
    bool TypeText(int id, const std::string& text) override;
    bool SelectItem(int id, int index) override;
    void Deliver(const AfxMessage& message) override;

    void SetText(int id, const std::string& text) override;
    std::string Text(int id) const override;
    void SetEnabled(int id, bool enabled) override;
    bool IsEnabled(int id) const override;
    LRESULT Send(int id, UINT message, WPARAM wParam, LPARAM lParam) override;
    std::vector<std::string> Items(int id) const override;
    int SelectedIndex(int id) const override;

    RECT ClientRect(int id) const override;
    RECT ScreenRect(int id) const override;
    POINT ToScreen(int id, POINT point) const override;
    void Repaint(int id) override;
    bool IsMinimized() const override { return isMinimized(); }

    bool PressKey(const std::string& sequence) override;
    void RightClick(int id) override;
    int FocusedControl() const override;
    std::pair<std::string, std::string> Accessible(int id) const override;
    void SetAccessibleName(int id, const std::string& name) override;

    void RunModalLoop() override { exec(); }
    void End(int result) override { done(result); }
    CMenu& SystemMenu() override { return *m_systemMenu; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void closeEvent(QCloseEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void accept() override;
    void reject() override;

private:
    void ComputeBaseUnits();
    void FitToScreen();
    void Connect(const ControlTemplate& control, QWidget* widget);
    void CheckRadioInGroup(int id);
    void GroupRadios();
    // The window's system menu at a point of the screen.
    void ShowSystemMenu(const QPoint& at);
    void ShowSystemMenu() { ShowSystemMenu(mapToGlobal(QPoint(0, 0))); }

    // Keyboard (dialogkeys.cpp): the template's tab stops and radio groups, and the keys of the system menu.
    void SetUpKeyboard();
    int IndexOf(const QWidget* widget) const;
    bool IsTabStop(int index) const;
    void MoveInRadioGroup(int id, int step);
    // A right click at a point of the controls' surface: the dialog's handler hears it, and nothing else.
    void RightClickAt(const QPoint& point);

    // Assistive technology (accessibility.cpp): names from the labels, roles from the kinds.
    void SetUpAccessibility();

    DialogOwner& m_owner;
    const DialogTemplate& m_template;
    int m_baseX = 6;   // average character width of the dialog font, pixels
    int m_baseY = 13;  // character height of the dialog font, pixels
    std::map<int, QWidget*> m_controls;
    std::vector<QWidget*> m_widgets;  // every control, ID or not, in template order
    QWidget* m_content = nullptr;     // the controls' surface, of the template's size
    QScrollArea* m_scroll = nullptr;
    std::unique_ptr<CMenu> m_systemMenu;
};

// F1, and Alt+Space where no window manager has taken it: the keys that open a dialog's system menu.
bool IsSystemMenuKey(const QKeyEvent& event);

// The window whose modal loop runs now, or the newest open dialog: the parent of new dialogs.
QWidget* ActiveDialogWidget();
// The widget of a control or dialog wrapper, or null when it has no window.
QWidget* WidgetOf(const CWnd* wnd);

}  // namespace platform
