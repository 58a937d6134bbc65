/// Number of allocations of a test program.
#pragma once

namespace tov::test {

/// Calls of operator new since the program began. A program that names this function has operators that count.
long allocations() noexcept;

}  // namespace tov::test
