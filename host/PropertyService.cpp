#include "host/PropertyService.h"

#include <QApplication>
#include <QMouseEvent>
#include <QWidget>
#include <cstdio>

#include "host/ChartWindows.h"
#include "host/MainWindowService.h"
#include "host/PropertyDialog.h"

namespace host {

namespace {

std::string Hex(const void* p) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%p", p);
    return buffer;
}

}  // namespace

PropertyService::PropertyService(Host& host, MainWindowService& mainWindow, ChartWindows& charts)
    : host_(host), mainWindow_(mainWindow), charts_(charts) {
    host_.on(MSG_SHOW_PROPERTY_PAGE, [this](void* target, std::intptr_t p1, std::intptr_t p2, std::string& d) {
        return show(target, reinterpret_cast<PROPERTY_PAGE*>(p1), reinterpret_cast<void*>(p2), d);
    });
    host_.on(MSG_PROPERTY_REFRESH, [this](void* target, std::intptr_t p1, std::intptr_t, std::string& d) {
        return refresh(target, reinterpret_cast<PROPERTY_PAGE*>(p1), d);
    });
    // A window's dialogs close when the window is being destroyed, before the
    // page they show is freed: a dialog left open on freed memory would write into whatever
    // took its place, and a new window at the same address would make it look alive.
    charts_.onWindowGoing([this](void* widget) { close(widget); });
}

PropertyService::~PropertyService() { closeAll(); }

void PropertyService::prune() {
    std::vector<QPointer<PropertyDialog> > open;
    for (const QPointer<PropertyDialog>& d : dialogs_)
        if (d && d->isVisible() && charts_.interfaceOf(d->widget())) open.push_back(d);
        else if (d) d->deleteLater();
    dialogs_.swap(open);
}

int PropertyService::show(void* target, PROPERTY_PAGE* page, void* widget, std::string& detail) {
    if (target != mainWindow_.handle()) return 1;
    ++requests_;
    detail = "property page " + Hex(page) + " of " + Hex(widget);
    if (!page || !charts_.interfaceOf(widget)) {
        detail += ": refused";
        return 1;
    }
    prune();
    for (const QPointer<PropertyDialog>& d : dialogs_)
        if (d->page() == page) {
            d->refresh();
            d->raise();
            return 0;
        }
    ChartWindows& charts = charts_;
    PropertyDialog* dialog = new PropertyDialog(
        page, widget,
        [this, &charts, page, widget] {
            const int answer = charts.applyProperty(widget, page, 0);
            applied_.push_back(answer);
            return answer;
        },
        [&charts, widget] { return charts.interfaceOf(widget) != nullptr; });
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->show();
    dialogs_.push_back(dialog);
    return 0;
}

int PropertyService::refresh(void* target, PROPERTY_PAGE* page, std::string& detail) {
    if (target != host_.coreHandle() || !page) return 1;
    detail = "refresh of property page " + Hex(page);
    prune();
    for (const QPointer<PropertyDialog>& d : dialogs_)
        if (d->page() == page && d->refresh()) {
            ++refreshes_;
            return 0;
        }
    detail += ": no dialog open";
    return 1;
}

PropertyDialog* PropertyService::open(void* widget, std::string* error) {
    std::string why;
    QWidget* chart = charts_.chartWidget(widget);
    if (!chart) why = "not a chart window";
    QPoint spot(-1, -1);
    for (int y = 30; chart && spot.x() < 0 && y < chart->height() - 30; y += 17)
        for (int x = 8; spot.x() < 0 && x < chart->width() - 8; x += 23)
            if (!chart->childAt(x, y) && charts_.toolTipAt(widget, QPoint(x, y)).isEmpty()) spot = QPoint(x, y);
    if (chart && spot.x() < 0) why = "no empty chart space to double-click";
    if (!why.empty()) {
        if (error) *error = why;
        return nullptr;
    }
    const int before = requests_;
    const QPoint global = chart->mapToGlobal(spot);
    QPointer<QWidget> target(chart);
    const QEvent::Type steps[] = {QEvent::MouseButtonPress, QEvent::MouseButtonRelease, QEvent::MouseButtonDblClick,
                                  QEvent::MouseButtonRelease};
    for (QEvent::Type type : steps) {
        if (!target) break;
        const bool down = type != QEvent::MouseButtonRelease;
        QMouseEvent event(type, spot, global, Qt::LeftButton, down ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(target, &event);
    }
    PropertyDialog* dialog = dialogFor(widget);
    if (!dialog && error)
        *error = requests_ == before ? "the module showed no property page after a double click at " +
                                           std::to_string(spot.x()) + "," + std::to_string(spot.y())
                                     : "the module's property page was refused";
    return dialog;
}

bool PropertyService::setAndApply(PropertyDialog* dialog, const QString& name, const QString& text,
                                  std::string* error) {
    QString why;
    if (!dialog) why = QStringLiteral("no property dialog is open");
    else if (dialog->setValue(name, text, &why)) {
        const int answer = dialog->apply();
        if (answer != 0) why = QStringLiteral("the module answered 10054 with %1").arg(answer);
    }
    if (error) *error = why.toStdString();
    return why.isEmpty();
}

PropertyDialog* PropertyService::dialogFor(void* widget) const {
    for (auto it = dialogs_.rbegin(); it != dialogs_.rend(); ++it)
        if (*it && (*it)->isVisible() && (*it)->widget() == widget) return *it;
    return nullptr;
}

PropertyDialog* PropertyService::current() const {
    for (auto it = dialogs_.rbegin(); it != dialogs_.rend(); ++it)
        if (*it && (*it)->isVisible()) return *it;
    return nullptr;
}

void PropertyService::close(void* widget) {
    std::vector<QPointer<PropertyDialog> > kept;
    for (const QPointer<PropertyDialog>& d : dialogs_) {
        if (d && d->widget() != widget) {
            kept.push_back(d);
        } else if (d) {
            d->forgetPage();
            d->hide();
            d->deleteLater();
        }
    }
    dialogs_.swap(kept);
}

void PropertyService::closeAll() {
    for (const QPointer<PropertyDialog>& d : dialogs_) delete d.data();
    dialogs_.clear();
}

}  // namespace host
