#pragma once

class QCoreApplication;

// The program's name and version, Polish as the default locale (month and day
// names) and Qt's own texts in Polish: standard buttons, file dialogs, calendars
// and the edit fields' context menus. No display name is set, since Qt would
// append it to the caption of every dialog and message box.
// False when Qt's Polish catalogue is not installed; the program runs on in English then.
bool SetUpApplication(QCoreApplication& app);
