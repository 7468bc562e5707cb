#pragma once
// Domains as files: <folder>/<domain>.plist, read as XML or binary, written as
// binary through a temporary file and a rename, so a reader (or a process
// killed mid-save) only ever sees the old or the new state.

#include <filesystem>
#include <map>
#include <optional>
#include <set>

#include "platform/DomainStore.h"

namespace corvalis {

class FileDomainStore : public DomainStore {
public:
    // What to do with a domain file that cannot be parsed: ours are moved aside (and
    // defaults written); another application's stay exactly as they are, never written over.
    enum class Unreadable { SetAside, LeaveInPlace };

    explicit FileDomainStore(std::filesystem::path folder, Unreadable unreadable = Unreadable::SetAside);
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
    // What a domain's file is to become at the next synchronize. Only what this
    // process changed is applied to the file as it is then, under the domain's lock,
    // so writers of other keys (the window, the tool, the controller) are not undone.
    struct Pending {
        bool removeFile = false;          // removed and not set again: the file goes
        plist::Dictionary domain;         // this process's whole domain, as last set
        std::set<std::string> changed;    // keys set to a new value since the last read or write
        std::set<std::string> removed;    // keys removed since then
    };
    std::map<std::string, Pending> pending_;
    // Each key's contents (plist::contentKey) as this process last read or set the domain.
    std::map<std::string, std::map<std::string, std::string, std::less<>>> base_;
    std::filesystem::path folder_;
    std::vector<SetAsideDomain> setAside_;
    std::set<std::string> unmovable_;  // unreadable files that stayed in place: never written over
    std::string lastWriteError_;
    Unreadable unreadable_;

    // False when the file stayed where it is (then it is never written over).
    bool setAside(const std::string& name, const std::filesystem::path& path, const std::string& reason);
    // The domain's file, read and parsed; none when missing or unreadable (then set aside or refused).
    struct Loaded {
        std::optional<plist::Dictionary> domain;
        bool refused = false;  // could not be opened or read: nothing may be written over it
    };
    Loaded load(const std::string& name, const std::filesystem::path& path);
    std::string write(const std::string& name, Pending& pending);
};

// Domain files larger than this are not read (and are set aside as unreadable).
inline constexpr std::uintmax_t kMaxDomainFileBytes = 64u * 1024 * 1024;

}  // namespace corvalis
