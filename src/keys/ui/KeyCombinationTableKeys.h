#pragma once
// The keyboard of tables that turn key combinations on and record them:
// whichever cell is current, Space ticks the row's check box and Return starts
// recording its combination (while recording, keys go to the editor instead).

class QAbstractItemView;
class QEvent;

namespace corvalis {

// True when the event was such a key and was handled.
bool handleKeyCombinationTableKey(QAbstractItemView* table, QEvent* event, int checkColumn, int combinationColumn);

}  // namespace corvalis
