#include "host/ChartWindows.h"

#include <QCoreApplication>
#include <QEvent>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QAction>
#include <QKeySequence>
#include <QWidget>
#include <algorithm>
#include <cstddef>
#include <cstring>
#include <sstream>

#include "host/CoreServices.h"
#include "host/DataCore.h"
#include "host/MainWindowService.h"

namespace host {

namespace {

// The names the module registers its chart type interfaces under, by chart type.
const char* const kComponentNames[] = {"Points and Figures", "Renko", "Kagi"};

// Size of a new chart window's container before anyone resizes it.
const QSize kInitialSize(800, 600);
// Longest window title read from the module, in UTF-16 units.
const int kMaxTitle = 4096;
// Room offered for a component's icon (5022).
const int kIconCapacity = 256 * 1024;

std::string hex(const void* p) {
    std::ostringstream out;
    out << p;
    return out.str();
}

std::intptr_t P(const void* p) { return reinterpret_cast<std::intptr_t>(p); }

QString readTitle(const coreWChar* text) {
    int n = 0;
    while (n < kMaxTitle && text[n]) ++n;
    return QString::fromUtf16(reinterpret_cast<const char16_t*>(text), n);
}

bool holdsWidgets(const QWidget* container) {
    return !container->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly).isEmpty();
}

}  // namespace

ChartWindows::ChartWindows(Host& host, CoreServices& core, DataCore& data, MainWindowService& mainWindow)
    : host_(host), core_(core), data_(data), mainWindow_(mainWindow) {
    host_.on(MSG_TITLE_CHANGED, [this](void* target, std::intptr_t p1, std::intptr_t p2, std::string& d) {
        return titleChanged(target, reinterpret_cast<void*>(p1), reinterpret_cast<const coreWChar*>(p2), d);
    });
    host_.on(MSG_WINDOW_DESTROYED, [this](void* target, std::intptr_t p1, std::intptr_t, std::string& d) {
        return windowDestroyed(target, reinterpret_cast<const fxwcWindowDestroyed*>(p1), d);
    });
    host_.on(MSG_DESCRIBE_DRAG, [this](void* target, std::intptr_t p1, std::intptr_t p2, std::string& d) {
        return describeDrag(target, false, reinterpret_cast<const coreDragData*>(p1),
                            reinterpret_cast<fxwcDropInstrument*>(p2), d);
    });
    host_.on(MSG_DESCRIBE_PRIMITIVE, [this](void* target, std::intptr_t p1, std::intptr_t p2, std::string& d) {
        return describeDrag(target, true, reinterpret_cast<const coreDragData*>(p1),
                            reinterpret_cast<fxwcDropInstrument*>(p2), d);
    });
}

// The containers may outlive this service inside the main window; Qt drops the event
// filter with it.
ChartWindows::~ChartWindows() = default;

void* ChartWindows::interfaceFor(data::ChartType type) const {
    return core_.componentObject(kComponentNames[int(type)]);
}

ChartWindows::Window* ChartWindows::find(void* widget) {
    if (!widget) return nullptr;
    for (Window& w : windows_)
        if (w.widget == widget) return &w;
    return nullptr;
}

const ChartWindows::Window* ChartWindows::find(void* widget) const {
    return const_cast<ChartWindows*>(this)->find(widget);
}

void* ChartWindows::create(data::ChartType type) {
    void* iface = interfaceFor(type);
    if (!iface) return nullptr;
    QWidget* container = new QWidget;
    QMdiSubWindow* sub = mainWindow_.mdiArea()->addSubWindow(container);
    sub->setWindowTitle(QString::fromLatin1(data::chartTypeName(type)));
    // A chart window is closed through the module (5004, destroy()): the sub-window's own
    // Close keeps no shortcut, which would also make the terminal's key for closing the
    // chart with the focus (Ctrl+W) ambiguous.
    if (QMenu* menu = sub->systemMenu())
        for (QAction* a : menu->actions())
            for (const QKeySequence& key : QKeySequence::keyBindings(QKeySequence::Close))
                if (a->shortcuts().contains(key)) a->setShortcuts(QList<QKeySequence>());
    sub->show();
    sub->resize(sub->size() - container->size() + kInitialSize);

    CREATEWINDOWCOMPONENT record;
    std::memset(&record, 0, sizeof record);
    record.parentWindowId = static_cast<std::intptr_t>(container->winId());
    pendingTitles_.clear();
    creating_ = true;
    const int answer = host_.send(iface, MSG_WC_CREATE, P(&record), 0,
                                  "create in window " + std::to_string(record.parentWindowId));
    creating_ = false;
    void* const widget = record.widget;
    if (answer != 0 || !widget || find(widget)) {
        pendingTitles_.clear();
        // Whatever the module may have put into the container stays the module's.
        if (holdsWidgets(container))
            sub->hide();
        else
            delete sub;
        return nullptr;
    }
    const QString title = pendingTitles_[widget];
    pendingTitles_.clear();
    windows_.push_back(Window{widget, iface, type, sub, container, title, false});
    if (!title.isEmpty()) sub->setWindowTitle(title);
    container->installEventFilter(this);
    host_.send(iface, MSG_WC_RESIZE, P(widget), 0, "fill " + hex(widget));
    return widget;
}

bool ChartWindows::destroy(void* widget) {
    Window* w = find(widget);
    if (!w) return false;
    w->announced = false;
    // What the terminal shows of the window goes first, as when a person closes it.
    for (const std::function<void(void*)>& listener : going_) listener(widget);
    host_.send(w->iface, MSG_WC_DESTROY, P(widget), 0, "destroy " + hex(widget));
    w = find(widget);
    if (!w || !w->announced) return false;
    if (w->container && holdsWidgets(w->container))
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);  // deleted later
    if (w->container && holdsWidgets(w->container)) return false;
    removeWindow(widget);
    return true;
}

void ChartWindows::destroyAll() {
    const std::vector<void*> all = widgets();
    for (auto it = all.rbegin(); it != all.rend(); ++it) destroy(*it);
}

void ChartWindows::removeWindow(void* widget) {
    for (auto it = windows_.begin(); it != windows_.end(); ++it) {
        if (it->widget != widget) continue;
        QMdiSubWindow* sub = it->sub.data();
        windows_.erase(it);
        delete sub;
        return;
    }
}

int ChartWindows::show(void* widget) {
    const Window* w = find(widget);
    return w ? host_.send(w->iface, MSG_WC_SHOW, P(widget), 0, "show " + hex(widget)) : -1;
}

std::int32_t ChartWindows::query(data::ChartType type) {
    void* iface = interfaceFor(type);
    std::int32_t word = 0;
    if (iface) host_.send(iface, MSG_WC_QUERY, P(&word));
    return word;
}

QString ChartWindows::displayName(data::ChartType type, QByteArray* icon) {
    if (icon) icon->clear();
    void* iface = interfaceFor(type);
    if (!iface) return QString();
    QByteArray buffer(kIconCapacity, '\0');
    fxwcNameCompUnicode record;
    std::memset(&record, 0, sizeof record);
    record.iconBuffer = buffer.data();
    record.iconSize = kIconCapacity;
    if (host_.send(iface, MSG_WC_UNICODE_NAME, P(&record)) != 0) return QString();
    coreWChar name[500 + 1] = {};
    std::memcpy(name, reinterpret_cast<const char*>(&record) + offsetof(fxwcNameCompUnicode, name), 500 * sizeof(coreWChar));
    // The module writes the icon's size only when the icon fitted.
    const std::int32_t size = record.iconSize;
    if (icon && size > 0 && size < kIconCapacity) *icon = buffer.left(size);
    return QString::fromUtf16(reinterpret_cast<const char16_t*>(name));
}

QImage ChartWindows::grab(void* widget, const QSize& size) {
    Window* w = find(widget);
    if (!w || !w->container || !w->sub || size.isEmpty()) return QImage();
    QWidget* container = w->container;
    if (container->size() != size) {
        // The sub-window's frame stays as it is; the container takes the rest.
        w->sub->resize(w->sub->size() - container->size() + size);
        if (container->size() != size) container->resize(size);
    }
    // Layout requests and the like the module posted while resizing.
    QCoreApplication::sendPostedEvents();
    w = find(widget);
    return w && w->container ? w->container->grab().toImage() : QImage();
}

int ChartWindows::print(void* widget) {
    const Window* w = find(widget);
    return w ? host_.send(w->iface, MSG_WC_PRINT, P(widget), 0, "print " + hex(widget)) : -1;
}

ChartWindows::Owner ChartWindows::owner(data::ChartType type, void* object) {
    Owner out{-1, nullptr, nullptr};
    void* iface = interfaceFor(type);
    if (!iface) return out;
    fxwcGetOwnerForObj record;
    std::memset(&record, 0, sizeof record);
    record.object = object;
    out.answer = host_.send(iface, MSG_WC_OWNER_FOR_OBJECT, P(&record), 0, "owner of " + hex(object));
    out.widget = record.widget;
    out.iface = record.iface;
    return out;
}

ChartWindows::Caption ChartWindows::caption(void* widget) {
    Caption out{-1, QString(), false, false};
    const Window* w = find(widget);
    if (!w) return out;
    const std::int32_t units = FXWC_CAPTION_UNITS;
    // Guard units behind the buffer show a module writing past its end.
    const std::size_t kGuard = 16;
    const coreWChar kFill = 0xFFFF;
    std::vector<coreWChar> buffer(std::size_t(units) + kGuard, kFill);
    fxwcGetCaption record;
    std::memset(&record, 0, sizeof record);
    record.widget = widget;
    out.answer = host_.send(w->iface, MSG_WC_CAPTION, P(&record), P(buffer.data()),
                            "caption of " + hex(widget) + " in " + std::to_string(units) + " units");
    const auto end = std::find(buffer.begin(), buffer.begin() + units, coreWChar(0));
    out.terminated = end != buffer.begin() + units;
    out.text = QString::fromUtf16(reinterpret_cast<const char16_t*>(buffer.data()), int(end - buffer.begin()));
    out.overrun = std::any_of(buffer.begin() + units, buffer.end(), [kFill](coreWChar u) { return u != kFill; });
    return out;
}

int ChartWindows::panelStatus(void* widget, std::int32_t status, std::int32_t value) {
    const Window* w = find(widget);
    if (!w) return -1;
    fxwcPanelTarget target;
    std::memset(&target, 0, sizeof target);
    target.widget = widget;
    fxwcPanelStatus record;
    record.status = status;
    record.value = value;
    return host_.send(w->iface, MSG_PANEL_STATUS, P(&target), P(&record),
                      "panel of " + hex(widget) + " status=" + std::to_string(status) + " value=" +
                          std::to_string(value));
}

int ChartWindows::applyProperty(void* widget, void* page, std::int32_t value) {
    const Window* w = find(widget);
    if (!w) return -1;
    PROPERTY_CHANGE record;
    record.page = page;
    record.widget = widget;
    record.value = value;
    return host_.send(w->iface, MSG_APPLY_PROPERTY, P(&record), 0,
                      "property page " + hex(page) + " of " + hex(widget) + " value=" + std::to_string(value));
}

QString ChartWindows::title(void* widget) const {
    const Window* w = find(widget);
    return w ? w->title : QString();
}

std::vector<void*> ChartWindows::widgets() const {
    std::vector<void*> out;
    for (const Window& w : windows_) out.push_back(w.widget);
    return out;
}

QWidget* ChartWindows::container(void* widget) const {
    const Window* w = find(widget);
    return w ? w->container.data() : nullptr;
}

QMdiSubWindow* ChartWindows::subWindow(void* widget) const {
    const Window* w = find(widget);
    return w ? w->sub.data() : nullptr;
}

void* ChartWindows::interfaceOf(void* widget) const {
    const Window* w = find(widget);
    return w ? w->iface : nullptr;
}

bool ChartWindows::typeOf(void* widget, data::ChartType* type) const {
    const Window* w = find(widget);
    if (w && type) *type = w->type;
    return w != nullptr;
}

bool ChartWindows::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize) {
        for (const Window& w : windows_) {
            if (w.container != watched) continue;
            const QSize size = w.container->size();
            host_.send(w.iface, MSG_WC_RESIZE, P(w.widget), 0,
                       "fill " + hex(w.widget) + " " + std::to_string(size.width()) + "x" +
                           std::to_string(size.height()));
            break;
        }
    }
    return QObject::eventFilter(watched, event);
}

// 3125: the title goes onto the window's sub-window. A title that arrives while 5003 is
// still running belongs to the widget being made, whose address is not known yet.
int ChartWindows::titleChanged(void* target, void* widget, const coreWChar* text, std::string& detail) {
    if (target != host_.coreHandle() || !widget || !text) return 1;
    Window* w = find(widget);
    if (!w && !creating_) {
        detail = "title of " + hex(widget) + ": not a chart window";
        return 1;
    }
    const QString title = readTitle(text);
    detail = "title of " + hex(widget) + " \"" + title.toStdString() + "\"";
    if (!w) {
        pendingTitles_[widget] = title;
        return 0;
    }
    w->title = title;
    if (w->sub) w->sub->setWindowTitle(title);
    return 0;
}

// 3150: recorded whatever it names; destroy() removes the window once the module has
// announced it and deleted its widget.
int ChartWindows::windowDestroyed(void* target, const fxwcWindowDestroyed* record, std::string& detail) {
    if (target != host_.coreHandle() || !record) return 1;
    fxwcWindowDestroyed r;
    std::memcpy(&r, record, sizeof r);
    destroyed_.push_back(r);
    Window* w = find(r.widget);
    detail = "window " + hex(r.widget) + " of " + hex(r.hostHandle) + (w ? " destroyed" : ": not a chart window");
    if (!w) return 1;
    w->announced = true;
    void* const widget = r.widget;
    for (const std::function<void(void*)>& listener : going_) listener(widget);
    return 0;
}

}  // namespace host
