#include "runner.h"

#include <QBuffer>
#include <QImage>
#include <QPixmap>
#include <QWidget>
#include <cstdio>
#include <iostream>

#include "platform/dialogwindow.h"
#include "platform/files.h"
#include "platform/thread.h"
#include "platform/uiqueue.h"
#include "shell/mainwindow.h"

namespace {

void Print(const std::string& line) { std::cout << line << '\n' << std::flush; }

// The picture goes to its path through the file layer: a Qt file name would change the bytes of a name that is
// not UTF-8.
bool SavePng(const QImage& picture, const std::string& path) {
    QByteArray png;
    QBuffer buffer(&png);
    if (!buffer.open(QIODevice::WriteOnly) || !picture.save(&buffer, "PNG")) return false;
    CFile file;
    if (!file.Open(path.c_str(), CFile::modeCreate)) return false;
    const bool written = file.Write(png.constData(), static_cast<UINT>(png.size())) != FALSE;
    return file.Close() != FALSE && written;
}

std::string Resolve(const std::string& path, const std::string& scriptDir) {
    if (path.empty() || path[0] == '/') return path;
    return scriptDir + "/" + path;
}

class Session {
public:
    Session(const std::string& scriptDir, const std::string& outputDir)
        : m_scriptDir(scriptDir), m_outputDir(outputDir), m_prompts(Print) {
        AfxSetPromptHook(&m_prompts);
    }
    ~Session() { AfxSetPromptHook(nullptr); }

    int Run(const std::vector<SessionCommand>& commands) {
        m_dialog.CreateHidden();
        if (QWidget* widget = platform::WidgetOf(&m_dialog)) {
            // Laid out and painted as on a screen, but never shown on one.
            widget->setAttribute(Qt::WA_DontShowOnScreen);
            widget->show();
        }
        for (const SessionCommand& command : commands) {
            platform::PumpFor(0);
            const int code = Execute(command);
            if (code != kSessionDone) return code;
            if (!m_prompts.ScriptError().empty()) return Fail(command, m_prompts.ScriptError());
            if (m_closed) break;
        }
        if (!m_closed) CloseDialog();
        m_prompts.ReportUnused();
        return kSessionDone;
    }

private:
    int Fail(const SessionCommand& command, const std::string& message) {
        std::cerr << "line " << command.line << ": " << message << std::endl;
        return kSessionScriptError;
    }

    platform::DialogControls* Window() { return m_dialog.Window(); }

    int Id(const SessionCommand& command) {
        int id = 0;
        ParseIntToken(command.args[0], id);
        return id;
    }

    bool Known(int id) { return id == 0 || (Window() != nullptr && Window()->HasControl(id)); }

    int Execute(const SessionCommand& command) {
        const std::string& name = command.name;
        if (name == "file") {
            const std::string& path = command.args[0];
            m_prompts.QueueFile(path == "cancel" ? std::string() : Resolve(path, m_scriptDir), path == "cancel",
                                command.source);
            return kSessionDone;
        }
        if (name == "dialog") {
            m_prompts.QueueDialog(command.idd, command.actions, command.source);
            return kSessionDone;
        }
        if (name == "echo") {
            std::string text;
            for (const std::string& arg : command.args) text += (text.empty() ? "" : " ") + arg;
            Print(text);
            return kSessionDone;
        }
        if (name == "wait") return Wait(command);
        if (name == "sleep") {
            platform::PumpFor(Id(command));
            return kSessionDone;
        }
        if (name == "close") {
            CloseDialog();
            return kSessionDone;
        }
        if (name == "key") {
            if (Window() == nullptr || !Window()->PressKey(command.args[0]))
                return Fail(command, "'key': no key sequence '" + command.args[0] + "'");
            return kSessionDone;
        }
        if (name == "focus") {
            Print("focus: " + std::to_string(Window() != nullptr ? Window()->FocusedControl() : 0));
            return kSessionDone;
        }
        if (name == "rclick" && Id(command) == 0) {
            if (Window() != nullptr) Window()->RightClick(0);
            return kSessionDone;
        }
        if (name == "command") {
            SendCommand(static_cast<UINT>(Id(command)));
            return kSessionDone;
        }
        const int id = Id(command);
        if (!Known(id)) return Fail(command, "the main dialog has no control " + std::to_string(id));
        return ControlCommand(command, id);
    }

    int ControlCommand(const SessionCommand& command, int id) {
        const std::string& name = command.name;
        const std::string prefix = name + " " + std::to_string(id) + ": ";
        platform::DialogControls* window = Window();
        if (name == "click") window->ClickControl(id);
        else if (name == "set") window->TypeText(id, command.args[1]);
        else if (name == "select") {
            int index = 0;
            ParseIntToken(command.args[1], index);
            window->SelectItem(id, index);
        } else if (name == "text") Print(prefix + window->Text(id));
        else if (name == "enabled") Print(prefix + (window->IsEnabled(id) ? "1" : "0"));
        else if (name == "checked") Print(prefix + (window->Send(id, BM_GETCHECK, 0, 0) == BST_CHECKED ? "1" : "0"));
        else if (name == "rclick") window->RightClick(id);
        else if (name == "accessible") {
            const auto [role, accessibleName] = window->Accessible(id);
            Print(prefix + role + ": " + accessibleName);
        } else if (name == "items") {
            for (const std::string& item : window->Items(id)) Print("item " + std::to_string(id) + ": " + item);
            Print("selected " + std::to_string(id) + ": " + std::to_string(window->SelectedIndex(id)));
        } else if (name == "png") {
            QWidget* widget = platform::WidgetOf(m_dialog.GetDlgItem(id));
            const std::string path = Resolve(command.args[1], m_outputDir);
            // At the screen's device pixel ratio, as a user sees it: one device pixel per pixel on the
            // offscreen platform unless QT_SCALE_FACTOR says otherwise.
            const qreal ratio = widget->devicePixelRatioF();
            QImage picture(widget->size() * ratio, QImage::Format_RGB32);
            picture.setDevicePixelRatio(ratio);
            widget->render(&picture);
            if (!SavePng(picture, path))
                return Fail(command, "cannot write " + path);
            Print("png " + std::to_string(id) + ": " + command.args[1]);
        }
        return kSessionDone;
    }

    void SendCommand(UINT id) {
        platform::DialogControls* window = Window();
        if (window == nullptr) return;
        // Items of the system menu arrive as system commands, all others as commands.
        AfxMessage message{window->SystemMenu().HasItem(id) ? WM_SYSCOMMAND : WM_COMMAND, 0, id};
        window->Deliver(message);
    }

    int Wait(const SessionCommand& command) {
        int seconds = 600;
        if (!command.args.empty()) ParseIntToken(command.args[0], seconds);
        if (platform::PumpUntilWorkersDone(seconds * 1000)) return kSessionDone;
        std::cerr << "line " << command.line << ": wait timed out after " << seconds << " s" << std::endl;
        m_dialog.m_cancel.Abandon();  // the run ends before leaving, so no worker outlives the window
        platform::PumpUntilWorkersDone(10000);
        std::cout << std::flush;
        std::_Exit(kSessionTimeout);
    }

    void CloseDialog() {
        if (Window() != nullptr) Window()->Deliver(AfxMessage{WM_CLOSE});
        AfxWaitForWorkers();
        m_closed = true;
    }

    std::string m_scriptDir;
    std::string m_outputDir;
    CScriptedPrompts m_prompts;
    CVantrelDlg m_dialog;
    bool m_closed = false;
};

}  // namespace

int RunSession(const std::vector<SessionCommand>& commands, const std::string& scriptDir,
               const std::string& outputDir) {
    Session session(scriptDir, outputDir);
    return session.Run(commands);
}
