// The terminal's replay: the held-back quotes of every loaded instrument fed into the data
// core one at a time, oldest first across all instruments, so that every chart of those
// instruments grows through 3009 as if the prices arrived live. Play runs a timer at the
// chosen speed (quotes per second); step feeds one quote; pause stops the timer.
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>
#include <cstddef>

namespace host {

class DataCore;

namespace terminal {

class ReplayFeed : public QObject {
    Q_OBJECT
public:
    explicit ReplayFeed(DataCore& data, QObject* parent = nullptr);

    // Quotes per second while playing; at least 1.
    void setSpeed(int quotesPerSecond);
    int speed() const { return speed_; }
    bool playing() const { return timer_.isActive(); }

    // Feeds the next `count` quotes now; returns how many there were.
    std::size_t feed(std::size_t count);
    // Quotes still held back, all instruments.
    std::size_t pending() const;
    // Quotes fed since the terminal started.
    std::size_t fed() const { return fed_; }

public slots:
    void play();
    void pause();
    void step() { feed(1); }

signals:
    // After every feed: quotes fed by it, and the time of the last one.
    void fedQuotes(int count, int lastTime);
    void stateChanged(bool playing);

private:
    void tick();

    DataCore& data_;
    QTimer timer_;
    QElapsedTimer clock_;
    int speed_ = 100;
    double owed_ = 0;  // quotes due and not fed yet
    std::size_t fed_ = 0;
};

}  // namespace terminal
}  // namespace host
