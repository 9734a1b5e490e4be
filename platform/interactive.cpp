// The interactive prompt hook: shows prompts to the user.
#include <QFileDialog>
#include <QFileInfo>
#include <QMenu>
#include <QMessageBox>

#include "platform/dialogwindow.h"
#include "platform/files.h"
#include "platform/prompt.h"
#include "platform/textviewer.h"
#include "platform/window.h"

namespace {

QString Q(const CString& text) { return QString::fromLocal8Bit(text.str().c_str()); }

// "Text files (*.txt)|*.txt|All files (*.*)|*.*||" -> "Text files (*.txt);;All files (*.*)"
QString QtFilter(const CString& filter) {
    const QStringList parts = Q(filter).split('|');
    QStringList filters;
    for (int i = 0; i + 1 < parts.size(); i += 2)
        if (!parts[i].isEmpty()) filters << parts[i];
    return filters.join(";;");
}

QString ExecutableDirectory() {
    char path[1024];
    GetModuleFileNameA(nullptr, path, sizeof path);
    return QFileInfo(Q(path)).absolutePath();
}

class InteractivePrompts : public CPromptHook {
public:
    int MessageBox(CWnd*, const CString& text, const CString& caption, UINT type) override {
        QMessageBox::Icon icon = QMessageBox::NoIcon;
        switch (type & MB_ICONMASK) {
            case MB_ICONHAND: icon = QMessageBox::Critical; break;
            case MB_ICONQUESTION: icon = QMessageBox::Question; break;
            case MB_ICONEXCLAMATION: icon = QMessageBox::Warning; break;
            case MB_ICONINFORMATION: icon = QMessageBox::Information; break;
            default: break;
        }
        QMessageBox box(icon, Q(caption), Q(text), QMessageBox::Ok,
                        platform::ActiveDialogWidget());
        box.exec();
        return IDOK;
    }

    INT_PTR RunModal(CDialog& dialog) override {
        platform::DialogControls* window = dialog.Window();
        if (window == nullptr) return IDCANCEL;
        window->RunModalLoop();
        return dialog.Result();
    }

    INT_PTR RunFileDialog(CFileDialog& dialog) override {
        // The first data file dialog opens on the sample data, beside the program or installed with it; later
        // ones where the user last chose a file.
        if (m_lastDirectory.isEmpty())
            m_lastDirectory =
                QString::fromStdString(platform::SampleDataDirectory(ExecutableDirectory().toStdString()));
        const QString path =
            dialog.IsOpenDialog()
                ? QFileDialog::getOpenFileName(platform::ActiveDialogWidget(), "Open", m_lastDirectory,
                                               QtFilter(dialog.Filter()))
                : QFileDialog::getSaveFileName(platform::ActiveDialogWidget(), "Save As", m_lastDirectory,
                                               QtFilter(dialog.Filter()));
        if (path.isEmpty()) return IDCANCEL;
        m_lastDirectory = QFileInfo(path).absolutePath();
        dialog.SetPathName(CString(path.toLocal8Bit().toStdString()));
        return IDOK;
    }

    UINT TrackPopupMenu(const CMenu& menu, int x, int y) override {
        QMenu popup;
        // The menu speaks in the dialog's font, as the rest of the window does.
        if (QWidget* owner = platform::ActiveDialogWidget()) popup.setFont(owner->font());
        for (const CMenu::Item& item : menu.Items()) {
            if (item.flags & MF_SEPARATOR) {
                popup.addSeparator();
                continue;
            }
            QAction* action = popup.addAction(Q(item.text));
            action->setData(item.id);
        }
        QAction* chosen = popup.exec(QPoint(x, y));
        return chosen != nullptr ? chosen->data().toUInt() : 0;
    }

    void OpenDocument(const CString& path) override { platform::OpenOnDesktop(Q(path)); }

private:
    QString m_lastDirectory;
};

}  // namespace

CPromptHook& AfxInteractivePrompts() {
    static InteractivePrompts prompts;
    return prompts;
}
