// platform/: the dialog layer that the window is written against, on Qt 6 Widgets. Read this first.
//
// What lives here, module by module in the order a dialog is built and used:
//   strings and files      types.h (scalars, constants, message numbers), strings.h (CString), files.h (CFile,
//                          the executable's directory), clock.h (the millisecond tick, CTime)
//   windows from templates templates.h (the resource tables; the application hands its own over at start-up),
//                          window.h (CWnd, CDialog, the control wrappers, CMenu, CFileDialog, message maps),
//                          app.h (CWinApp); the Qt side: dialoglink.h, dialogwindow.h, controlwidgets.h
//                          (a widget per kind of control), linecontrols.h (the lines of list and combo
//                          boxes), and the keyboard, accessibility and fonts of a built window
//   data exchange          window.h's DDX_Text, DDX_Check, DDX_Radio, DDX_Control (ddx.cpp)
//   drawing                drawing.h (CDC, CPaintDC), gdiobjects.h (CPen, CBrush, CFont, CBitmap); inside:
//                          dcstate.h, raster.h, qtaccess.h (icons)
//   prompts                prompt.h: the one hook of every modal dialog, file dialog, message box, popup menu
//                          and desktop "open"; textviewer.h where the desktop can't open a text file
//   the UI queue           thread.h (AfxBeginThread, the workers), shared.h (fields a run reads while the
//                          window writes them), uiqueue.h (control operations from a worker, run on the
//                          window's thread in order)
//
// May include: the C++ standard library and Qt, nothing else of Vantrel. It is the only folder that compiles
// against Qt's headers; the headers above it reach Qt only through the layer's own types.
//
// Who owns what: a dialog object owns its control wrappers and, while it is shown, its window; a control
// operation on a dialog without a window does nothing, so dialogs run as plain data in tests. The resource
// table belongs to the application, which hands it over at start-up and keeps it for the whole run. A prompt
// hook belongs to whoever installs it (the application's interactive one, or a test's or the session runner's
// scripted one) and stays installed until they remove it.
//
// This header takes in the modules that the window above uses.
#pragma once

#include "platform/types.h"
#include "platform/strings.h"
#include "platform/files.h"
#include "platform/clock.h"
#include "platform/templates.h"
#include "platform/window.h"
#include "platform/app.h"
#include "platform/drawing.h"
#include "platform/prompt.h"
#include "platform/thread.h"
#include "platform/shared.h"
