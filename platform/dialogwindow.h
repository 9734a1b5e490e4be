// The Qt side of a dialog (layer internals): a QDialog built from a dialog template, with one widget per
// control at the rectangle the template gives, and the routing of user events into the dialog's message map.
#pragma once

#include <QDialog>
#include <QRect>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/templates.h"
#include "platform/window.h"

class QWidget;

namespace platform {

class DialogWindow : public QDialog {
public:
    DialogWindow(CDialog* owner, const DialogTemplate& tpl, QWidget* parent);
    ~DialogWindow() override;

    CDialog* Owner() const { return m_owner; }
    const DialogTemplate& Template() const { return m_template; }
    QWidget* Control(int id) const;
    CWnd* Proxy(int id) const;
    bool HasControl(int id) const { return Control(id) != nullptr; }
    // A wrapper object bound by DDX_Control stands for the control from now on.
    void Bind(int id, CWnd* wrapper);

    int DluToPixelsX(int dlu) const;
    int DluToPixelsY(int dlu) const;
    // Where a control of the template stands, in pixels of the dialog.
    QRect ControlRect(const ControlTemplate& control) const;

    // The controls of the radio group that contains id, in template order.
    std::vector<int> RadioGroupOf(int id) const;

    // What a user does, and what the scripted runner does in a user's place.
    // A click on a disabled or unknown control does nothing and returns false.
    bool ClickControl(int id);
    bool TypeText(int id, const std::string& text);
    bool SelectItem(int id, int index);
    // Delivers a message to the owner's message map (and the default processing when unhandled).
    void Deliver(const AfxMessage& message);

    // Control operations on the main thread.
    void SetText(int id, const std::string& text);
    std::string Text(int id) const;
    void SetEnabled(int id, bool enabled);
    bool IsEnabled(int id) const;
    LRESULT Send(int id, UINT message, WPARAM wParam, LPARAM lParam);
    std::vector<std::string> Items(int id) const;
    int SelectedIndex(int id) const;

    CMenu& SystemMenu() { return *m_systemMenu; }

protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void accept() override;
    void reject() override;

private:
    void ComputeBaseUnits();
    QWidget* CreateControl(const ControlTemplate& control);
    void Connect(const ControlTemplate& control, QWidget* widget);
    void CheckRadioInGroup(int id);
    void ShowSystemMenu();

    CDialog* m_owner;
    const DialogTemplate& m_template;
    int m_baseX = 6;   // average character width of the dialog font, pixels
    int m_baseY = 13;  // character height of the dialog font, pixels
    std::map<int, QWidget*> m_controls;
    std::map<int, std::unique_ptr<CWnd>> m_proxies;
    std::map<int, CWnd*> m_bound;
    std::unique_ptr<CMenu> m_systemMenu;
    bool m_closing = false;
};

// The window whose modal loop runs now, or the main dialog: the parent of new dialogs.
QWidget* ActiveDialogWidget();

}  // namespace platform
