// The widget of each kind of control of a dialog template (layer internals): what a dialog window builds its
// controls from, each as its template's style says.
#pragma once

#include "platform/templates.h"

class QWidget;

namespace platform {

class DialogOwner;

// A new widget on surface for control. baseX and baseY are the dialog font's average character width and
// height; a static whose wrapper paints itself (a plot) is painted through owner.
QWidget* CreateControlWidget(QWidget* surface, DialogOwner& owner, const ControlTemplate& control, int baseX,
                             int baseY);

// Gives a static the role its template decides, where its Qt class would tell another: a picture that draws
// itself is a graphic, a rule of hyphens a hidden separator. Before its text is set, which may already
// announce it (accessibility.cpp).
void MarkTemplateRole(QWidget* widget, const ControlTemplate& control);

}  // namespace platform
