// A chart type as the host sees it: a window component that the host registers, names,
// and asks to create, show, print, save, load and destroy chart windows of its kind.
#pragma once

#include <QObject>
#include <QString>
#include <cstdint>
#include <vector>

#include "abi/PFChartModuleAbi.h"
#include "abi/records.h"

class PFChartModule;
class PFChartWidget;

// The messages of a chart type interface and what each does with hostile input. A window
// ("widget") is acted on only when this interface lists it (IsListed): any other address,
// a destroyed window's, another interface's window or an invented one, is compared and
// never dereferenced. Records are read by value (they are packed and may sit at any
// address); text fields are cut at their end whether terminated or not.
//
//   5001  nameComponent: 1 for a null record; else filled, 0.
//   5022  fxwcNameCompUnicode: 1 for a null record. The icon is copied only into a non-null
//         buffer whose size (iconSize) holds all of it; the name is always written. 0.
//   5020  p1 an int32 slot: written when not null. 0.
//   5003  CREATEWINDOWCOMPONENT: 1 for a null record. A window id that names no widget of
//         the process makes a window without a parent. 0.
//   5004  p1 the widget: 3150 always, carrying the window's host handle when one of the
//         module's interfaces lists it (0 for any other address); then 1 when this
//         interface does not list it (nothing destroyed), else the window deleted, 0.
//   5005, 5011  p1 the widget: 1 when not listed; else 0.
//   5012  p1 the widget: 1 when not listed or busy; else printed, 0.
//   5007  p1 the widget, p2 fxwcDropList: nothing for a widget not listed. Otherwise the
//         window takes the focus, every record is taken (none for a null list, a null
//         record array, a count below 1, or a count above kMaxDroppedInstruments, which is
//         logged) and the title is recomputed. 0.
//   3518  p1 fxwcPanelTarget, p2 fxwcPanelStatus: 1 for a null target record; nothing for
//         a null status or a widget not listed. 0.
//   3020, 3021  p1 the widget, p2 coreSzNode: nothing for a null node or a widget not
//         listed; node handles the host does not know read as an empty layout. 0.
//   3009  coreCoreUpdateDpaData: 1 for a null record or a subscriber not listed; a data
//         handle none of the window's lines has changes nothing. 0 otherwise.
//   5025  fxwcGetOwnerForObj: 1 for a null record or an object no listed window holds (the
//         record untouched); else 0 with the window and interface written.
//   5034  fxwcGetCaption, p2 the reply buffer: nothing for a null record or buffer or a
//         widget not listed; else the title, at most FXWC_TITLE_MAX_UNITS units, and its
//         terminator. 0.
//   10054 PROPERTY_CHANGE: nothing for a null record or a widget not listed. 0.
//   other numbers: 0, nothing done.
class ChartInterface : public QObject {
    Q_OBJECT
public:
    // What distinguishes the three chart types.
    struct Traits {
        int chartType;              // DataTypeShow: 0 PF, 1 Renko, 2 Kagi
        const char* registeredName; // name in the registration record
        const char* shortName;      // nameComponent
        const char* icon;           // compiled-in resource
        const char* displayKey;     // translation key of the display name
    };

    ChartInterface(PFChartModule* module, const Traits& traits);
    ~ChartInterface() override;

    virtual int GetWindowComponentName(nameComponent* name);
    virtual int GetUnicodeWindowComponentName(fxwcNameCompUnicode* name);
    // Registers the interface with the host (3000) and takes the handle the host left in
    // the record as its own host handle.
    virtual int AddInterface();
    // A drop (5007) of more instruments than this cannot come from a terminal (its records
    // alone would take 85 MB): such a count is refused whole and logged.
    static constexpr std::int32_t kMaxDroppedInstruments = 65536;

    // Creates a chart window (5003) inside the widget whose window id the record names and
    // writes its address into the record; null for a null record.
    virtual PFChartWidget* CreateWindowComponent(CREATEWINDOWCOMPONENT* record);
    // 5004: tells the host (3150, with the window's host handle when it is a window of the
    // module's), then deletes a window this interface lists; 1 for anything else.
    int DestroyWindowComponent(void* widget);
    // 5007: adds every dropped instrument to a listed window.
    void DropInstruments(void* widget, const fxwcDropList* list);
    // 3020 (load, `load` true) and 3021 (save): the window's layout under the work-data node.
    void SaveLoadReQuest(void* widget, const coreSzNode* node, bool load);
    // 3518: a listed window's panel changed status.
    void ChangePanelStatus(void* widget, const fxwcPanelStatus* record);
    // 10054: 1 for a null record; 0 otherwise, applied only to a listed window.
    int ApplyProperty(const PROPERTY_CHANGE* record);
    // 5034: 1 for a null record or a window not listed; else the title into the reply.
    int FxWindowComponentGetCaption(const fxwcGetCaption* record, coreWChar* reply);
    // 5025: 0 with the owning window and its interface written into the record; 1 when no
    // listed window holds the object (the record is left alone).
    int GetOwnerForObj(fxwcGetOwnerForObj* record);

    void InicParameters(HostCallback callback, HostCallback callback2, void* handle, void* handle2);
    int ReceiveMessageWrap(void* target, unsigned int message, std::intptr_t p1, std::intptr_t p2);

    void AddWidget(PFChartWidget* widget);
    void DelWidget(PFChartWidget* widget);
    int GetWidgetIndex(const PFChartWidget* widget) const;
    // The first listed widget that has the keyboard focus; null when none has.
    PFChartWidget* GetActiveWidget() const;
    bool IsListed(const void* widget) const;
    const std::vector<PFChartWidget*>& GetWidgets() const { return widgets_; }

    void* GetHostHandle() const { return ownHandle_; }
    const Traits& GetTraits() const { return traits_; }
    PFChartModule* GetModule() const { return module_; }
    bool Repainted() const { return repainted_; }

    HostCallback sendToHost = nullptr;
    HostCallback sendToHost2 = nullptr;
    void* hostHandle = nullptr;
    void* hostHandle2 = nullptr;

protected:
    void timerEvent(QTimerEvent* event) override;

private:
    bool repainted_ = false;
    void* ownHandle_ = nullptr;
    PFChartModule* module_;
    std::vector<PFChartWidget*> widgets_;
    Traits traits_;
    int timerId_ = 0;
};
