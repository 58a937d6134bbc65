// What the tests by Markov chains share with the run: progress, stop requests, and the fields of the result.
#pragma once

#include "inference/formula/contingency_chain.h"
#include "input/settings.h"

namespace tov {

/// Result of a test that the user stopped.
inline constexpr double stopped_by_user = -1000.0;

/// Counts work done and shows it. @return false after a stop request.
inline bool chain_goes_on(settings& s, double work) {
    settings::inc_work_done(work);
    settings::print_message();
    return *s.is_stop() == 0;
}

/// Leaves P-value, deviation and steps. @return the P-value, or stopped_by_user (and nothing is left).
inline double keep_chain_outcome(ChainOutcome const& outcome, settings& s, long& steps_done) {
    if (outcome.stopped) return stopped_by_user;
    s.p_value = outcome.p;
    s.sd_p_value = outcome.sd;
    steps_done = outcome.steps;
    return outcome.p;
}

}  // namespace tov
