// Relative mutation rates of sites.
#include "simulation/mutation.h"

#include <algorithm>

#include "base/random.h"

namespace tov {

namespace {

/// Truncation of sites * fraction, and one more, within 0 .. sites.
int count_of_first_rate(int sites, double fraction) noexcept {
    double const x = sites * fraction;
    if (!(x > -1.0)) return 0;
    return x >= sites ? sites : std::min(sites, static_cast<int>(x) + 1);
}

}  // namespace

void GammaRates::build(int sites, double const& a, double const& first_rate, double const& first_fraction) {
    built_ = true;
    a_ = a;
    first_rate_ = first_rate;
    num_first_rate_ = count_of_first_rate(sites, first_fraction);
    rates_.resize(static_cast<std::size_t>(std::max(0, sites)));
    double sum = 0.0;
    int site = 0;
    for (double& rate : rates_) {
        rate = a > 0.0 ? gamma_dev(a) : site < num_first_rate_ ? first_rate : 1.0;
        sum += rate;
        ++site;
    }
    for (double& rate : rates_) rate /= sum;

    auto const add_up = [](auto first, auto last, std::vector<double>& sums) {
        sums.clear();
        double running = 0.0;
        for (; first != last; ++first) sums.push_back(running += *first);
    };
    add_up(rates_.begin(), rates_.end(), sums_up_);
    add_up(rates_.rbegin(), rates_.rend(), sums_down_);
}

void GammaRates::get_new_rates(int sites, double const& a, double const& first_rate, double const& first_fraction) {
    build(sites, a, first_rate, first_fraction);
}

int GammaRates::site_from_below(double u) const noexcept {
    auto const hit = std::upper_bound(sums_up_.begin(), sums_up_.end(), u);
    return static_cast<int>(hit == sums_up_.end() ? hit - sums_up_.begin() - 1 : hit - sums_up_.begin());
}

int GammaRates::site_from_above(double u) const noexcept {
    auto const hit = std::upper_bound(sums_down_.begin(), sums_down_.end(), u);
    int const steps =
        static_cast<int>(hit == sums_down_.end() ? hit - sums_down_.begin() - 1 : hit - sums_down_.begin());
    return num_sites() - 1 - steps;
}

}  // namespace tov
