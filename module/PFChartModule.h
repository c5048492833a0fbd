// The chart module: owns the three chart type interfaces, the accounts and the dealing
// day-off table, finds the host interfaces the charts need and answers the module-level
// messages of the terminal.
#pragma once

#include <QString>
#include <boost/scoped_array.hpp>
#include <boost/scoped_ptr.hpp>
#include <boost/shared_ptr.hpp>
#include <map>
#include <utility>
#include <vector>

#include "module/AccountList.h"
#include "module/CModule.h"

class QWidget;
class ChartInterface;
class PFChartInterface;
class RenkoChartInterface;
class KagiChartInterface;
class CXMLWorkData;
class CSkin;
namespace gx {
class TextStatusBar;
}

// The module-level messages and what each does with hostile input. Every message passes
// CModule first (it acts on 3004 only), then the chart type interface it is addressed to
// (ChartInterface.h), then the switch below; nothing thrown leaves ReceiveMessageWrap (the
// answer is 1 then). Widgets are only ever acted on when one of the three interfaces lists
// them: any other address, a destroyed window's included, is compared, never dereferenced.
//
//   3004  parameters unused. Languages: a host count of 0 or less, or over 1,000, reads no
//         list and gives the "English" fonts. Answer 0.
//   3007  parameters unused. Answer 0, also when the host refuses the registrations.
//   3066  parameters unused. A deal-interface or account count of 0 or less, or over
//         100,000, allocates and reads nothing; a handle slot the host left unfilled (null)
//         is asked for its accounts like any other: the host answers for it. Answer 0.
//   3073  coreUpdateLs (p1; p2 unused): the record names a data array, not a window, so
//         no widget can be unknown: every window of the three interfaces looks for lines
//         showing that array. A null record, a null array, an empty kind, or a control-point
//         or shape count below 0 or above the study limits (gx::LineStudy::kMaxPoints,
//         kMaxShapes) changes nothing. Otherwise the studies of that kind are resized and
//         their shapes asked for again; a study whose exchange the host fails leaves the
//         chart. Answer 0.
//   3114  FXEvent: a null record, or a null payload, does nothing. Codes other than 16002,
//         16003 and 16048 are ignored; 16048 from a sender that is not one of the three
//         interfaces, or with a payload count of 0 or less, is ignored. A day-off count of 0
//         or less, or over 100,000, changes nothing. Answer 0.
//   3140  coreUndoStart: 1 for a null record, a widget not listed or a busy one (no 3141
//         then); otherwise the widget's UndoPop result, also sent with 3141.
//   3545  a value, no record: 0 middle, 1 bid, any other value ask. Answer 0.
//   3546  coreConvertList: a null record, or a count below 0 or of 100,000 and more, is left
//         as it is (the accounts are re-read first all the same). Answer 0.
//   other numbers (3560 among them): answer 0, nothing done, the parameters never read.
//
// Skins come in through their own entry point, LoadSkin (abi/PFChartModuleAbi.h), never
// through a message.
class PFChartModule : public CModule {
public:
    PFChartModule();
    ~PFChartModule() override;

    // Lets CModule see the message, passes a message addressed to one of the chart type
    // interfaces to it, then runs the module-level switch. Nothing thrown gets out: any
    // exception ends the call with 1.
    int ReceiveMessageWrap(void* target, unsigned int message, std::intptr_t p1,
                           std::intptr_t p2) override;

    // The built-in English texts (key, text) in the order they are inserted at 3007.
    static const std::vector<std::pair<const char*, const char*> >& DefaultStrings();
    void InitDefaultStrings();
    // Gives the interfaces the callbacks and handles, then registers PF, Renko, Kagi.
    int CreateWindowComponentInterface();

    // Host interfaces, cached once found.
    void* GetGlobalMainWindow();
    void* GetTransportInterface();
    QWidget* getMainWindow();

    // Deal interfaces and accounts (3066, 3546), day-off states (16048).
    void getDealInterface();
    void getStartAccount(coreInterfaceRequest* record);
    bool IsDayOff(const QString& symbol) const;
    void UpdateDayOffStatusForDealing(void* dealHandle, int accountId, bool clear);
    void UpdateDayoffStatus(FXEvent* event);
    void accountWork(FXEvent* event);

    // Operations over the chart windows of all three interfaces.
    void UpdateChartForInterface(ChartInterface* iface);
    void SwitchToType(const QString& typeName);
    bool NeedToSwitchToMid() const;
    bool NeedToSwitchToBid() const;
    int MwiConvertToType(std::intptr_t type, std::intptr_t unused);
    int MwiNeedToConvert(std::intptr_t list, std::intptr_t unused);

    void SendMainAboutChange();
    // The default-parameters tree, "<work folder>/etc/PFChartModule.rdd"; the caller owns it.
    CXMLWorkData* getDefaultXml();
    void saveDefaultXml(CXMLWorkData* tree);
    // The work folder from the main window interface (3503); empty on failure.
    QString GetWorkFolder();

    // The status bar panes of the main window (time and price under the mouse); made at 3066,
    // replacing the one held before. Null until then.
    void CreateStatusBar();
    // 3140: a listed window that is not busy undoes the record and the host hears 3141 with
    // the result; 1 (and no reply) for a null record, a busy window or one not the module's.
    int UndoRequest(const coreUndoStart* record);
    gx::TextStatusBar* GetStatusBar() const { return statusBar_.get(); }

    // The look of the chart windows, made with the module. LoadSkin reads the skin document
    // at `path` (the built-in look for an empty path) and restyles every open chart window;
    // 0 when a document was read or the built-in look asked for, else 1.
    CSkin* GetSkin() const { return skin_.get(); }
    int LoadSkin(const QString& path);
    // The LoadSkin entry point: `path` a NUL-terminated UTF-16 text from the terminal. Null
    // is the built-in look (as an empty path); a text with no terminator within its first
    // 255 units is never read past them and answers 1 with the skin left as it is; else
    // LoadSkin's answer. A skin not read is logged.
    int LoadSkinFromHost(const coreWChar* path);

    ChartInterface* GetPFInterface() const;
    ChartInterface* GetRenkoInterface() const;
    ChartInterface* GetKagiInterface() const;
    AccountList& GetAccountList() { return accounts_; }
    const std::map<QString, bool>& GetDayOffTable() const { return dayOff_; }
    const coreInterfaceRequest& GetDealRequest() const { return dealRequest_; }

private:
    int Dispatch(void* target, unsigned int message, std::intptr_t p1, std::intptr_t p2);

    boost::scoped_ptr<CSkin> skin_;
    void* transport_ = nullptr;
    void* mainWindow_ = nullptr;
    boost::shared_ptr<PFChartInterface> pfInterface_;
    boost::shared_ptr<RenkoChartInterface> renkoInterface_;
    boost::shared_ptr<KagiChartInterface> kagiInterface_;
    coreInterfaceRequest dealRequest_;
    // The deal interfaces' handles that dealRequest_.result names. They are owned here, in
    // an aligned member: the record is packed, and a pointer kept only at its odd offset is
    // invisible to a leak checker, which then reports the array as lost.
    boost::scoped_array<void*> dealHandles_;
    AccountList accounts_;
    std::map<QString, bool> dayOff_;
    boost::shared_ptr<gx::TextStatusBar> statusBar_;
};
