#include "platform/LoginItems.h"

#include <filesystem>

#include "platform/ApplicationBundle.h"

namespace corvalis {

namespace {

std::string normalised(const std::string& path) {
    std::string text = std::filesystem::path(path).lexically_normal().string();
    while (text.size() > 1 && text.back() == '/') text.pop_back();
    return text;
}

}  // namespace

bool isSameApplicationPath(const std::string& first, const std::string& second) {
    if (first.empty() || second.empty()) return false;
    return normalised(first) == normalised(second) || isSameFile(first, second);
}

bool AddURLToLoginItems(LoginItems& items, const std::string& path, bool hidden) {
    return items.insertLast(path, hidden);
}

void RemoveAllLoginItemsWithURLsOrName(LoginItems& items, const std::string& first, const std::string& second,
                                       const std::string& name) {
    auto snapshot = items.snapshot();
    if (!snapshot) return;
    for (const LoginItem& item : *snapshot) {
        // An item that still finds its application is judged by it alone, never by its name.
        bool matches = item.resolves ? isSameApplicationPath(item.path, first) || isSameApplicationPath(item.path, second)
                                     : item.name == name;
        if (matches) items.remove(item);
    }
}

}  // namespace corvalis
