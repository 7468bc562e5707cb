#pragma once
// Item data roles the pane's models answer beside Qt's own, read by the
// image-and-text cells of the pane's lists.

#include <Qt>

namespace corvalis {

enum KVItemRole {
    SeparatorRole = Qt::UserRole + 100,  // bool: the row is a separator line
    ErrorCodeRole,                       // int: the icon service's error code of the row's path
    ExtraImageRole,                      // string: a pane image drawn after the text ("Note", "Caution")
    DimmedRole,                          // bool: light grey text, unless selected in the focused view
};

}  // namespace corvalis
