#include "host/ChartWindows.h"

#include <QCoreApplication>
#include <QEvent>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QWidget>
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
    return QString::fromUtf16(text, n);
}

void copyText(char* field, std::size_t size, const std::string& text) {
    std::strncpy(field, text.c_str(), size - 1);
    field[size - 1] = 0;
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

bool ChartWindows::dropRecord(const std::string& name, const std::optional<namePeriod>& period,
                              fxwcDropInstrument* record) {
    const data::Instrument* instrument = data_.instrument(name);
    if (!instrument || !record) return false;
    std::memset(record, 0, sizeof *record);
    record->baseHandle = data_.baseHandle(name);
    data::putWide(reinterpret_cast<char*>(record) + offsetof(fxwcDropInstrument, name), 255, name);
    copyText(record->symbol, sizeof record->symbol, name);
    copyText(record->instrumentType, sizeof record->instrumentType, "Currency");
    copyText(record->providerName, sizeof record->providerName, "TELVIX");
    const namePeriod p = period ? *period : instrument->period();
    record->periodType = p.type;
    record->periodLength = p.length;
    record->startTime = 0;
    record->style = 0;
    return true;
}

int ChartWindows::drop(void* widget, const std::vector<std::string>& instruments,
                       const std::optional<namePeriod>& period) {
    const Window* w = find(widget);
    if (!w) return -1;
    std::vector<fxwcDropInstrument> records(instruments.size());
    std::string names;
    for (std::size_t i = 0; i < instruments.size(); ++i) {
        if (!dropRecord(instruments[i], period, &records[i])) return -1;
        names += (i ? ", " : "") + instruments[i];
    }
    fxwcDropList list;
    list.count = std::int32_t(records.size());
    list.records = records.empty() ? nullptr : records.data();
    return host_.send(w->iface, MSG_WC_DROP_INSTRUMENTS, P(widget), P(&list), "drop " + names + " on " + hex(widget));
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
    return QString::fromUtf16(name);
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
    return 0;
}

}  // namespace host
