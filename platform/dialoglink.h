// Where a dialog's wrapper objects (CDialog and its controls, window.h) meet its window on the screen
// (dialogwindow.h). Each side knows the other only through the two interfaces here, and neither header
// includes the other's: the wrappers stay plain data that runs without a window, and the window stays the
// only code that touches widgets.
//
// Contract common to both sides: every call is made on the main thread unless it says otherwise; a control
// is named by its template ID, 0 naming the dialog itself; an ID the template does not have is ignored by
// every operation, and reads of it give the empty value (empty text, false, -1).
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/types.h"

class CMenu;
struct AfxMessage;
struct DialogTemplate;

namespace platform {

// What the wrapper side offers the window. The window calls it for what a user does, and for the paint of
// controls that draw themselves; it keeps no other pointer into the wrappers.
class DialogOwner {
public:
    // A user's event: runs the dialog's message map, and the default processing when the map has no entry.
    // The handler may end the dialog, but must not destroy the window.
    virtual void DeliverFromWindow(const AfxMessage& message) = 0;
    // Called from the paint of control id. Paints the control and returns true when its wrapper draws
    // itself (a plot); returns false, having painted nothing, when the control shows its own text or icon.
    virtual bool PaintFromWindow(int id) = 0;

protected:
    ~DialogOwner() = default;
};

// What the window offers the wrappers, and whoever acts in a user's place (the scripted prompts, the
// session runner and the tests).
class DialogControls : public std::enable_shared_from_this<DialogControls> {
public:
    virtual ~DialogControls() = default;

    virtual bool HasControl(int id) const = 0;
    // A key that names control id as long as the window lives, for queued operations of one control to
    // coalesce under. Any thread; null for an unknown ID.
    virtual const void* ControlKey(int id) const = 0;
    // The controls of the radio group that contains id, in template order.
    virtual std::vector<int> RadioGroupOf(int id) const = 0;

    // What a user does. A disabled, read-only or unknown control refuses and the call returns false.
    virtual bool ClickControl(int id) = 0;
    virtual bool TypeText(int id, const std::string& text) = 0;
    // Selects item index of a combo box and tells the dialog, as a user's choice from the list does.
    virtual bool SelectItem(int id, int index) = 0;
    // Hands message to the owner's message map, as if the user had caused it.
    virtual void Deliver(const AfxMessage& message) = 0;

    // Control operations: text, enable state, control messages (BM_, LB_, CB_, WM_SETICON).
    virtual void SetText(int id, const std::string& text) = 0;
    virtual std::string Text(int id) const = 0;
    virtual void SetEnabled(int id, bool enabled) = 0;
    virtual bool IsEnabled(int id) const = 0;
    virtual LRESULT Send(int id, UINT message, WPARAM wParam, LPARAM lParam) = 0;
    // The lines of a list or combo box, and the selected one (-1 for none).
    virtual std::vector<std::string> Items(int id) const = 0;
    virtual int SelectedIndex(int id) const = 0;

    // Geometry: the client area (origin at 0, 0, inside a frame's border), the window's rectangle on the
    // screen, and a client point moved to the screen.
    virtual RECT ClientRect(int id) const = 0;
    virtual RECT ScreenRect(int id) const = 0;
    virtual POINT ToScreen(int id, POINT point) const = 0;
    virtual void Repaint(int id) = 0;
    virtual bool IsMinimized() const = 0;

    // The keyboard, the right button and assistive technology, as a user and a screen reader meet them.
    // A key press and release on the focused control (the dialog when none has focus), the sequence written
    // as Qt writes it ("F1", "Tab", "Alt+Space"); false when it names no key.
    virtual bool PressKey(const std::string& sequence) = 0;
    // A right click on the middle of control id, or with 0 on a point of the dialog's background.
    virtual void RightClick(int id) = 0;
    // The control that has the keyboard focus, 0 for none.
    virtual int FocusedControl() const = 0;
    // What assistive technology is told of control id: its role (one of "button", "radio", "check", "edit",
    // "combo", "list", "label", "graphic", "other") and its name.
    virtual std::pair<std::string, std::string> Accessible(int id) const = 0;
    // Names a control that has no caption to name it, such as a plot by its title.
    virtual void SetAccessibleName(int id, const std::string& name) = 0;

    // Runs the window's modal loop until End is called.
    virtual void RunModalLoop() = 0;
    // Ends the modal loop (if one runs) with result, and hides the window.
    virtual void End(int result) = 0;
    // The items the dialog appended to its system menu; the window adds Close when it shows the menu.
    virtual CMenu& SystemMenu() = 0;
};

// Builds the window of tpl for owner, not yet shown. A modal window's parent is the window whose modal loop
// runs now, so that it stays above it. Null when no application runs. The owner must outlive the window.
std::shared_ptr<DialogControls> OpenDialogWindow(DialogOwner& owner, const DialogTemplate& tpl, bool modal);

}  // namespace platform
