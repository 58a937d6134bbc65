/// Many tests in one process: each as if it ran alone, and with the log, the document and the console caught as text.
#pragma once

#include <functional>
#include <iostream>
#include <memory>
#include <ostream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "base/random.h"
#include "base/special.h"
#include "run/errors.h"
#include "run/run_state.h"

namespace tov::test {

/// For its lifetime the process-wide state is that of a process whose first project has just opened its log; afterwards
/// everything is as it was before.
///
/// A further global is covered by one line in the constructor: `keep(the_global);`, or in a test: `fresh.keep(...)`.
class FreshProcess {
public:
    /// @param seed  as for a project: the generator is seeded with -seed and its first number is spent; 0 leaves it
    ///              unseeded.
    explicit FreshProcess(long seed = 1) {
        keep(random_state);
        keep(factorial_caches);
        keep(E.counters);
        keep(E.log_name);
        keep(E.ofs);
        keep(E.results);
        keep(E.active, 1);
        keep(Errors::ErrorProc);
        keep<std::ostream*>(_AOS_, &log_);
        keep(proj_file);
        keep(set_file);
        keep(run_file);
        keep(ToveniaExeDirectory);
        keep(silentTovenia);
        keep(numSamplesAnalysed);
        std::streambuf* const console = std::cout.rdbuf(console_.rdbuf());
        restore_.emplace_back([console] { std::cout.rdbuf(console); });
        if (seed != 0) reseed(seed);
    }
    ~FreshProcess() {
        while (!restore_.empty()) {
            restore_.back()();
            restore_.pop_back();
        }
    }
    FreshProcess(FreshProcess const&) = delete;
    FreshProcess& operator=(FreshProcess const&) = delete;

    /// Puts `fresh` into `object` and the old value back at the end.
    template <class T>
    void keep(T& object, T fresh = T()) {
        auto saved = std::make_shared<T>(std::exchange(object, std::move(fresh)));
        restore_.emplace_back([saved, &object] { object = std::move(*saved); });
    }

    /// The start of a project's sequence: number 1 of the seed is spent.
    void reseed(long seed = 1) {
        long idum = -seed;
        ran3(&idum);
    }

    /// Text written to `_AOS_` since the start or the last clear_log.
    [[nodiscard]] std::string log() const { return log_.str(); }
    void clear_log() { log_.str(""); }
    /// Text written to standard output.
    [[nodiscard]] std::string console() const { return console_.str(); }
    /// A stream to write a document to; from the first call on it gets the reports too.
    std::ostream& document_stream() {
        E.results = &document_;
        return document_;
    }
    [[nodiscard]] std::string document() const { return document_.str(); }

private:
    std::ostringstream log_;
    std::ostringstream console_;
    std::ostringstream document_;
    std::vector<std::function<void()>> restore_;
};

/// Numbers drawn from `before` until the generator stood where it stands now, up to `limit`; limit if it never did.
///
/// Counts the draws that an operation spent: copy random_state.ran3 before it, call this after it.
inline long draws_since(Ran3State before, long limit = 10000000) {
    Ran3State const& now = random_state.ran3;
    for (long draws = 0; draws < limit; ++draws) {
        if (before.inext == now.inext && before.ma == now.ma) return draws;
        before.draw();
    }
    return limit;
}

}  // namespace tov::test
