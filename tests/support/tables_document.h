/// docs/tables.md, written from the descriptions of the tables.
#pragma once

#include <string>

namespace tov::test {

/// The whole document.
[[nodiscard]] std::string tables_document();

}  // namespace tov::test
