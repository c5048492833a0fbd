// The terminal's property dialogs: the module asks for one with 10052 (to the main window
// interface: p1 PROPERTY_PAGE*, p2 the chart widget), the person edits it, and Apply or OK
// writes the values into the page and sends 10054 (PROPERTY_CHANGE: the page, the widget,
// 0) to the widget's chart type interface. 10053 (to the host core: p1 the page) shows the
// page's values again in the dialog open on it.
//
// Dialogs are not modal: the request returns at once and the dialog stays open until it is
// closed, its window is destroyed, or closeAll(). A second request for the same page brings
// the open dialog up to date instead of opening another.
//   10052  0; 1 for a null page, a widget that is no chart window or another target
//   10053  0 when a dialog of the page is open and shows it again; 1 otherwise
#pragma once

#include <QPointer>
#include <QString>
#include <string>
#include <vector>

#include "host/Host.h"

namespace host {

class ChartWindows;
class MainWindowService;
class PropertyDialog;

class PropertyService {
public:
    PropertyService(Host& host, MainWindowService& mainWindow, ChartWindows& charts);
    ~PropertyService();

    // What the person does to see a chart window's own properties: a double click on empty
    // chart space (a point of the chart widget itself where no figure shows a tool tip,
    // searched from the top left). The dialog that opened, or null with the reason in
    // `error`.
    PropertyDialog* open(void* widget, std::string* error = nullptr);
    // Sets `name` to `text` in the dialog and applies it (10054); false with the reason in
    // `error` when the entry refuses the text or the module does not answer 0.
    bool setAndApply(PropertyDialog* dialog, const QString& name, const QString& text, std::string* error = nullptr);

    // The dialog open on the window's page (the newest when several are); null when none.
    PropertyDialog* dialogFor(void* widget) const;
    // The newest open dialog; null when none.
    PropertyDialog* current() const;
    // Closes the window's dialogs, which let go of its page at once (the window is going).
    void close(void* widget);
    // Closes every dialog (before the module goes).
    void closeAll();

    // 10052 requests received, and 10053 refreshes that reached an open dialog.
    int requests() const { return requests_; }
    int refreshes() const { return refreshes_; }
    // 10054 answers of the module to the dialogs' applies, in order.
    const std::vector<int>& applied() const { return applied_; }

private:
    int show(void* target, PROPERTY_PAGE* page, void* widget, std::string& detail);
    int refresh(void* target, PROPERTY_PAGE* page, std::string& detail);
    void prune();

    Host& host_;
    MainWindowService& mainWindow_;
    ChartWindows& charts_;
    std::vector<QPointer<PropertyDialog> > dialogs_;
    int requests_ = 0;
    int refreshes_ = 0;
    std::vector<int> applied_;
};

}  // namespace host
