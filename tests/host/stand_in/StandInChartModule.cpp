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
// Window messages for widgets an interface did not create answer 1 and touch nothing.
#include <QColor>
#include <QPainter>
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

class SolidChart : public QWidget {
public:
    explicit SolidChart(QWidget* parent) : QWidget(parent) {}

protected:
    void paintEvent(QPaintEvent*) override { QPainter(this).fillRect(rect(), QColor(kChartColour)); }
};

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

int windowMessage(Component& c, unsigned int message, std::intptr_t p1, std::intptr_t p2) {
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
