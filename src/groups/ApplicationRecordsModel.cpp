#include "groups/ApplicationRecordsModel.h"

#include <algorithm>
#include <cctype>

#include "fileutils/NameOrder.h"
#include "schema/PreferenceKeys.h"

namespace corvalis {

namespace {

bool sameIgnoringCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); });
}

}  // namespace

int ApplicationRecordsModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(_applications.size());
}

std::string ApplicationRecordsModel::pathAt(int row) const {
    return _applications[static_cast<std::size_t>(row)][keys::Path].stringOr("");
}

std::string ApplicationRecordsModel::nameAt(int row) const {
    return _applications[static_cast<std::size_t>(row)][keys::Name].stringOr("");
}

QVariant ApplicationRecordsModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount()) return {};
    switch (role) {
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole: return QString::fromStdString(nameAt(index.row()));
    case PathRole: return QString::fromStdString(pathAt(index.row()));
    default: return {};
    }
}

Qt::ItemFlags ApplicationRecordsModel::flags(const QModelIndex& index) const {
    // Every drop goes to the whole list, whichever row it is over.
    if (!index.isValid()) return Qt::ItemIsDropEnabled;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDropEnabled;
}

std::optional<int> ApplicationRecordsModel::rowOfPath(const std::string& path, bool ignoringCase, int except) const {
    for (int row = 0; row < rowCount(); ++row)
        if (row != except && (ignoringCase ? sameIgnoringCase(pathAt(row), path) : pathAt(row) == path)) return row;
    return std::nullopt;
}

int ApplicationRecordsModel::insertInNameOrder(const plist::Dictionary& record) {
    std::string name = record[keys::Name].stringOr("");
    int row = 0;
    while (row < rowCount() && finderCompare(nameAt(row), name) <= 0) ++row;
    beginInsertRows({}, row, row);
    _applications.insert(static_cast<std::size_t>(row), record);
    endInsertRows();
    return row;
}

void ApplicationRecordsModel::removeRow(int row) {
    beginRemoveRows({}, row, row);
    _applications.removeAt(static_cast<std::size_t>(row));
    endRemoveRows();
}

int ApplicationRecordsModel::rowForTypedName(const std::string& typed) const {
    int row = 0;
    while (row < rowCount() - 1 && finderCompare(nameAt(row), typed) < 0) ++row;
    return row;
}

}  // namespace corvalis
