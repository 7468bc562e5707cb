#pragma once
// What the lists of applications kept in name order share (the Applications
// tab's custom applications, the Quit and Switch menus' excluded ones): rows over
// the store's array of application records ({"Name", "Path", ...}), a row found
// by its path, records put in their name's place and taken out as views expect,
// and the row a typed name selects.

#include <QAbstractListModel>
#include <optional>
#include <string>

#include "plist/Value.h"

namespace corvalis {

class ApplicationRecordsModel : public QAbstractListModel {
    Q_OBJECT

public:
    enum Role { PathRole = Qt::UserRole + 1 };

    using QAbstractListModel::QAbstractListModel;

    int rowCount(const QModelIndex& parent = {}) const override;
    // The name (also as a screen reader reads the row) and the path; subclasses add their tool tips.
    QVariant data(const QModelIndex& index, int role) const override;
    std::string pathAt(int row) const;
    std::string nameAt(int row) const;
    // Applications come as files from a file manager or the applications browser, dropped onto the whole list.
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QStringList mimeTypes() const override { return {"text/uri-list"}; }
    Qt::DropActions supportedDropActions() const override { return Qt::CopyAction | Qt::MoveAction | Qt::LinkAction; }

protected:
    // The row holding `path` (other than `except`), exactly or ignoring letter case.
    std::optional<int> rowOfPath(const std::string& path, bool ignoringCase, int except = -1) const;
    // Puts the record after the names that do not sort after its own; answers its row.
    int insertInNameOrder(const plist::Dictionary& record);
    void removeRow(int row);
    // Type to select: the first application whose name does not sort before the text, else the last.
    int rowForTypedName(const std::string& typed) const;

    plist::Array _applications;
};

}  // namespace corvalis
