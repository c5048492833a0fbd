// The text form of chart-type records, as `pfhost records` prints them: one line per
// column, brick or stroke with time (UNIX seconds), STEP, VALUE, TYPE, END and SOLID
// separated by blanks, prices with a fixed number of decimals.
#pragma once

#include <string>

#include "abi/records/dpa_records.h"

namespace host {
namespace data {

std::string recordLine(const fxChartTypeRecord& record, int decimals);

}  // namespace data
}  // namespace host
