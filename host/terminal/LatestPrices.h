// Options > "Show the latest prices in new charts": a chart window the terminal opens new
// starts, as the module shows every first display, at the beginning of its history. With
// the option on, the terminal watches each new window until it is filled (an instrument
// arrived by drop, double click or menu: the module has given the window a new title, or its
// time scroll bar a range) and then presses End on it once, as a person would, so that the
// newest figures are in view (a chart whose figures all fit stays as it is). It looks when the
// window paints (right after the module has drawn the new line) and when asked. Windows
// restored from a workspace keep the place they were saved at.
#pragma once

#include <QObject>
#include <QString>
#include <vector>

namespace host {

class ChartWindows;

namespace terminal {

class LatestPrices : public QObject {
    Q_OBJECT
public:
    explicit LatestPrices(ChartWindows& charts, QObject* parent = nullptr) : QObject(parent), charts_(charts) {}

    void setEnabled(bool on);
    bool enabled() const { return enabled_; }
    // A chart window just made empty; ignored while the option is off.
    void watch(void* widget);
    // Presses End on each watched window that is filled now and forgets it; windows gone are
    // forgotten as well. Returns how many were scrolled.
    int check();
    bool watching(void* widget) const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    ChartWindows& charts_;
    struct Fresh {
        void* widget;
        QString title;  // as the window was made
    };
    std::vector<Fresh> fresh_;
    bool enabled_ = true;
    bool checkPosted_ = false;
};

}  // namespace terminal
}  // namespace host
