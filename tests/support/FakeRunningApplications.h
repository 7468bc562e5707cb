#pragma once
// Running applications for tests: the ones a test starts and ends, with the
// observers told at once.

#include <algorithm>
#include <map>
#include <vector>

#include "platform/RunningApplications.h"

namespace corvalis::test {

class FakeRunningApplications : public RunningApplications {
public:
    std::vector<RunningApplication> running;

    void launch(const RunningApplication& application) {
        running.push_back(application);
        auto observers = observers_;
        for (auto& [token, pair] : observers) pair.first(application);
    }
    void terminate(const std::string& path) {
        auto found = std::find_if(running.begin(), running.end(), [&](const auto& a) { return a.path == path; });
        if (found == running.end()) return;
        RunningApplication application = *found;
        running.erase(found);
        auto observers = observers_;
        for (auto& [token, pair] : observers) pair.second(application);
    }
    std::size_t observerCount() const { return observers_.size(); }

    std::vector<RunningApplication> runningApplications() override { return running; }
    Token addObserver(Observer launched, Observer terminated) override {
        observers_.emplace(++last_, std::make_pair(std::move(launched), std::move(terminated)));
        return last_;
    }
    void removeObserver(Token token) override { observers_.erase(token); }

private:
    Token last_ = 0;
    std::map<Token, std::pair<Observer, Observer>> observers_;
};

}  // namespace corvalis::test
