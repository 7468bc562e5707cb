#include "pane/ui/UnreadableDomainsAlert.h"

#include <QMessageBox>
#include <QPointer>
#include <QTimer>

#include "controls/AlertSheet.h"
#include "controls/LocalizedText.h"
#include "prefs/CorvalisPreferences.h"
#include "prefs/UnreadableDomains.h"

namespace corvalis {

void tellOfUnreadableDomains(QWidget* window, CorvalisPreferences& prefs) {
    QStringList texts;
    for (const SetAsideDomain& file : prefs.takeSetAsideDomains())
        texts << QString::fromStdString(unreadableDomainText(file));
    if (texts.isEmpty()) return;
    QMessageBox* box = makeAlertSheet(window, QMessageBox::Warning, localized("UnreadableSettings"),
                                      texts.join(QStringLiteral("\n\n")));
    box->addButton(localized("OK"), QMessageBox::AcceptRole);
    // A sheet needs its window on screen: open it once start-up has handed over to the event loop.
    QTimer::singleShot(0, box, [box = QPointer<QMessageBox>(box)] {
        if (box) box->open();
    });
}

}  // namespace corvalis
