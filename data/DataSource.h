// The module's handle on one computed data object of the host's data core: the columns,
// bricks or strokes that a chart-type provider computed for an instrument and period.
//
// The static operations ask the host to create such an object (3008) and subscribe a chart
// widget to its updates (3013, 3014). A DataSource then keeps the object's current list of
// data point arrays, fetched at construction and again at every update (3043, 3042). The
// arrays belong to the host: their pointers are valid until the next update and are never
// freed here.
//
// Every request goes through the module's host callback. Without a module or a callback a
// request is not sent and the operation gives its neutral result: Create 0, Subscribe and
// Unsubscribe -1, UpdateData 0 with nothing changed.
//
// The chart widget that owns a data source is kept only as the subscriber pointer the host
// reports updates for; the module, whose callback the requests use, is given explicitly.
#pragma once

#include <QString>
#include <cstdint>
#include <vector>

#include "abi/records/dpa_records.h"

class CModule;
class PFChartWidget;

namespace pf {

class DataSource {
public:
    // A host that reports more arrays than this for one object is refused at the update.
    static constexpr std::int32_t kMaxArrays = 1 << 16;

    // Sends the create record (806 bytes on the terminal) with 3008 and returns the handle the
    // host wrote into it; 0 without a callback. `name` is copied up to its terminator (a name
    // longer than the field is cut), `text` with at most 254 characters, then the period;
    // `node` may be null.
    static void* Create(CModule* module, void* provider, const unsigned short* name,
                        const char* text, namePeriod period, int value, coreSzNode* node);
    // 3013 / 3014 with `handle` and the subscription {first, subscriber}; the host's answer,
    // -1 without a callback.
    static int Subscribe(CModule* module, void* first, void* subscriber, void* handle);
    static int Unsubscribe(CModule* module, void* first, void* subscriber, void* handle);

    // Keeps the handles and the instrument's name and fetches a first array at once (3042
    // with a list of one).
    DataSource(CModule* module, PFChartWidget* widget, void* handle,
               const coreNameInstrument& name, void* baseHandle);
    DataSource(const DataSource&) = delete;
    DataSource& operator=(const DataSource&) = delete;

    // New data for the object: asks how many arrays there are (3043), fetches them (3042),
    // keeps the update's reference and takes over the base series' names. Returns the
    // status, 0. A count of 0 or less, or above kMaxArrays, keeps the previous list.
    int UpdateData(const coreCoreUpdateDpaData* update);

    // The UTF-16 name of the list's first array; empty when there is none.
    QString GetName() const;
    // The UTF-16 name of the stored instrument (the base series' name after an update).
    QString GetBaseName() const;

    CModule* GetModule() const { return module_; }
    PFChartWidget* GetWidget() const { return widget_; }
    void* GetHandle() const { return handle_; }
    void* GetBaseHandle() const { return baseHandle_; }
    const coreListCreateData& GetList() const { return list_; }
    // Array `index` of the list; null when out of range.
    fxDataPointArray* GetArray(int index) const;
    std::int32_t GetReference() const { return reference_; }
    std::int32_t GetStatus() const { return status_; }
    const coreNameInstrument& GetInstrument() const { return name_; }

private:
    void FetchList();

    CModule* module_;
    PFChartWidget* widget_;
    void* handle_;
    void* baseHandle_;
    coreListCreateData list_;
    std::vector<fxDataPointArray*> arrays_;
    std::int32_t reference_ = 0;
    std::int32_t status_ = 0;
    coreNameInstrument name_;
};

}  // namespace pf
