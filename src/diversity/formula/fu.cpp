// Fu's Fs.
#include "diversity/formula/fu.h"

#include <cmath>

#include "diversity/formula/theta.h"

namespace tov {

FuFs fu_fs(double theta, double p_fewer) noexcept {
    if (theta <= 0.0) return {FuStatus::no_diversity, theta_infinite, 0.0};
    double const S = 1.0 - p_fewer;
    if (S > 0.0 && S < 1.0) return {FuStatus::finite, std::log(S / (1.0 - S)), S};
    if (S == 0.0) return {FuStatus::smallest, -theta_infinite, S};
    if (S == 1.0) return {FuStatus::largest, theta_infinite, S};
    return {FuStatus::no_probability, 0.0, S};
}

}  // namespace tov
