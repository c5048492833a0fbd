// The property page a chart window hands to the terminal's dialog: a CPropertyHead that
// also knows how to reach the host, so that values the module changes while the dialog is
// open are shown there at once (10053).
#pragma once

#include "abi/PFChartModuleAbi.h"
#include "property/CPropertyHead.h"

class CPropertyWork : public CPropertyHead {
public:
    CPropertyWork();

    // The host context: the callback, the target its messages go to, and the two handles.
    void SetHost(HostCallback callback, void* target, void* handle, void* handle2);
    HostCallback GetCallback() const { return callback_; }
    void* GetTarget() const { return target_; }
    void* GetHostHandle() const { return hostHandle_; }
    void* GetHostHandle2() const { return hostHandle2_; }

    // The object whose properties the page shows.
    void setObject(void* object) { object_ = object; }
    void* getObject() const { return object_; }

    // Stores `value` into the entry and tells the host (10053 with the page and the result
    // of the store: 0 stored, 1 no such entry). Returns that result; wrappers may throw.
    int SetPropertyMessage(int group, int index, QVariant value);
    // 10053 for the whole page with `result`; the host's answer, 1 without a callback.
    int SendRefresh(int result);

private:
    HostCallback callback_ = nullptr;
    void* target_ = nullptr;
    void* hostHandle_ = nullptr;
    void* hostHandle2_ = nullptr;
    void* object_ = nullptr;
};
