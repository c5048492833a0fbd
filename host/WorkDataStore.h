// The emulated terminal's work-data store: XML documents and nodes by handle (3163-3170, 3012).
#pragma once

#include <string>

#include "host/Host.h"

namespace host {

struct EmulatorOptions;

class WorkDataStore {
public:
    explicit WorkDataStore(Host& host);

private:
    Host& host_;
};

}  // namespace host
