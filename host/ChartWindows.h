// The emulated terminal's chart windows: window components of the module's three chart
// type interfaces, each shown in a sub-window of the main window's MDI area.
//
// A chart window is a native container widget inside an MDI sub-window. The host asks the
// chart type interface for a component with 5003, giving the container's window id; the
// module creates its chart widget as the container's child and writes the widget's
// address into the record. From then on that address is the host's name for the window:
// 5005 (after every resize of the container), 5011, 5007 and 5004 carry it, and so do
// the module's messages about the window:
//   3125  title changed (p1 widget, p2 NUL-terminated UTF-16 title): shown on the sub-window
//   3150  the window is being destroyed (p1 fxwcWindowDestroyed), sent during 5004
//
// Dropping instruments (5007) sends 1296-byte fxwcDropInstrument records built from the
// data core's instruments: the base series handle, the name as UTF-16 and as the symbol,
// kind "Currency", provider "TELVIX", the instrument's period unless another is given.
//
// Chart windows are the module's widgets inside the host's containers, so they must be
// destroyed (destroyAll) while the module is still loaded.
#pragma once

#include <QImage>
#include <QObject>
#include <QPointer>
#include <QSize>
#include <QString>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "host/Host.h"
#include "host/data/ChartType.h"

class QMdiSubWindow;
class QWidget;

namespace host {

class CoreServices;
class DataCore;
class MainWindowService;

class ChartWindows : public QObject {
public:
    ChartWindows(Host& host, CoreServices& core, DataCore& data, MainWindowService& mainWindow);
    ~ChartWindows() override;

    // A new chart window of `type` (5003 to that type's interface). The module's widget, or
    // null when the module made none (the interface is not registered, the answer is not
    // 0 or the record's widget slot stayed empty); the sub-window is removed then.
    void* create(data::ChartType type);
    // 5004 for the window. True when the module announced it (3150) and its widget left the
    // container; the sub-window is gone then. False, and the window kept, otherwise.
    bool destroy(void* widget);
    // destroy() for every window, newest first.
    void destroyAll();

    // The record 5007 carries for one instrument; false when the data core has none of
    // that name. `period` replaces the instrument's own.
    bool dropRecord(const std::string& instrument, const std::optional<namePeriod>& period,
                    fxwcDropInstrument* record);
    // 5007 with one record per instrument, in order. The module's answer, or -1 (nothing
    // sent) for a widget that is not a window or an unknown instrument.
    int drop(void* widget, const std::vector<std::string>& instruments,
             const std::optional<namePeriod>& period = std::nullopt);

    // 5011 (show). The module's answer; -1 for a widget that is not a window.
    int show(void* widget);
    // 5020 to the interface of `type`: the word it writes, 0 when it writes nothing.
    std::int32_t query(data::ChartType type);
    // 5022 to the interface of `type`: its display name, and its icon's PNG into `icon`.
    QString displayName(data::ChartType type, QByteArray* icon = nullptr);

    // The container at `size` (the module hears 5005 when it changes), painted with the
    // chart widget in it. A null image for a widget that is not a window.
    QImage grab(void* widget, const QSize& size);

    // The last title the module gave the window (3125); empty for none.
    QString title(void* widget) const;
    // Chart widgets of the open windows, oldest first.
    std::vector<void*> widgets() const;
    QWidget* container(void* widget) const;
    QMdiSubWindow* subWindow(void* widget) const;
    // The interface address the window's messages go to; null for a widget that is not a window.
    void* interfaceOf(void* widget) const;

    // Every 3150 the module sent, in order, for windows of this host or not.
    const std::vector<fxwcWindowDestroyed>& destroyedRecords() const { return destroyed_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Window {
        void* widget;
        void* iface;
        data::ChartType type;
        QPointer<QMdiSubWindow> sub;
        QPointer<QWidget> container;
        QString title;
        bool announced;  // 3150 arrived
    };
    Window* find(void* widget);
    const Window* find(void* widget) const;
    void removeWindow(void* widget);
    void* interfaceFor(data::ChartType type) const;

    int titleChanged(void* target, void* widget, const coreWChar* text, std::string& detail);
    int windowDestroyed(void* target, const fxwcWindowDestroyed* record, std::string& detail);

    Host& host_;
    CoreServices& core_;
    DataCore& data_;
    MainWindowService& mainWindow_;
    std::vector<Window> windows_;
    std::vector<fxwcWindowDestroyed> destroyed_;
    // While 5003 runs the new widget is not known yet; titles it sends wait here.
    bool creating_ = false;
    std::map<void*, QString> pendingTitles_;
};

}  // namespace host
