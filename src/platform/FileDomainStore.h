#pragma once
// Domains as files: <folder>/<domain>.plist, read as XML or binary, written as
// binary through a temporary file and a rename, so a reader (or a process
// killed mid-save) only ever sees the old or the new state.

#include <sys/types.h>

#include <filesystem>
#include <map>
#include <optional>
#include <set>

#include "platform/DomainStore.h"

namespace corvalis {

class FileDomainStore : public DomainStore {
public:
    explicit FileDomainStore(std::filesystem::path folder);
    ~FileDomainStore() override;  // writes what is still pending

    // $CORVALIS_PREFERENCES_DIR, else ${XDG_CONFIG_HOME:-~/.config}/corvalis/Preferences.
    static std::filesystem::path defaultFolder();

    const std::filesystem::path& folder() const { return folder_; }
    std::filesystem::path pathForDomain(const std::string& name) const;

    std::optional<plist::Dictionary> persistentDomainForName(const std::string& name) override;
    void removePersistentDomainForName(const std::string& name) override;
    void setPersistentDomain(const plist::Dictionary& domain, const std::string& name) override;
    bool synchronize(const std::string& name) override;
    std::vector<SetAsideDomain> takeSetAsideDomains() override;

    // Why the last failed synchronize failed ("" when none did).
    const std::string& lastWriteError() const { return lastWriteError_; }

private:
    // Pending state of a domain: serialized bytes to write, or none to remove the file.
    std::map<std::string, std::optional<std::vector<std::uint8_t>>> pending_;
    std::filesystem::path folder_;
    std::vector<SetAsideDomain> setAside_;
    std::set<std::string> unmovable_;  // unreadable files that stayed in place: never written over
    std::set<std::string> swept_;      // domains whose abandoned temporary files were looked for
    std::string lastWriteError_;

    // Which file a domain was read from: the same inode, size and modification time mean the same contents.
    struct FileStamp {
        dev_t device = 0;
        ino_t inode = 0;
        off_t size = 0;
        std::int64_t modifiedNs = 0;
        bool operator==(const FileStamp&) const = default;
    };
    static std::optional<FileStamp> stampOf(const std::filesystem::path& path);
    // What each domain file held when it was read, while it still holds it: setting a
    // domain to exactly that writes nothing (loading ends with a save that seldom changes anything).
    struct ReadContents {
        std::string contentKey;
        FileStamp stamp;
    };
    std::map<std::string, ReadContents> read_;

    void setAside(const std::string& name, const std::filesystem::path& path, const std::string& reason);
};

// Domain files larger than this are not read (and are set aside as unreadable).
inline constexpr std::uintmax_t kMaxDomainFileBytes = 64u * 1024 * 1024;

}  // namespace corvalis
