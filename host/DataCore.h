// The emulated terminal's data core: instruments from CSV price files, the computed
// chart-type data objects of the Point and Figure, Renko and Kagi providers, and the
// messages through which the module reaches them (3008, 3012-3014, 3042, 3043; it sends
// 3009 when a subscribed object changes).
//
// API for pfhost and the tests:
//
//   Instruments. "USDCHF" (30-minute closes) and "TTRC" (daily composite) are built in
//   and load from examples/ on first use; any other CSV loads by path:
//       data::Instrument* instrument(name);
//       data::Instrument* loadInstrument(path, InstrumentOptions{name, live}, &error);
//   `live` keeps only the first quotes in the series and holds the rest back for replay;
//   `holdBack` holds back the last quotes instead.
//
//   Chart objects (what 3008 creates for the module): box size and reversal per object,
//   zero meaning a default from the instrument's price range and precision. The objects
//   3008 creates take the settings of their chart type (setChartSettings; zeros at first).
//       void* h = createChart("USDCHF", data::ChartType::PointAndFigure, {box, reversal});
//       configure(h, settings);            // recompute with another box / reversal
//       std::vector<fxDataPointArray*> a = arrays(h);   // exactly what 3042 hands out
//       data::ChartObject* c = chart(h);   // records(), settings(), provider figures
//   baseHandle(name) is the data object of the instrument's own quotes.
//
//   Replay: append(name, quote) or replay(name, n) adds quotes one at a time; every
//   object of the instrument updates incrementally and each subscriber of a changed
//   object is told with 3009 (sent to the subscription's interface target, the first
//   word of its 3013 record). notices() lists what was sent.
//
//   3053 asks for the index of an array within the data object that owns it: 0, since
//   every object has one array; 1 ("not handled") for an array of no object.
//
// Handles are the host's small integer handles. Every message handler checks them: an
// unknown handle or a null record answers 1.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/Host.h"
#include "host/data/ChartType.h"
#include "host/data/Instrument.h"

namespace host {

namespace data {
class BaseSeries;
class ChartObject;
class DataObject;
}  // namespace data

// How an instrument is loaded from a CSV file.
struct InstrumentOptions {
    std::string name;  // empty: from the file name ("usdchf-30min.csv" is "USDCHF")
    long live = -1;    // quotes in the series at once; the rest wait for replay. -1: all
    std::size_t holdBack = 0;  // the last quotes wait for replay as well
};

class DataCore {
public:
    explicit DataCore(Host& host);
    ~DataCore();
    DataCore(const DataCore&) = delete;
    DataCore& operator=(const DataCore&) = delete;

    // ---- instruments ----
    using LoadOptions = InstrumentOptions;
    // Null with `error` set when the file is unusable or the name is taken.
    data::Instrument* loadInstrument(const std::string& path, const LoadOptions& options = LoadOptions(),
                                     std::string* error = nullptr);
    // An instrument read elsewhere (a price file read in the background) joins the data
    // core, its quotes split by `options` as loadInstrument does (the name is its own).
    // Null with `error` set when the name is taken.
    data::Instrument* addInstrument(std::unique_ptr<data::Instrument> instrument, const LoadOptions& options,
                                    std::string* error = nullptr);
    // A loaded or built-in instrument; null when there is none of that name.
    data::Instrument* instrument(const std::string& name);
    // An instrument loaded already; null otherwise (a built-in is not loaded by asking).
    data::Instrument* loaded(const std::string& name) const;
    // Forgets an instrument with its base series and every chart object made from it; their
    // handles become unknown. False for a name not loaded.
    bool removeInstrument(const std::string& name);
    // Names of the loaded and built-in instruments, sorted.
    std::vector<std::string> instrumentNames() const;
    // Path of a built-in instrument's file; empty for other names.
    static std::string builtInPath(const std::string& name);
    // The data object of the instrument's own quotes; null for an unknown instrument.
    void* baseHandle(const std::string& name);

    // ---- chart objects ----
    // The interface handle at offset 0 of a 3008 record that selects each provider,
    // registered with the host as kind "CHARTTYPE", provider "TELVIX" and the type's name.
    void* providerInterface(data::ChartType type) const;
    void* createChart(const std::string& instrument, data::ChartType type,
                      const data::ChartSettings& settings = data::ChartSettings(), std::string* error = nullptr);
    // New box size, reversal or percentage for a chart object; recomputes its records and
    // notifies its subscribers. False (nothing changed) for a bad handle or settings.
    bool configure(void* handle, const data::ChartSettings& settings, std::string* error = nullptr);
    data::ChartObject* chart(void* handle) const;
    // Every chart object, in handle order (the order they were made).
    std::vector<data::ChartObject*> chartObjects() const;
    // The arrays of a chart object or base series, as 3042 fills them; empty for a bad handle.
    std::vector<fxDataPointArray*> arrays(void* handle) const;
    // Forgets a chart object; its handle becomes unknown.
    bool release(void* handle);
    // The settings the chart objects that 3008 creates from now on get, per chart type.
    // Checked against each instrument when the object is made (3008 answers 1 when they do
    // not fit it); zeros, the defaults, at first.
    void setChartSettings(data::ChartType type, const data::ChartSettings& settings);
    const data::ChartSettings& chartSettings(data::ChartType type) const;
    // Asked before 3008 makes an object (after the checks of the record): true with other
    // settings for that instrument and type. Empty: none is asked.
    using SettingsChooser = std::function<bool(const std::string& instrument, data::ChartType type,
                                               data::ChartSettings* settings)>;
    void setSettingsChooser(SettingsChooser chooser) { chooser_ = std::move(chooser); }
    // Position of `array` among the arrays of the object that owns it; -1 when no object
    // owns it. Compares addresses only: `array` is never read.
    int arrayIndex(const fxDataPointArray* array) const;

    // ---- replay ----
    // Appends one quote to the instrument's series. False for an unknown instrument or a
    // quote older than the last one.
    bool append(const std::string& instrument, const data::Quote& quote);
    // Appends the next `count` held-back quotes; returns how many there were.
    std::size_t replay(const std::string& instrument, std::size_t count);

    struct Notice {
        void* target;      // the interface the 3009 went to
        void* handle;      // the data object that changed
        void* subscriber;  // the widget that subscribed
        std::int32_t reference;
        int result;        // the module's answer (1 when no module is loaded)
    };
    const std::vector<Notice>& notices() const { return notices_; }
    void clearNotices() { notices_.clear(); }
    std::size_t subscriptionCount(void* handle) const;

    // ---- observers ----
    // `listener` hears of every object whose array changed (new quotes, new settings), with
    // the array, before the object's subscribers are told.
    using ChangeListener = std::function<void(const fxDataPointArray* array)>;
    void addChangeListener(ChangeListener listener) { listeners_.push_back(std::move(listener)); }
    // The object whose array is `array` (compared by address, never read); null for none.
    data::DataObject* ownerOf(const void* array) const;

private:
    data::DataObject* object(std::intptr_t handle) const;
    void addBuiltIns();
    data::Instrument* adopt(std::unique_ptr<data::Instrument> instrument, std::string* error);
    void distribute(data::Instrument& instrument, const data::Quote& quote);
    void notify(data::DataObject& object);

    int createFromRecord(coreCreateDpaData* record, std::string& detail);
    int headNode(std::intptr_t handle, coreHeadNodeInfo* info, std::string& detail);
    int subscription(std::intptr_t handle, const coreDpaSubscription* record, bool add, std::string& detail);
    int fillList(std::intptr_t handle, coreListCreateData* list, std::string& detail);
    int countArrays(std::intptr_t handle, std::int32_t* count, std::string& detail);

    Host& host_;
    std::map<std::string, std::unique_ptr<data::Instrument> > instruments_;
    std::map<void*, std::unique_ptr<data::DataObject> > objects_;
    std::map<const data::Instrument*, data::BaseSeries*> bases_;
    void* providers_[3];
    data::ChartSettings createSettings_[3];
    SettingsChooser chooser_;
    std::vector<Notice> notices_;
    std::vector<ChangeListener> listeners_;
    std::int32_t reference_ = 0;
};

}  // namespace host
