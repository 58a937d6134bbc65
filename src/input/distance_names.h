// Names of the distance methods as documents show them.
#pragma once

#include <string_view>

#include "input/profile.h"

namespace tov {

/// Name of a distance method for a data type; "Pairwise differences" for a pair that does not exist.
[[nodiscard]] std::string_view distance_method_name(TDataType type, int method);

/// Tag of the literature reference of a distance method (see References); empty when it needs none.
[[nodiscard]] std::string_view distance_method_reference(TDataType type, int method);

}  // namespace tov
