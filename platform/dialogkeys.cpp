// The keyboard and the right button of a dialog window, as its template's styles say: WS_TABSTOP makes a Tab
// stop, a radio group is one stop whose arrow keys move the check, F1 (and Alt+Space) open the system menu,
// and a right click goes to the dialog's handler.
#include <QAbstractButton>
#include <QApplication>
#include <QKeyEvent>
#include <QKeySequence>
#include <QMouseEvent>
#include <algorithm>

#include "platform/dialogwindow.h"
#include "platform/window.h"

namespace platform {

bool IsSystemMenuKey(const QKeyEvent& event) {
    if (event.key() == Qt::Key_F1 && event.modifiers() == Qt::NoModifier) return true;
    return event.key() == Qt::Key_Space && (event.modifiers() & Qt::AltModifier);
}

namespace {

bool TakesFocus(ControlKind kind) {
    return kind != ControlKind::GroupBox && kind != ControlKind::Static && kind != ControlKind::Icon;
}

int ArrowStep(int key) {
    if (key == Qt::Key_Down || key == Qt::Key_Right) return 1;
    if (key == Qt::Key_Up || key == Qt::Key_Left) return -1;
    return 0;
}

}  // namespace

void DialogWindow::SetUpKeyboard() {
    // Tab is the template's business (focusNextPrevChild); a control without WS_TABSTOP still takes the
    // focus from a click or from the arrow keys of its group.
    for (int i = 0; i < m_template.controlCount; ++i) {
        QWidget* widget = m_widgets[i];
        const bool focusable = TakesFocus(m_template.controls[i].kind);
        widget->setFocusPolicy(focusable ? (IsTabStop(i) ? Qt::StrongFocus : Qt::ClickFocus) : Qt::NoFocus);
        if (focusable) widget->installEventFilter(this);
    }
}

int DialogWindow::IndexOf(const QWidget* widget) const {
    for (int i = 0; i < static_cast<int>(m_widgets.size()); ++i)
        if (m_widgets[i] == widget) return i;
    return -1;
}

bool DialogWindow::IsTabStop(int index) const { return (m_template.controls[index].style & WS_TABSTOP) != 0; }

bool DialogWindow::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) return QDialog::eventFilter(watched, event);
    const auto& key = static_cast<const QKeyEvent&>(*event);
    if (IsSystemMenuKey(key)) {
        // Before the control sees it: a focused button would be pressed, an edit would type a space.
        ShowSystemMenu();
        return true;
    }
    const int index = IndexOf(static_cast<QWidget*>(watched));
    const int step = ArrowStep(key.key());
    if (index >= 0 && step != 0 && m_template.controls[index].kind == ControlKind::AutoRadioButton) {
        MoveInRadioGroup(m_template.controls[index].id, step);
        return true;
    }
    return QDialog::eventFilter(watched, event);
}

bool DialogWindow::focusNextPrevChild(bool next) {
    // The next enabled tab stop in template order, wrapping. A radio group is entered at its checked button,
    // and the group that has the focus is left as a whole.
    const int count = m_template.controlCount;
    if (count == 0) return false;
    const int from = IndexOf(focusWidget());
    const std::vector<int> here = from >= 0 ? RadioGroupOf(m_template.controls[from].id) : std::vector<int>();
    const int start = from >= 0 ? from : (next ? count - 1 : 0);
    for (int step = 1; step <= count; ++step) {
        const int i = ((start + (next ? step : -step)) % count + count) % count;
        const ControlTemplate& control = m_template.controls[i];
        QWidget* widget = m_widgets[i];
        if (!IsTabStop(i) || !TakesFocus(control.kind) || !widget->isEnabled() || !widget->isVisibleTo(this))
            continue;
        if (control.kind == ControlKind::AutoRadioButton) {
            const std::vector<int> group = RadioGroupOf(control.id);
            if (std::find(here.begin(), here.end(), control.id) != here.end()) continue;
            for (int member : group) {
                auto* radio = qobject_cast<QAbstractButton*>(Control(member));
                if (radio != nullptr && radio->isChecked() && radio->isEnabled()) widget = radio;
            }
        }
        widget->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
        return true;
    }
    return false;
}

void DialogWindow::MoveInRadioGroup(int id, int step) {
    // The next enabled button of the group takes the focus and the check, and its handler hears a click.
    std::vector<int> group;
    for (int member : RadioGroupOf(id))
        if (member == id || IsEnabled(member)) group.push_back(member);
    const auto at = std::find(group.begin(), group.end(), id);
    if (group.size() < 2 || at == group.end()) return;
    const int size = static_cast<int>(group.size());
    const int target = group[((at - group.begin()) + step + size) % size];
    Control(target)->setFocus(Qt::OtherFocusReason);
    ClickControl(target);
}

// The dialog's handler decides what a right click shows (the plots' menus); elsewhere it opens no menu. The
// system menu stays on F1 and Alt+Space.
void DialogWindow::RightClickAt(const QPoint& point) {
    AfxMessage message{WM_RBUTTONDOWN};
    message.point = CPoint(point.x(), point.y());
    Deliver(message);
}

bool DialogWindow::PressKey(const std::string& sequence) {
    const QKeySequence keys = QKeySequence::fromString(QString::fromStdString(sequence), QKeySequence::PortableText);
    if (keys.count() != 1 || keys[0].key() == Qt::Key_unknown) return false;
    const QKeyCombination combination = keys[0];
    QWidget* target = focusWidget() != nullptr ? focusWidget() : this;
    QKeyEvent press(QEvent::KeyPress, combination.key(), combination.keyboardModifiers());
    QApplication::sendEvent(target, &press);
    QKeyEvent release(QEvent::KeyRelease, combination.key(), combination.keyboardModifiers());
    QApplication::sendEvent(focusWidget() != nullptr ? focusWidget() : this, &release);
    return true;
}

void DialogWindow::RightClick(int id) {
    QPoint point(-1, -1);
    if (QWidget* control = Control(id)) {
        point = control->geometry().center();
    } else {
        // The first point, in steps of a few pixels, that no control covers but a group box.
        for (int y = 2; y < m_content->height() && point.y() < 0; y += 4)
            for (int x = 2; x < m_content->width() && point.y() < 0; x += 4)
                if (m_content->childAt(x, y) == nullptr) point = QPoint(x, y);
    }
    if (point.y() < 0) return;
    // Delivered where a real click goes: to the widget under the point, which passes it on to the dialog
    // unless it handles a right click itself.
    QWidget* target = m_content->childAt(point) != nullptr ? m_content->childAt(point) : m_content;
    const QPoint local = target->mapFrom(m_content, point);
    QMouseEvent press(QEvent::MouseButtonPress, local, target->mapToGlobal(local), Qt::RightButton, Qt::RightButton,
                      Qt::NoModifier);
    QApplication::sendEvent(target, &press);
}

int DialogWindow::FocusedControl() const {
    const QWidget* focused = focusWidget();
    for (const auto& [id, widget] : m_controls)
        if (widget == focused) return id;
    return 0;
}

}  // namespace platform
