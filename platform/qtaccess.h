// Access from layer code to the Qt objects behind the layer's classes (layer internals).
#pragma once

class CWnd;
class QWidget;
class QImage;
class QIcon;

namespace platform {

// The widget of a control or dialog, or null when it has no window.
QWidget* WidgetOf(const CWnd* wnd);
// An icon resource as an image (empty when there is no such icon).
QImage IconImage(int iconId);
QIcon IconOf(int iconId);

}  // namespace platform
