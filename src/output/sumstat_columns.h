// The columns of the table of chosen statistics.
#pragma once

#include <vector>

#include "output/sumstat.h"

namespace tov {

/// Titles with their values, in the order of the table: one walk makes both, so that they always agree.
[[nodiscard]] std::vector<SumStatColumn> sum_stat_columns(TSumStat const& wanted, SumStatSource const& source);

}  // namespace tov
