// Every message that crosses between the emulated terminal and the module, in order.
// Tests assert on it; `pfhost` prints it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace host {

class Journal {
public:
    enum Direction { ToHost, ToModule };
    // The message number of an entry that is a call of an exported function other than
    // ReceiveMessage (LoadSkin): its name and argument are in the detail.
    static constexpr unsigned int kEntryPointCall = 0;

    struct Entry {
        Direction direction;
        std::uintptr_t target;
        unsigned int message;
        std::intptr_t param1;
        std::intptr_t param2;
        int result;
        std::string detail;  // the decoded record, filled by the handler that took it
    };

    void add(const Entry& entry) { entries_.push_back(entry); }
    void clear() {
        dropped_ += entries_.size();
        entries_.clear();
    }
    // Forgets the oldest `count` entries (all when there are fewer), so that a terminal that
    // runs for hours keeps a bounded journal.
    void dropOldest(std::size_t count);
    // Entries forgotten so far: entries()[i] is the (dropped() + i)-th entry ever added.
    std::size_t dropped() const { return dropped_; }
    const std::vector<Entry>& entries() const { return entries_; }
    Entry& at(std::size_t index) { return entries_[index]; }

    // Entries of one message number, in order.
    std::vector<Entry> find(unsigned int message) const;
    // Message numbers in order.
    std::vector<unsigned int> messages() const;
    // One line per entry: "-> 3019 target=0x10 p1=... p2=... = 0  detail".
    std::string dump() const;

private:
    std::vector<Entry> entries_;
    std::size_t dropped_ = 0;
};

}  // namespace host
