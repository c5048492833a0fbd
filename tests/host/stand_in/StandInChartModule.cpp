// A stand-in chart module for the emulator's own tests: loaded with dlopen like the real
// one, it registers three window components and keeps the window-component side of the
// contract with plain widgets, so that the host's chart windows can be tested without
// the real chart window.
//
//   5003  a solid widget as the child of the window whose id the record gives; its title
//         (3125) is sent before the record's slot is filled
//   5005  the widget fills its parent
//   5004  3150 {the interface's host handle, widget}, then the widget is deleted
//   5007  the title becomes a description of every dropped record (see describe())
//   3021  a child "PFWidget" with the attribute Title (the window's title) under the node
//   3020  the title becomes "loaded " and the names of the node's entries
//   5012  a QPrintDialog; accepted, a page with "Printed by the stand-in", titled "printed"
//   5034  the title, cut to the capacity; 5025 the widget's own address is found
//   3518, 10054  the title names the values received
//   3140  for one of its windows: 3141 {document, root node, widget} with the result 0; a
//         window whose record's root has an entry "Busy" is busy (answers 1, no 3141)
// Drops of drag data are described by the host (3119, 3048; then 3012) and titled as 5007.
// The context menu holds "Trade" > "Deal" and "Order"; choosing one titles the window with
// it and the entries hovered on the way.
// Window messages for widgets an interface did not create answer 1 and touch nothing.
#include <QColor>
#include <QContextMenuEvent>
#include <QDropEvent>
#include <QMenu>
#include <QMimeData>
#include <QPainter>
#include <QPrintDialog>
#include <QPrinter>
#include <QString>
#include <QWidget>
#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "abi/PFChartModuleAbi.h"
#include "abi/records.h"

namespace {

// What the stand-in paints over its whole rectangle; the tests look for it.
const QRgb kChartColour = qRgb(0x33, 0x66, 0x99);

struct Component {
    const char* name;
    void* hostHandle;
    std::vector<QWidget*> widgets;
};

HostCallback g_send = nullptr;
void* g_core = nullptr;
Component g_components[] = {{"Points and Figures", nullptr, {}}, {"Renko", nullptr, {}}, {"Kagi", nullptr, {}}};

std::intptr_t P(const void* p) { return reinterpret_cast<std::intptr_t>(p); }

void sendTitle(QWidget* widget, const QString& title) {
    widget->setWindowTitle(title);
    g_send(g_core, MSG_TITLE_CHANGED, P(widget), P(title.utf16()));
}

// "SYMBOL name=NAME kind=KIND provider=PROVIDER period=I30 start=0 style=0 base=yes" per
// record, joined by "; ".
QString describe(const fxwcDropList* list) {
    QStringList parts;
    for (std::int32_t i = 0; i < list->count; ++i) {
        fxwcDropInstrument r;
        std::memcpy(&r, &list->records[i], sizeof r);
        coreWChar name[256] = {};
        std::memcpy(name, reinterpret_cast<const char*>(&list->records[i]) + offsetof(fxwcDropInstrument, name),
                    255 * sizeof(coreWChar));
        parts << QStringLiteral("%1 name=%2 kind=%3 provider=%4 period=%5%6 start=%7 style=%8 base=%9")
                     .arg(QString::fromLatin1(r.symbol), QString::fromUtf16(name),
                          QString::fromLatin1(r.instrumentType), QString::fromLatin1(r.providerName),
                          r.periodType ? QString(QChar(char(r.periodType))) : QStringLiteral("0"))
                     .arg(r.periodLength)
                     .arg(r.startTime)
                     .arg(r.style)
                     .arg(r.baseHandle ? "yes" : "no");
    }
    return parts.join(QStringLiteral("; "));
}

class SolidChart : public QWidget {
public:
    explicit SolidChart(QWidget* parent) : QWidget(parent) { setAcceptDrops(true); }

protected:
    void paintEvent(QPaintEvent*) override { QPainter(this).fillRect(rect(), QColor(kChartColour)); }
    void dragEnterEvent(QDragEnterEvent* e) override {
        if (e->mimeData()->hasFormat("kovar/symbol-indicator") || e->mimeData()->hasFormat("kovar/primitive"))
            e->acceptProposedAction();
    }
    void dropEvent(QDropEvent* e) override {
        const bool primitive = !e->mimeData()->hasFormat("kovar/symbol-indicator");
        const QByteArray bytes = e->mimeData()->data(primitive ? "kovar/primitive" : "kovar/symbol-indicator");
        coreDragData drag{bytes.constData(), std::int32_t(bytes.size())};
        fxwcDropInstrument record{};
        if (g_send(g_core, primitive ? MSG_DESCRIBE_PRIMITIVE : MSG_DESCRIBE_DRAG, std::intptr_t(&drag),
                   std::intptr_t(&record)) != 0)
            return;
        coreHeadNodeInfo head{};
        g_send(g_core, MSG_HEAD_NODE_INFO, std::intptr_t(record.baseHandle), std::intptr_t(&head));
        const fxwcDropList list{1, &record};
        sendTitle(this, describe(&list));
        e->acceptProposedAction();
    }
    void contextMenuEvent(QContextMenuEvent* e) override {
        hovered_.clear();
        QMenu* menu = new QMenu(this);
        menu->setAttribute(Qt::WA_DeleteOnClose);
        QMenu* trade = menu->addMenu(QStringLiteral("&Trade"));
        connect(menu, &QMenu::hovered, this, [this](QAction* a) { hovered_ << a->text(); });
        for (const char* name : {"Deal", "Order"})
            connect(trade->addAction(QString::fromLatin1(name)), &QAction::triggered, this,
                    [this, name] { sendTitle(this, QStringLiteral("chose %1 after %2").arg(name, hovered_.join(","))); });
        menu->popup(e->globalPos());
    }

private:
    QStringList hovered_;
};

void registerComponent(Component& c) {
    coreInterfaceRequest r;
    std::memset(&r, 0, sizeof r);
    std::strcpy(r.kind, "Windowcomponent");
    std::strcpy(r.provider, "TELVIX");
    std::strcpy(r.name, c.name);
    r.result = reinterpret_cast<void**>(&c);
    g_send(g_core, MSG_REGISTER_INTERFACE, P(&r), 0);
    c.hostHandle = reinterpret_cast<void*>(r.result);
}

// 3021: a child "PFWidget" holding the window's title.
void saveLayout(QWidget* widget, const coreSzNode& node) {
    coreCreateNode create{};
    create.document = reinterpret_cast<void*>(std::uintptr_t(node.document));
    create.parent = reinterpret_cast<void*>(std::uintptr_t(node.node));
    std::strcpy(create.name, "PFWidget");
    if (g_send(g_core, MSG_WD_CREATE_NODE, P(&create), 0) != 0) return;
    const coreSzNode child{node.document, node.document2, std::uint32_t(std::uintptr_t(create.result))};
    const QString title = widget->windowTitle();
    coreSzParam param{};
    std::strcpy(param.name, "Title");
    param.value = const_cast<coreWChar*>(title.utf16());
    param.valueLength = title.size() + 1;
    coreSzParamList list{1, &param};
    g_send(g_core, MSG_WD_WRITE_PARAMS, P(&child), P(&list));
}

// 3020: the names of the node's entries, as the host reports them.
QStringList readEntries(const coreSzNode& node) {
    std::int32_t count = 0;
    g_send(g_core, MSG_WD_PARAM_COUNT, P(&node), P(&count));
    std::vector<coreSzParam> params(std::size_t(std::max(count, 0)), coreSzParam{});
    std::vector<std::vector<coreWChar> > values(params.size(), std::vector<coreWChar>(256));
    for (std::size_t i = 0; i < params.size(); ++i) {
        params[i].value = values[i].data();
        params[i].valueLength = 256;
    }
    coreSzParamList list{count, params.data()};
    QStringList names;
    if (count > 0 && g_send(g_core, MSG_WD_READ_PARAMS, P(&node), P(&list)) == 0)
        for (const coreSzParam& p : params) names << QString::fromLatin1(p.name);
    return names;
}

void print(QWidget* widget) {
    QPrinter printer;
    QPrintDialog dialog(&printer, widget);
    if (dialog.exec() != QDialog::Accepted) return;
    QPainter painter(&printer);
    painter.drawText(0, 100, QStringLiteral("Printed by the stand-in"));
    sendTitle(widget, QStringLiteral("printed"));
}

// Messages whose first parameter is a record naming the window.
int recordMessage(Component& c, unsigned int message, std::intptr_t p1, std::intptr_t p2) {
    void* const record = reinterpret_cast<void*>(p1);
    if (message == MSG_WC_OWNER_FOR_OBJECT) {
        fxwcGetOwnerForObj* owner = static_cast<fxwcGetOwnerForObj*>(record);
        if (!owner || std::find(c.widgets.begin(), c.widgets.end(), owner->object) == c.widgets.end()) return 1;
        owner->iface = &c;
        owner->widget = owner->object;
        return 0;
    }
    // The window is the second word of each of these records.
    QWidget* w = record ? static_cast<QWidget**>(record)[1] : nullptr;
    if (!w || std::find(c.widgets.begin(), c.widgets.end(), w) == c.widgets.end()) return 1;
    if (message == MSG_WC_CAPTION) {
        const fxwcGetCaption* caption = static_cast<const fxwcGetCaption*>(record);
        const int units = std::min(w->windowTitle().size(), (caption->capacity > 0 ? caption->capacity : 256) - 1);
        coreWChar* reply = reinterpret_cast<coreWChar*>(p2);
        std::memcpy(reply, w->windowTitle().utf16(), std::size_t(units) * sizeof(coreWChar));
        reply[units] = 0;
    } else if (message == MSG_PANEL_STATUS) {
        const fxwcPanelStatus* status = reinterpret_cast<const fxwcPanelStatus*>(p2);
        sendTitle(w, QStringLiteral("panel status=%1 value=%2").arg(status->status).arg(status->value));
    } else {
        const PROPERTY_CHANGE* change = static_cast<const PROPERTY_CHANGE*>(record);
        sendTitle(w, QStringLiteral("property value=%1").arg(change->value));
    }
    return 0;
}

// 3140: the record's words echoed back with 3141, unless the record says the window is busy.
int undo(Component& c, const coreUndoStart* record) {
    if (!record) return 1;
    coreUndoStart r;
    std::memcpy(&r, record, sizeof r);
    void* const widget = r.widget;  // packed: read once into an aligned word
    if (std::find(c.widgets.begin(), c.widgets.end(), widget) == c.widgets.end()) return 1;
    if (readEntries(coreSzNode{r.document, r.document2, r.node}).contains(QStringLiteral("Busy"))) return 1;
    coreUndoRefresh reply{r.document, r.node, widget};
    g_send(g_core, MSG_UNDO_REPLY, P(&reply), 0);
    return 0;
}

int windowMessage(Component& c, unsigned int message, std::intptr_t p1, std::intptr_t p2) {
    if (message == MSG_UNDO_REQUEST) return undo(c, reinterpret_cast<const coreUndoStart*>(p1));
    if (message == MSG_WC_OWNER_FOR_OBJECT || message == MSG_WC_CAPTION || message == MSG_PANEL_STATUS ||
        message == MSG_APPLY_PROPERTY)
        return recordMessage(c, message, p1, p2);
    if (message == MSG_WC_CREATE) {
        CREATEWINDOWCOMPONENT* record = reinterpret_cast<CREATEWINDOWCOMPONENT*>(p1);
        QWidget* parent = record ? QWidget::find(WId(record->parentWindowId)) : nullptr;
        if (!parent) return 1;
        QWidget* widget = new SolidChart(parent);
        c.widgets.push_back(widget);
        sendTitle(widget, QStringLiteral("Stand-in %1").arg(QString::fromLatin1(c.name)));
        record->widget = widget;
        widget->show();
        return 0;
    }
    QWidget* widget = reinterpret_cast<QWidget*>(p1);
    const auto listed = std::find(c.widgets.begin(), c.widgets.end(), widget);
    if (listed == c.widgets.end()) return 1;
    switch (message) {
        case MSG_WC_RESIZE:
            widget->resize(widget->parentWidget()->size());
            return 0;
        case MSG_WC_DESTROY: {
            fxwcWindowDestroyed gone;
            gone.hostHandle = c.hostHandle;
            gone.widget = widget;
            g_send(g_core, MSG_WINDOW_DESTROYED, P(&gone), 0);
            c.widgets.erase(listed);
            delete widget;
            return 0;
        }
        case MSG_WC_DROP_INSTRUMENTS:
            if (!p2) return 1;
            sendTitle(widget, describe(reinterpret_cast<const fxwcDropList*>(p2)));
            return 0;
        case MSG_SAVE_CHART:
            if (!p2) return 1;
            saveLayout(widget, *reinterpret_cast<const coreSzNode*>(p2));
            return 0;
        case MSG_LOAD_CHART:
            if (!p2) return 1;
            sendTitle(widget, QStringLiteral("loaded ") + readEntries(*reinterpret_cast<const coreSzNode*>(p2)).join(","));
            return 0;
        case MSG_WC_PRINT:
            print(widget);
            return 0;
        default:
            return 0;
    }
}

}  // namespace

extern "C" {

__attribute__((visibility("default"))) int GetModuleInfo(MODULE_INFO* info) {
    if (info) {
        std::memset(info, 0, sizeof *info);
        std::strcpy(info->name, "Stand-in chart module");
    }
    return 0;
}

__attribute__((visibility("default"))) void Initialize(HostCallback callback, HostCallback, void* handle, void*) {
    g_send = callback;
    g_core = handle;
}

__attribute__((visibility("default"))) int ReceiveMessage(void* target, unsigned int message, std::intptr_t p1,
                                                          std::intptr_t p2) {
    if (!g_send) return 1;
    if (message == MSG_REGISTER) {
        for (Component& c : g_components) registerComponent(c);
        return 0;
    }
    for (Component& c : g_components)
        if (target == &c) return windowMessage(c, message, p1, p2);
    return 0;
}

}  // extern "C"
