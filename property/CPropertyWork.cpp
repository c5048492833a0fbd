#include "property/CPropertyWork.h"

#include "abi/messages.h"

CPropertyWork::CPropertyWork() {}

void CPropertyWork::SetHost(HostCallback callback, void* target, void* handle, void* handle2) {
    callback_ = callback;
    target_ = target;
    hostHandle_ = handle;
    hostHandle2_ = handle2;
}

int CPropertyWork::SetPropertyMessage(int group, int index, QVariant value) {
    const int result = SetProperty(group, index, value);
    SendRefresh(result);
    return result;
}

int CPropertyWork::SendRefresh(int result) {
    if (!callback_) return 1;
    return callback_(target_, MSG_PROPERTY_REFRESH, reinterpret_cast<std::intptr_t>(GetPage()), result);
}
