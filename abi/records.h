// Every packed record exchanged between the terminal and the module.
// Both the module and the host emulator include this header.
#pragma once

#include "abi/records/layout.h"
#include "abi/records/module_records.h"
#include "abi/records/interface_records.h"
#include "abi/records/dpa_records.h"
#include "abi/records/workdata_records.h"
#include "abi/records/dealing_records.h"
#include "abi/records/undo_records.h"
#include "abi/records/linestudy_records.h"
#include "abi/records/property_records.h"
#include "abi/messages.h"
