#pragma once
// The question asked when the controller did not quit when told to, wherever
// the pane asked it to (the on/off switch, an import).

#include <functional>

class QMessageBox;
class QWidget;

namespace corvalis {

// Opens a window-modal sheet on `window` offering Force Quit or Wait (the default,
// and Escape); `decided(forced)` runs once with the answer. Returns the sheet.
QMessageBox* askAboutControllerThatDoesNotQuit(QWidget* window, std::function<void(bool forced)> decided);

}  // namespace corvalis
