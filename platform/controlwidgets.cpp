// The widgets of a template's controls (controlwidgets.h).
#include "platform/controlwidgets.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPainter>
#include <QPushButton>
#include <QRadioButton>

#include "platform/dialoglink.h"
#include "platform/qtaccess.h"

namespace platform {
namespace {

// A static control. Labels show their text; a control whose wrapper paints itself (a plot) is painted by the
// wrapper, inside the sunken border when it has one. Statics let mouse clicks through to the dialog, as the
// desktop's statics do, so a right click on a plot reaches the dialog's handler.
class StaticWidget : public QLabel {
public:
    StaticWidget(QWidget* window, DialogOwner& owner, int id) : QLabel(window), m_owner(owner), m_id(id) {
        setAttribute(Qt::WA_TransparentForMouseEvents);
    }

protected:
    void paintEvent(QPaintEvent* event) override {
        if (m_id <= 0 || !m_owner.PaintFromWindow(m_id)) {
            QLabel::paintEvent(event);
            return;
        }
        QPainter painter(this);
        drawFrame(&painter);
    }

private:
    DialogOwner& m_owner;
    int m_id;
};

// A push button that shows the keyboard focus as a dotted frame inside its edge, where a user at the keyboard
// looks for it; the style's own hint is hard to see. It is the dialog's focus that counts, so that a picture
// of a dialog not on the screen shows it too.
class FocusFrameButton : public QPushButton {
public:
    using QPushButton::QPushButton;

protected:
    void paintEvent(QPaintEvent* event) override {
        QPushButton::paintEvent(event);
        if (window()->focusWidget() != this) return;
        QPainter painter(this);
        painter.setPen(QPen(palette().color(QPalette::ButtonText), 1, Qt::DotLine));
        painter.drawRect(rect().adjusted(3, 3, -4, -4));
    }
};

QWidget* CreateButton(QWidget* surface, const QString& caption, bool isDefault) {
    auto* button = new FocusFrameButton(caption, surface);
    button->setAutoDefault(false);
    button->setDefault(isDefault);
    return button;
}

QWidget* CreateGroupBox(QWidget* surface, const QString& caption, int baseX, int baseY) {
    auto* box = new QGroupBox(caption, surface);
    box->setAttribute(Qt::WA_TransparentForMouseEvents);
    // The frame runs through the middle of the caption's line, as desktop group boxes draw it.
    box->setStyleSheet(QStringLiteral(
        "QGroupBox { border: 1px solid #a0a0a0; margin-top: %1px; }"
        "QGroupBox::title { subcontrol-origin: margin; subcontrol-position: top left; left: %2px;"
        " padding: 0 2px; top: 0px; }").arg(baseY / 2).arg(baseX));
    return box;
}

QWidget* CreateIcon(QWidget* surface, DialogOwner& owner, const ControlTemplate& control) {
    auto* label = new StaticWidget(surface, owner, control.id);
    label->setPixmap(QPixmap::fromImage(IconImage(QString::fromLatin1(control.caption).toInt())));
    return label;
}

QWidget* CreateStatic(QWidget* surface, DialogOwner& owner, const ControlTemplate& control, const QString& caption) {
    auto* label = new StaticWidget(surface, owner, control.id);
    MarkTemplateRole(label, control);
    label->setText(caption);
    label->setAlignment((control.style & SS_CENTER) ? Qt::AlignHCenter | Qt::AlignTop
                                                    : Qt::AlignLeft | Qt::AlignTop);
    if (control.style & SS_SUNKEN) {
        label->setFrameStyle(QFrame::Panel | QFrame::Sunken);
        label->setLineWidth(1);
        label->setAutoFillBackground(true);
    }
    return label;
}

QWidget* CreateEdit(QWidget* surface, UINT style) {
    auto* edit = new QLineEdit(surface);
    edit->setReadOnly(style & ES_READONLY);
    if (style & ES_READONLY) {
        // A read-only edit shows the dialog's face colour, so that outputs read apart from inputs.
        QPalette palette = edit->palette();
        palette.setColor(QPalette::Base, palette.color(QPalette::Window));
        edit->setPalette(palette);
    }
    const UINT align = style & 0x3;
    edit->setAlignment(align == ES_CENTER  ? Qt::AlignCenter
                       : align == ES_RIGHT ? Qt::AlignRight | Qt::AlignVCenter
                                           : Qt::AlignLeft | Qt::AlignVCenter);
    edit->setTextMargins(0, 0, 0, 0);
    return edit;
}

QWidget* CreateListBox(QWidget* surface, UINT style) {
    auto* list = new QListWidget(surface);
    // The style's scroll bar shows when the lines do not fit, as a desktop list box's does.
    list->setVerticalScrollBarPolicy((style & WS_VSCROLL) ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff);
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list->setTextElideMode(Qt::ElideNone);  // a long line is cut at the box's edge
    list->setUniformItemSizes(true);         // one line a row: keeps a long list's layout cheap
    return list;
}

QWidget* CreateRadioButton(QWidget* surface, const QString& caption) {
    auto* radio = new QRadioButton(caption, surface);
    // Exclusive for assistive technology, which tells a radio button by it; the checks themselves follow the
    // template's group marks (the dialog window's GroupRadios), not the parent.
    radio->setAutoExclusive(true);
    return radio;
}

}  // namespace

QWidget* CreateControlWidget(QWidget* surface, DialogOwner& owner, const ControlTemplate& control, int baseX,
                             int baseY) {
    const QString caption = QString::fromLatin1(control.caption != nullptr ? control.caption : "");
    switch (control.kind) {
        case ControlKind::PushButton: return CreateButton(surface, caption, false);
        case ControlKind::DefPushButton: return CreateButton(surface, caption, true);
        case ControlKind::GroupBox: return CreateGroupBox(surface, caption, baseX, baseY);
        case ControlKind::Icon: return CreateIcon(surface, owner, control);
        case ControlKind::Static: return CreateStatic(surface, owner, control, caption);
        case ControlKind::Edit: return CreateEdit(surface, control.style);
        case ControlKind::ComboBox: return new QComboBox(surface);
        case ControlKind::ListBox: return CreateListBox(surface, control.style);
        case ControlKind::AutoCheckBox: return new QCheckBox(caption, surface);
        case ControlKind::AutoRadioButton: return CreateRadioButton(surface, caption);
    }
    return new QWidget(surface);
}

}  // namespace platform
