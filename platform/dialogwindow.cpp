#include "platform/dialogwindow.h"

#include <QApplication>
#include <algorithm>
#include <QButtonGroup>
#include <QCloseEvent>
#include <QComboBox>
#include <QFontMetrics>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMouseEvent>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QScrollArea>
#include <QStyle>
#include <QWindow>

#include "platform/controlwidgets.h"
#include "platform/fonts.h"
#include "platform/linecontrols.h"
#include "platform/prompt.h"
#include "platform/qtaccess.h"
#include "platform/window.h"

namespace platform {
namespace {

constexpr UINT SC_CLOSE = 0xF060;

std::vector<DialogWindow*>& OpenWindows() {
    static std::vector<DialogWindow*> windows;
    return windows;
}

QString QtText(const char* text) { return QString::fromLatin1(text != nullptr ? text : ""); }

}  // namespace

std::shared_ptr<DialogControls> OpenDialogWindow(DialogOwner& owner, const DialogTemplate& tpl, bool modal) {
    if (QApplication::instance() == nullptr) return nullptr;
    return std::make_shared<DialogWindow>(owner, tpl, modal ? ActiveDialogWidget() : nullptr);
}

QWidget* WidgetOf(const CWnd* wnd) {
    auto* window = wnd != nullptr ? dynamic_cast<DialogWindow*>(wnd->Window()) : nullptr;
    return window != nullptr ? window->Widget(wnd->GetDlgCtrlID()) : nullptr;
}

QWidget* ActiveDialogWidget() {
    if (QWidget* modal = QApplication::activeModalWidget()) return modal;
    auto& windows = OpenWindows();
    return windows.empty() ? nullptr : windows.back();
}

DialogWindow::DialogWindow(DialogOwner& owner, const DialogTemplate& tpl, QWidget* parent)
    : QDialog(parent), m_owner(owner), m_template(tpl), m_systemMenu(std::make_unique<CMenu>()) {
    setWindowTitle(QtText(tpl.caption));
    setFont(StandInFont(tpl.fontFace, tpl.fontPoints * 10, false));
    ComputeBaseUnits();
    // The controls stand on a surface of the template's size inside a scroll area, which scrolls only where
    // the screen is smaller than the dialog (FitToScreen).
    m_content = new QWidget();
    m_content->setFixedSize(DluToPixelsX(tpl.cx), DluToPixelsY(tpl.cy));
    m_scroll = new QScrollArea(this);
    m_scroll->setFrameShape(QFrame::NoFrame);
    m_scroll->setWidget(m_content);
    m_scroll->setGeometry(QRect(QPoint(0, 0), m_content->size()));
    setFixedSize(m_content->size());
    setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                   Qt::WindowCloseButtonHint);
    for (int i = 0; i < tpl.controlCount; ++i) {
        const ControlTemplate& control = tpl.controls[i];
        QWidget* widget = CreateControlWidget(m_content, m_owner, control, m_baseX, m_baseY);
        widget->setGeometry(ControlRect(control));
        if (control.style & WS_DISABLED) widget->setEnabled(false);
        if (control.id > 0) m_controls[control.id] = widget;
        m_widgets.push_back(widget);
        Connect(control, widget);
    }
    GroupRadios();
    SetUpKeyboard();
    SetUpAccessibility();
    focusNextPrevChild(true);  // the first tab stop has the focus, as the dialog opens
    OpenWindows().push_back(this);
}

DialogWindow::~DialogWindow() {
    auto& windows = OpenWindows();
    windows.erase(std::remove(windows.begin(), windows.end(), this), windows.end());
}

void DialogWindow::ComputeBaseUnits() {
    // One horizontal dialog unit is a quarter of the average character width, one vertical unit an eighth
    // of the character height, both of the dialog's font, as the desktop computes them.
    const QFontMetrics metrics(font());
    const int alphabetWidth =
        metrics.horizontalAdvance(QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"));
    m_baseX = (alphabetWidth / 26 + 1) / 2;
    m_baseY = metrics.height();
    if (m_baseX <= 0) m_baseX = 6;
    if (m_baseY <= 0) m_baseY = 13;
}

QRect DialogWindow::ControlRect(const ControlTemplate& control) const {
    // Both edges are converted, not the width: two rectangles that touch in dialog units touch in pixels,
    // where rounding each width apart would let a control overlap its neighbour by a pixel.
    const int left = DluToPixelsX(control.x);
    const int top = DluToPixelsY(control.y);
    int bottom = DluToPixelsY(control.y + control.cy);
    // A combo box's rectangle is that of the open list; closed, it is one edit line high.
    if (control.kind == ControlKind::ComboBox) bottom = top + DluToPixelsY(12) + 2;
    return QRect(QPoint(left, top), QPoint(DluToPixelsX(control.x + control.cx) - 1, bottom - 1));
}

void DialogWindow::showEvent(QShowEvent* event) {
    // A window that is drawn but never shown on a screen (the session runner's) keeps its whole size.
    if (!testAttribute(Qt::WA_DontShowOnScreen)) FitToScreen();
    QDialog::showEvent(event);
}

void DialogWindow::FitToScreen() {
    if (const QScreen* screen = this->screen()) FitInto(screen->availableGeometry().size());
}

void DialogWindow::FitInto(const QSize& room) {
    // The frame's size is known once the window manager has framed the window; before, a title bar and a
    // thin border stand in for it.
    QMargins frame = windowHandle() != nullptr ? windowHandle()->frameMargins() : QMargins();
    if (frame.isNull()) {
        const int border = style()->pixelMetric(QStyle::PM_DefaultFrameWidth) + 2;
        frame = QMargins(border, style()->pixelMetric(QStyle::PM_TitleBarHeight) + border, border, border);
    }
    const QSize space = room.shrunkBy(frame);
    QSize size = m_content->size();
    // A scroll bar takes room of its own: a dialog that scrolls one way grows the other way by a bar, where
    // the screen has it, so that it does not need to scroll that way too.
    const int bar = style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    if (size.height() > space.height()) size.rwidth() += bar;
    if (size.width() > space.width()) size.rheight() += bar;
    size = size.boundedTo(space);
    setFixedSize(size);
    m_scroll->setGeometry(QRect(QPoint(0, 0), size));
}

int DialogWindow::DluToPixelsX(int dlu) const { return (dlu * m_baseX + 2) / 4; }
int DialogWindow::DluToPixelsY(int dlu) const { return (dlu * m_baseY + 4) / 8; }

void DialogWindow::Connect(const ControlTemplate& control, QWidget* widget) {
    const int id = control.id;
    if (id <= 0) return;
    auto clicked = [this, id] { Deliver(AfxMessage{WM_COMMAND, BN_CLICKED, static_cast<UINT>(id)}); };
    if (control.kind == ControlKind::AutoRadioButton) {
        connect(static_cast<QRadioButton*>(widget), &QAbstractButton::clicked, this, [this, id, clicked] {
            CheckRadioInGroup(id);
            clicked();
        });
    } else if (auto* button = qobject_cast<QAbstractButton*>(widget)) {
        connect(button, &QAbstractButton::clicked, this, clicked);
    } else if (auto* combo = qobject_cast<QComboBox*>(widget)) {
        connect(combo, QOverload<int>::of(&QComboBox::activated), this,
                [this, id] { Deliver(AfxMessage{WM_COMMAND, CBN_SELCHANGE, static_cast<UINT>(id)}); });
    }
}

QWidget* DialogWindow::Control(int id) const {
    auto found = m_controls.find(id);
    return found == m_controls.end() ? nullptr : found->second;
}

const void* DialogWindow::ControlKey(int id) const { return Widget(id); }

std::vector<int> DialogWindow::RadioGroupOf(int id) const {
    int index = -1;
    for (int i = 0; i < m_template.controlCount; ++i)
        if (m_template.controls[i].id == id) index = i;
    if (index < 0) return {};
    int first = index;
    while (first > 0 && !(m_template.controls[first].style & WS_GROUP)) --first;
    std::vector<int> group;
    for (int i = first; i < m_template.controlCount; ++i) {
        const ControlTemplate& control = m_template.controls[i];
        if (i > first && (control.style & WS_GROUP)) break;
        if (control.kind == ControlKind::AutoRadioButton) group.push_back(control.id);
    }
    return group;
}

void DialogWindow::GroupRadios() {
    // One button group per radio group of the template. It does not exclude: a handler may set the checks of
    // a group as it likes, and a click's own check is set by CheckRadioInGroup.
    for (int i = 0; i < m_template.controlCount; ++i) {
        const ControlTemplate& control = m_template.controls[i];
        if (control.kind != ControlKind::AutoRadioButton) continue;
        const std::vector<int> group = RadioGroupOf(control.id);
        if (group.empty() || group.front() != control.id) continue;
        auto* buttons = new QButtonGroup(this);
        buttons->setExclusive(false);
        for (int member : group)
            if (auto* radio = qobject_cast<QAbstractButton*>(Control(member))) buttons->addButton(radio);
    }
}

void DialogWindow::CheckRadioInGroup(int id) {
    for (int member : RadioGroupOf(id))
        if (auto* radio = qobject_cast<QAbstractButton*>(Control(member))) radio->setChecked(member == id);
}

bool DialogWindow::ClickControl(int id) {
    QWidget* widget = Control(id);
    auto* button = qobject_cast<QAbstractButton*>(widget);
    if (button == nullptr || !button->isEnabled()) return false;
    button->click();
    return true;
}

bool DialogWindow::TypeText(int id, const std::string& text) {
    auto* edit = qobject_cast<QLineEdit*>(Control(id));
    if (edit == nullptr || !edit->isEnabled() || edit->isReadOnly()) return false;
    edit->setText(QString::fromStdString(text));
    return true;
}

bool DialogWindow::SelectItem(int id, int index) {
    auto* combo = qobject_cast<QComboBox*>(Control(id));
    if (combo == nullptr || !combo->isEnabled() || index < 0 || index >= combo->count()) return false;
    combo->setCurrentIndex(index);
    Deliver(AfxMessage{WM_COMMAND, CBN_SELCHANGE, static_cast<UINT>(id)});
    return true;
}

void DialogWindow::Deliver(const AfxMessage& message) { m_owner.DeliverFromWindow(message); }

void DialogWindow::SetText(int id, const std::string& text) {
    const QString value = QString::fromStdString(text);
    QWidget* widget = Widget(id);
    if (widget == this) setWindowTitle(value);
    else if (auto* edit = qobject_cast<QLineEdit*>(widget)) edit->setText(value);
    else if (auto* button = qobject_cast<QAbstractButton*>(widget)) button->setText(value);
    else if (auto* label = qobject_cast<QLabel*>(widget)) label->setText(value);
    else if (auto* box = qobject_cast<QGroupBox*>(widget)) box->setTitle(value);
    else if (auto* combo = qobject_cast<QComboBox*>(widget)) combo->setCurrentText(value);
}

std::string DialogWindow::Text(int id) const {
    const QWidget* widget = Widget(id);
    QString value;
    if (widget == this) value = windowTitle();
    else if (auto* edit = qobject_cast<const QLineEdit*>(widget)) value = edit->text();
    else if (auto* button = qobject_cast<const QAbstractButton*>(widget)) value = button->text();
    else if (auto* label = qobject_cast<const QLabel*>(widget)) value = label->text();
    else if (auto* box = qobject_cast<const QGroupBox*>(widget)) value = box->title();
    else if (auto* combo = qobject_cast<const QComboBox*>(widget)) value = combo->currentText();
    else if (auto* list = qobject_cast<const QListWidget*>(widget))
        value = list->currentItem() != nullptr ? list->currentItem()->text() : QString();
    return value.toStdString();
}

RECT DialogWindow::ClientRect(int id) const {
    const QWidget* widget = Surface(id);
    if (widget == nullptr) return RECT{};
    QRect client = widget->rect();
    if (auto* frame = qobject_cast<const QFrame*>(widget)) client = frame->contentsRect();
    return RECT{0, 0, client.width(), client.height()};
}

RECT DialogWindow::ScreenRect(int id) const {
    const QWidget* widget = Surface(id);
    if (widget == nullptr) return RECT{};
    const QPoint topLeft = widget->mapToGlobal(QPoint(0, 0));
    return RECT{topLeft.x(), topLeft.y(), topLeft.x() + widget->width(), topLeft.y() + widget->height()};
}

POINT DialogWindow::ToScreen(int id, POINT point) const {
    const QWidget* widget = Surface(id);
    if (widget == nullptr) return point;
    const QPoint global = widget->mapToGlobal(QPoint(point.x, point.y));
    return POINT{global.x(), global.y()};
}

void DialogWindow::Repaint(int id) {
    if (QWidget* widget = Widget(id)) widget->update();
}

void DialogWindow::SetEnabled(int id, bool enabled) {
    if (QWidget* widget = Widget(id)) widget->setEnabled(enabled);
}

bool DialogWindow::IsEnabled(int id) const {
    const QWidget* widget = Widget(id);
    return widget != nullptr && widget->isEnabled();
}

LRESULT DialogWindow::Send(int id, UINT message, WPARAM wParam, LPARAM lParam) {
    QWidget* widget = Widget(id);
    if (message == WM_SETICON) {
        setWindowIcon(IconOf(static_cast<int>(lParam)));
        return 0;
    }
    if (auto* button = qobject_cast<QAbstractButton*>(widget)) {
        if (message == BM_SETCHECK) button->setChecked(wParam == BST_CHECKED);
        if (message == BM_GETCHECK) return button->isChecked() ? BST_CHECKED : BST_UNCHECKED;
        return 0;
    }
    const ControlTemplate* control = AfxFindControlTemplate(m_template, id);
    LRESULT result = 0;
    SendToLines(widget, control != nullptr ? control->style : 0, message, wParam, lParam, &result);
    return result;
}

std::vector<std::string> DialogWindow::Items(int id) const { return LinesOf(Control(id)); }

int DialogWindow::SelectedIndex(int id) const { return SelectedLine(Control(id)); }

void DialogWindow::closeEvent(QCloseEvent* event) {
    // The dialog decides: its close handler ends it through EndDialog, or keeps it open.
    event->ignore();
    Deliver(AfxMessage{WM_CLOSE});
}

void DialogWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        Deliver(AfxMessage{WM_COMMAND, BN_CLICKED, static_cast<UINT>(IDCANCEL)});
    } else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        if (auto* button = qobject_cast<QPushButton*>(focusWidget())) button->click();
        else Deliver(AfxMessage{WM_COMMAND, BN_CLICKED, static_cast<UINT>(IDOK)});
    } else if (IsSystemMenuKey(*event)) {
        ShowSystemMenu();
    } else {
        QWidget::keyPressEvent(event);
    }
}

void DialogWindow::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::RightButton) {
        RightClickAt(m_content->mapFrom(this, event->position().toPoint()));
        return;
    }
    QDialog::mousePressEvent(event);
}

void DialogWindow::accept() { Deliver(AfxMessage{WM_COMMAND, BN_CLICKED, static_cast<UINT>(IDOK)}); }
void DialogWindow::reject() { Deliver(AfxMessage{WM_COMMAND, BN_CLICKED, static_cast<UINT>(IDCANCEL)}); }

void DialogWindow::ShowSystemMenu(const QPoint& at) {
    // The system menu: the items the dialog appended, then Close.
    CMenu menu;
    for (const CMenu::Item& item : m_systemMenu->Items()) menu.AppendMenu(item.flags, item.id, item.text);
    menu.AppendMenu(MF_SEPARATOR);
    menu.AppendMenu(MF_STRING, SC_CLOSE, "&Close");
    const UINT command = AfxPromptHook().TrackPopupMenu(menu, at.x(), at.y());
    if (command != 0) {
        AfxMessage message{WM_SYSCOMMAND};
        message.id = command;
        Deliver(message);
    }
}

}  // namespace platform
