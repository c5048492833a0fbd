#include "host/Journal.h"

#include <algorithm>
#include <cstdio>

namespace host {

std::vector<Journal::Entry> Journal::find(unsigned int message) const {
    std::vector<Entry> out;
    for (const Entry& e : entries_)
        if (e.message == message) out.push_back(e);
    return out;
}

std::vector<unsigned int> Journal::messages() const {
    std::vector<unsigned int> out;
    for (const Entry& e : entries_) out.push_back(e.message);
    return out;
}

std::string Journal::dump() const {
    std::string out;
    char line[160];
    for (const Entry& e : entries_) {
        std::snprintf(line, sizeof line, "%s %5u target=%#llx p1=%#llx p2=%#llx = %d",
                      e.direction == ToHost ? "->host  " : "->module", e.message,
                      static_cast<unsigned long long>(e.target),
                      static_cast<unsigned long long>(e.param1),
                      static_cast<unsigned long long>(e.param2), e.result);
        out += line;
        if (!e.detail.empty()) out += "  " + e.detail;
        out += '\n';
    }
    return out;
}

void Journal::dropOldest(std::size_t count) {
    count = std::min(count, entries_.size());
    entries_.erase(entries_.begin(), entries_.begin() + std::ptrdiff_t(count));
    dropped_ += count;
}

}  // namespace host
