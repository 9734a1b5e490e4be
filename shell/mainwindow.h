// Chief header of shell/, the desktop shell, the top of the house. Read this first.
//
// What lives here:
//   mainwindow.cpp     the main dialog's making and end, message map, data exchange, start-up, information
//                      list, algorithm rules, curve radios, system menu, paint and close
//   loaddata.cpp       Load Data and the Data Set Information dialog
//   initialization.*   Initialization and Show Info; initdialogs.cpp: the Initialization dialogs' logic
//   verification.cpp   Verification; verifydialogs.cpp: the choice of its patterns and the grid dialogs
//   plotcommands.cpp   the plots' right-button menus and range dialogs
//   plots.h            the plots' pictures (chief header of iterationplot, summaryplot, dataplot, plotaxes)
//   resources.cpp      every dialog template, the two menus, the string table and the icon
// The handlers are members of CVantrelDlg, so they are declared with it in workspace/workspace.h, which names
// the file that defines each; the application object is declared below, and defined in app/main.cpp.
//
// May include: every folder below it (training/, workspace/, files/, platform/, engine/); nothing includes
// shell/ but the application, the session runner and the tests.
//
// Who owns what: the application object owns the main dialog for the run of the program; the dialog (the
// workspace) owns all state. Shell's own state is none: the resource table is constant data that each program
// hands to the platform at start-up, and the plots' painters hold only a reference to their plot.
#pragma once

#include "platform/app.h"
#include "platform/templates.h"
#include "workspace/workspace.h"

// The window's resources (resources.cpp): its dialog templates, the plots' menus, the string table and the
// icon. Every program that shows the window hands them to the platform at start-up (AfxSetResourceTable),
// before it builds the first dialog.
const ResourceTable& VantrelResources();

class CVantrelApp : public CWinApp {
public:
    CVantrelApp() = default;
    BOOL InitInstance() override;
    int ExitInstance() override { return CWinApp::ExitInstance(); }
};
