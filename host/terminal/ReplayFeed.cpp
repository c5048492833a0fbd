#include "host/terminal/ReplayFeed.h"

#include <algorithm>
#include <string>

#include "host/DataCore.h"
#include "host/data/Instrument.h"

namespace host {
namespace terminal {

namespace {

// Timer period while playing, in milliseconds. Quotes due in between go in one feed.
const int kTick = 20;
// Most quotes one tick feeds, so that a slow machine catches up without stalling.
const double kMostPerTick = 2000;

}  // namespace

ReplayFeed::ReplayFeed(DataCore& data, QObject* parent) : QObject(parent), data_(data) {
    timer_.setInterval(kTick);
    connect(&timer_, &QTimer::timeout, this, [this] { tick(); });
}

void ReplayFeed::setSpeed(int quotesPerSecond) { speed_ = std::max(1, quotesPerSecond); }

void ReplayFeed::play() {
    if (timer_.isActive() || pending() == 0) return;
    owed_ = 0;
    clock_.start();
    timer_.start();
    emit stateChanged(true);
}

void ReplayFeed::pause() {
    if (!timer_.isActive()) return;
    timer_.stop();
    emit stateChanged(false);
}

std::size_t ReplayFeed::pending() const {
    std::size_t n = 0;
    for (const std::string& name : data_.instrumentNames())
        if (const data::Instrument* i = data_.loaded(name)) n += i->pendingCount();
    return n;
}

void ReplayFeed::tick() {
    owed_ = std::min(kMostPerTick, owed_ + clock_.restart() * double(speed_) / 1000.0);
    const std::size_t due = std::size_t(owed_);
    if (due == 0) return;
    owed_ -= double(due);
    if (feed(due) < due || pending() == 0) pause();
}

std::size_t ReplayFeed::feed(std::size_t count) {
    // The instruments with quotes held back; each feed takes the oldest next quote of all.
    std::vector<data::Instrument*> sources;
    for (const std::string& name : data_.instrumentNames()) {
        data::Instrument* i = data_.loaded(name);
        if (i && i->pendingCount() > 0) sources.push_back(i);
    }
    std::size_t done = 0;
    int lastTime = 0;
    while (done < count) {
        data::Instrument* next = nullptr;
        for (data::Instrument* i : sources) {
            const data::Quote* q = i->nextPending();
            if (q && (!next || q->time < next->nextPending()->time)) next = i;
        }
        if (!next) break;
        lastTime = next->nextPending()->time;
        if (data_.replay(next->name(), 1) != 1) break;
        ++done;
    }
    fed_ += done;
    if (done) emit fedQuotes(int(done), lastTime);
    return done;
}

}  // namespace terminal
}  // namespace host
