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
// The same record answers the module's questions about drag data dropped on its widget
// (the byte formats are in host/DragData.h), sent to the host core with p1 coreDragData,
// p2 the fxwcDropInstrument to fill:
//   3119  instrument drag data: the instrument's record; 1 for unreadable data or an
//         instrument the data core does not have
//   3048  primitive drag data: the same, with the record's style set to the chart type
//         value (0 Point and Figure, 1 Renko, 2 Kagi); for a line study tool
//         ("NAME;study") instrumentType "LineStudy", baseHandle the line-study provider,
//         symbol the study's type name and style its colour
// Either answers 1 and writes nothing for a null record or bytes, a length outside 1 to
// drag::kMaxBytes, or a target other than the core. Drags themselves are played with
// dragDrop, context menus with chooseFromContextMenu (ChartGestures.cpp).
//
// Chart windows are the module's widgets inside the host's containers, so they must be
// destroyed (destroyAll) while the module is still loaded.
//
// ChartGestures.cpp also plays the person at the window: the tool bar's buttons, the time
// scroll bar, clicks, keys and resting the mouse for a tool tip, the areas' close buttons
// and the selection and deletion of a line. They use only what any Qt window offers (child
// widgets by class, events, the window's picture), never the module's classes.
#pragma once

#include <QImage>
#include <QList>
#include <QRect>
#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QSize>
#include <QString>
#include <QStringList>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "host/Host.h"
#include "host/data/ChartType.h"

class QAbstractSlider;
class QMdiSubWindow;
class QMenu;
class QMimeData;
class QToolButton;
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
    // The window's chart type; false for a widget that is not a window.
    bool typeOf(void* widget, data::ChartType* type) const;

    // Every 3150 the module sent, in order, for windows of this host or not.
    const std::vector<fxwcWindowDestroyed>& destroyedRecords() const { return destroyed_; }
    // Forgets the 3150 records heard so far (a long run keeps its memory flat).
    void forgetDestroyed() { std::vector<fxwcWindowDestroyed>().swap(destroyed_); }
    // Called with the chart widget before destroy() asks the module to destroy the window
    // (5004), and when the module announces a window of this host is being destroyed
    // (3150): whatever the terminal shows of that window's memory (a property page) must go
    // before the memory does, and before a new window may take its address.
    void onWindowGoing(std::function<void(void*)> listener) { going_.push_back(std::move(listener)); }

    // ---- the other window messages (-1: nothing sent, the widget is not a window) ----
    // 5012: print the window. Any print dialog it opens is answered by the emulator's
    // DialogAnswerer.
    int print(void* widget);
    // 5025 to the interface of `type`: the window holding `object`. The record's result
    // words start null; they are returned as the module left them.
    struct Owner {
        int answer;
        void* widget;
        void* iface;
    };
    Owner owner(data::ChartType type, void* object);
    // 5034: the window's caption in the host's title buffer (FXWC_CAPTION_UNITS units).
    // `terminated` says the module ended the text inside the buffer, `overrun` that it
    // wrote past it (into guard units the host keeps behind).
    struct Caption {
        int answer;
        QString text;
        bool terminated;
        bool overrun;
    };
    Caption caption(void* widget);
    // 3518: the window's panel changed status (fxwcPanelTarget, fxwcPanelStatus).
    int panelStatus(void* widget, std::int32_t status, std::int32_t value);
    // 10054: a property page of the window was applied (PROPERTY_CHANGE).
    int applyProperty(void* widget, void* page, std::int32_t value);

    // ---- gestures of the person at the terminal (ChartGestures.cpp) ----
    // The module's chart widget as a QWidget: the container's child at the widget's address
    // (or its only child); null for a widget that is not a window.
    QWidget* chartWidget(void* widget) const;
    // Drags `mime` onto the window and drops it at `point` (chart widget coordinates), as
    // Qt delivers a drag: QDragEnterEvent, then QDragMoveEvent (starting accepted when the
    // enter was), then QDropEvent, each sent to the deepest widget at the point that accepts
    // drops. A step that is not accepted ends the drag. True when the drop was accepted.
    bool dragDrop(void* widget, const QMimeData* mime, const QPoint& point,
                  Qt::DropAction action = Qt::CopyAction);
    // A right click at `point`: button press, release, then the context-menu event, as on a
    // terminal that opens context menus on release. The popup that opens is followed along
    // `path` (entry texts without '&': each but the last opens a submenu by hovering it) and
    // its last entry is hovered and chosen with the Return key. False, with the entries that
    // were there in `error`, when no menu opens or an entry is missing; the menus are closed
    // in every case.
    bool chooseFromContextMenu(void* widget, const QPoint& point, const QStringList& path,
                               std::string* error = nullptr);
    // The entries of the menu `path` leads to (the context menu itself for an empty path),
    // separators left out, submenus ending in " >"; empty when there is no such menu.
    QStringList contextMenuEntries(void* widget, const QPoint& point, const QStringList& path = QStringList());

    // The tool bar's buttons, left to right: Zoom In and Zoom Out come first.
    QList<QToolButton*> toolButtons(void* widget) const;
    // The time scroll bar: the chart widget's QAbstractSlider that is not a QSlider (that one
    // is the zoom slider); null when there is none.
    QAbstractSlider* timeScrollBar(void* widget) const;
    // A left press and release at `point`, as a click on the chart lands.
    void click(void* widget, const QPoint& point);
    // A key pressed and released while the chart has the focus.
    void pressKey(void* widget, int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    // The tool tip the module shows with the mouse resting at `point`; empty for none.
    QString toolTipAt(void* widget, const QPoint& point);

    // The areas' close buttons as the window shows them now, top to bottom: the small framed
    // squares with a cross at the right end of each area's caption strip, found in the
    // window's picture. One per area.
    std::vector<QRect> closeButtons(void* widget);
    // A left click at the centre of area `index`'s close button (0 for the top area). True
    // when the module took that area away (the window shows one close button fewer).
    bool closeArea(void* widget, int index, std::string* error = nullptr);
    // A point over a figure of area `index` where the module shows a tool tip, searched from
    // the middle of the area outwards; false when the area shows none.
    bool figureIn(void* widget, int index, QPoint* point, QString* tip = nullptr);
    // A click on a figure of area `index`, which selects its line, then the Delete key. True
    // when the module took the figure away (no tool tip shows there any more).
    bool deleteLine(void* widget, int index, std::string* error = nullptr);

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
    int describeDrag(void* target, bool primitive, const coreDragData* drag, fxwcDropInstrument* record,
                     std::string& detail);
    // Opens the context menu and walks `path`: the menu reached, or null (menus closed).
    QMenu* openMenu(void* widget, const QPoint& point, const QStringList& path, std::string* error);
    int windowDestroyed(void* target, const fxwcWindowDestroyed* record, std::string& detail);

    Host& host_;
    CoreServices& core_;
    DataCore& data_;
    MainWindowService& mainWindow_;
    std::vector<Window> windows_;
    std::vector<fxwcWindowDestroyed> destroyed_;
    std::vector<std::function<void(void*)> > going_;
    // While 5003 runs the new widget is not known yet; titles it sends wait here.
    bool creating_ = false;
    std::map<void*, QString> pendingTitles_;
};

}  // namespace host
