// List boxes and combo boxes as their line messages see them (layer internals): numbered lines and one
// selected line. The two kinds differ only in their Qt widget and in the names of their messages, so that the
// messages are answered once for both.
#pragma once

#include <string>
#include <vector>

#include "platform/types.h"

class QWidget;

namespace platform {

// Answers a message sent to a list box or combo box whose template style is style: the kind's ADDSTRING (in
// sorted place when the style sorts), INSERTSTRING, RESETCONTENT, SETCURSEL, GETCURSEL and GETCOUNT. False
// when widget is neither kind; a message of the other kind, or of none, gets 0.
bool SendToLines(QWidget* widget, UINT style, UINT message, WPARAM wParam, LPARAM lParam, LRESULT* result);

// The lines of a list box or combo box, in order; none for any other widget.
std::vector<std::string> LinesOf(QWidget* widget);

// The selected line of a list box or combo box; -1 for none, and for any other widget.
int SelectedLine(QWidget* widget);

}  // namespace platform
