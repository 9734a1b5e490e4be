// What a dialog window tells assistive technology, derived from its template as the desktop's screen readers
// derive it: an edit, combo or list box is named by the label before it, a self-drawn picture is a graphic
// named by what it shows, radio buttons are radio buttons, and a rule of hyphens is no text at all.
#include <QAccessible>
#include <QAccessibleWidget>
#include <QLabel>

#include "platform/controlwidgets.h"
#include "platform/dialogwindow.h"

namespace platform {
namespace {

const char* const kRoleProperty = "vantrelAccessibleRole";

bool IsRule(const ControlTemplate& control) {
    if (control.kind != ControlKind::Static || control.caption == nullptr || control.caption[0] == '\0')
        return false;
    for (const char* c = control.caption; *c != '\0'; ++c)
        if (*c != '-') return false;
    return true;
}

bool IsLabel(const ControlTemplate& control) {
    return control.kind == ControlKind::Static && control.caption != nullptr && control.caption[0] != '\0' &&
           !IsRule(control);
}

bool NeedsLabel(ControlKind kind) {
    return kind == ControlKind::Edit || kind == ControlKind::ComboBox || kind == ControlKind::ListBox;
}

bool SameRow(const ControlTemplate& a, const ControlTemplate& b) { return a.y < b.y + b.cy && b.y < a.y + a.cy; }

// The label of control index: the label that precedes it on its row as one reads, left of it with no other
// control between them; of several, the nearest. -1 for none. (Template order alone would name the
// read-outs by the label of another row, and the algorithm box by none.)
int LabelOf(const DialogTemplate& tpl, int index) {
    const ControlTemplate& target = tpl.controls[index];
    int best = -1;
    for (int i = 0; i < tpl.controlCount; ++i) {
        const ControlTemplate& label = tpl.controls[i];
        const int right = label.x + label.cx;
        if (!IsLabel(label) || !SameRow(label, target) || right > target.x) continue;
        bool blocked = false;
        for (int j = 0; j < tpl.controlCount && !blocked; ++j) {
            const ControlTemplate& other = tpl.controls[j];
            blocked = j != i && j != index && other.kind != ControlKind::GroupBox && SameRow(other, target) &&
                      other.x >= right && other.x + other.cx <= target.x;
        }
        if (!blocked && (best < 0 || right > tpl.controls[best].x + tpl.controls[best].cx)) best = i;
    }
    return best;
}

// Widgets whose role the template decides rather than their Qt class: pictures and rules.
class TemplateRoleAccessible : public QAccessibleWidget {
public:
    TemplateRoleAccessible(QWidget* widget, QAccessible::Role role) : QAccessibleWidget(widget, role) {}
    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        if (role() == QAccessible::Separator) state.invisible = true;
        return state;
    }
};

QAccessibleInterface* TemplateRoleFactory(const QString&, QObject* object) {
    auto* widget = qobject_cast<QWidget*>(object);
    const QVariant role = object != nullptr ? object->property(kRoleProperty) : QVariant();
    if (widget == nullptr || !role.isValid()) return nullptr;
    return new TemplateRoleAccessible(widget, static_cast<QAccessible::Role>(role.toInt()));
}

std::string RoleWord(QAccessible::Role role) {
    switch (role) {
        case QAccessible::Button: return "button";
        case QAccessible::RadioButton: return "radio";
        case QAccessible::CheckBox: return "check";
        case QAccessible::EditableText: return "edit";
        case QAccessible::ComboBox: return "combo";
        case QAccessible::List: return "list";
        case QAccessible::StaticText: return "label";
        case QAccessible::Graphic: return "graphic";
        default: return "other";
    }
}

}  // namespace

void MarkTemplateRole(QWidget* widget, const ControlTemplate& control) {
    static const bool installed = (QAccessible::installFactory(TemplateRoleFactory), true);
    (void)installed;
    if (IsRule(control)) widget->setProperty(kRoleProperty, static_cast<int>(QAccessible::Separator));
    if (control.kind == ControlKind::Static && control.id > 0 && control.caption == nullptr)
        widget->setProperty(kRoleProperty, static_cast<int>(QAccessible::Graphic));
}

void DialogWindow::SetUpAccessibility() {
    for (int i = 0; i < m_template.controlCount; ++i) {
        const ControlTemplate& control = m_template.controls[i];
        QWidget* widget = m_widgets[i];
        if (!NeedsLabel(control.kind)) continue;
        const int label = LabelOf(m_template, i);
        if (label < 0) continue;
        // The label is its buddy: screen readers follow that relation to the label's text as it stands, also
        // where a handler changes it (the read-outs' labels follow the algorithm).
        static_cast<QLabel*>(m_widgets[label])->setBuddy(widget);
    }
}

void DialogWindow::SetAccessibleName(int id, const std::string& name) {
    if (QWidget* widget = Control(id)) widget->setAccessibleName(QString::fromStdString(name));
}

std::pair<std::string, std::string> DialogWindow::Accessible(int id) const {
    QWidget* widget = Widget(id);
    QAccessibleInterface* accessible = widget != nullptr ? QAccessible::queryAccessibleInterface(widget) : nullptr;
    if (accessible == nullptr) return {"other", ""};
    // A name given outright, else the label the control is related to, else what the control says itself.
    QString name = widget->accessibleName();
    for (const auto& [related, relation] : accessible->relations(QAccessible::Label))
        if (name.isEmpty() && related != nullptr) name = related->text(QAccessible::Name);
    if (name.isEmpty()) name = accessible->text(QAccessible::Name);
    return {RoleWord(accessible->role()), name.toStdString()};
}

}  // namespace platform
