#include "platform/textviewer.h"

#include <QFile>
#include <QFileInfo>
#include <QFontDatabase>
#include <QPlainTextEdit>
#include <QProcess>

#include "platform/dialogwindow.h"

namespace platform {

void OpenOnDesktop(const QString& path) {
    // xdg-open exits non-zero when the desktop has no program for the file, and may run for as long as that
    // program does: its answer is awaited without blocking the window.
    auto* opener = new QProcess();
    QObject::connect(opener, &QProcess::finished, opener, [opener, path](int code, QProcess::ExitStatus status) {
        if (status != QProcess::NormalExit || code != 0) ShowTextFile(path);
        opener->deleteLater();
    });
    QObject::connect(opener, &QProcess::errorOccurred, opener, [opener, path](QProcess::ProcessError error) {
        if (error != QProcess::FailedToStart) return;
        ShowTextFile(path);
        opener->deleteLater();
    });
    opener->start(QStringLiteral("xdg-open"), {path});
}

QWidget* ShowTextFile(const QString& path) {
    const QString fullPath = QFileInfo(path).absoluteFilePath();
    auto* viewer = new QPlainTextEdit(ActiveDialogWidget());
    viewer->setWindowFlag(Qt::Window);
    viewer->setAttribute(Qt::WA_DeleteOnClose);
    viewer->setWindowTitle(fullPath);
    viewer->setReadOnly(true);
    viewer->setLineWrapMode(QPlainTextEdit::NoWrap);
    // The rows are tab-separated columns of numbers: a fixed-width face keeps them in line.
    viewer->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    QFile file(fullPath);
    if (file.open(QIODevice::ReadOnly))
        viewer->setPlainText(QString::fromLocal8Bit(file.readAll()).remove(QLatin1Char('\r')));
    else
        viewer->setPlainText(QStringLiteral("The file could not be read: ") + file.errorString());
    viewer->resize(640, 420);
    viewer->show();
    return viewer;
}

}  // namespace platform
