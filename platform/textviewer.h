// Where the desktop has no program to open a written text file with: a read-only window that shows it.
#pragma once

class QString;
class QWidget;

namespace platform {

// Opens path on the desktop through xdg-open; when that cannot start or reports failure, shows the file in
// ShowTextFile instead. Returns at once: the desktop's answer arrives later on the main thread.
void OpenOnDesktop(const QString& path);

// A read-only window, above the dialog that runs now, with the file's text and its full path as the title.
// It closes and frees itself. Returns the window (for tests).
QWidget* ShowTextFile(const QString& path);

}  // namespace platform
