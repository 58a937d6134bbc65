// The chain of the phase sampler.
#include "inference/formula/kpv_sampler.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "base/random.h"

namespace tov {

namespace {

/// Whether the present window stays: with probability I / (I + J); without information in either, `fallback`.
bool keeps(double I, double J, bool fallback) { return I + J > 0.0 ? uniform() < I / (I + J) : fallback; }

/// 0 for left, 1 for right, -1 for neither; a draw only where both are possible.
int draw_side(bool left, bool right) {
    if (left && right) {
        return static_cast<int>(uniform() * 2.0);
    }
    return left ? 0 : right ? 1 : -1;
}

/// Score and mismatches of one chromosome against one of the individual's, over a window.
struct Match {
    double score = 0.0;
    int mismatches = 0;
    int first = 0;  ///< locus of the first mismatch
};

}  // namespace

KpvChain::KpvChain(std::vector<std::int32_t> codes, int loci, KpvParameters const& parameters)
    : loci_(loci), parameters_(parameters), codes_(std::move(codes)) {
    n_ = loci > 0 ? static_cast<int>(codes_.size() / (2 * static_cast<std::size_t>(loci))) : 0;
    swapped_.assign(static_cast<std::size_t>(n_) * loci_, 0);
    site_weight_.assign(loci_, 1.0);
    individuals_.resize(n_);
    trial_.resize(2 * static_cast<std::size_t>(loci_));
    missing_ = std::find(codes_.begin(), codes_.end(), -1) != codes_.end();
    for (int i = 0; i < n_; ++i) {
        prepare(i);
        if (individuals_[i].sites.size() >= 2) {
            ambiguous_.push_back(i);
        }
    }
}

/// Heterozygous sites and loci in use of one individual.
void KpvChain::prepare(int individual) {
    Individual& one = individuals_[individual];
    auto const g0 = chromosome(individual, 0), g1 = chromosome(individual, 1);
    auto const known = [&](int l) { return g0[l] != -1 && g1[l] != -1; };
    auto const differs = [&](int l) { return known(l) && g0[l] != g1[l]; };
    std::vector<char> use(loci_, 0);
    for (int l = 0; l < loci_; ++l) {
        if (parameters_.zone < 0) {
            use[l] = known(l);
        } else if (differs(l)) {
            int const from = std::max(0, l - parameters_.zone);
            int const to = l > loci_ - 1 - parameters_.zone ? loci_ - 1 : l + parameters_.zone;
            std::fill(use.begin() + from, use.begin() + to + 1, char{1});
        }
    }
    for (int l = 0; l < loci_; ++l) {
        if (use[l] == 0) {
            continue;
        }
        if (differs(l)) {
            Site site;
            site.locus = l;
            site.position = static_cast<int>(one.used.size());
            one.sites.push_back(site);
        }
        one.used.push_back(l);
        one.heterozygous.push_back(differs(l));
    }
    one.order.resize(one.sites.size());
}

void KpvChain::swap_alleles(int individual, int locus) noexcept {
    std::swap(codes_[row(individual, 0) + locus], codes_[row(individual, 1) + locus]);
    swapped_[static_cast<std::size_t>(individual) * loci_ + locus] ^= 1;
}

void KpvChain::randomise_phases() {
    for (int i = 0; i < n_; ++i) {
        for (int l = 0; l < loci_; ++l) {
            if (static_cast<int>(uniform() * 2.0) == 1) {
                swap_alleles(i, l);
            }
        }
    }
}

void KpvChain::step() {
    if (ambiguous_.empty()) {
        return;
    }
    int const i = ambiguous_[static_cast<std::size_t>(static_cast<double>(ambiguous_.size()) * uniform())];
    bool const recombine = parameters_.recombination > 0.0 && uniform() < parameters_.recombination;
    std::vector<int>& order = individuals_[i].order;
    for (std::size_t k = 0; k < order.size(); ++k) {
        order[k] = static_cast<int>(k);
    }
    permute(order.data(), static_cast<int>(order.size()));
    for (int const site : order) {
        visit(i, site, recombine);
    }
}

LocalSupport KpvChain::support(int individual, int start, int length, int f) const {
    return support(individual, codes_.data() + row(individual, 0), codes_.data() + row(individual, 1), start, length,
                   f);
}

LocalSupport KpvChain::support(int individual, std::int32_t const* g0, std::int32_t const* g1, int start, int length,
                               int f) const {
    int const* const used = individuals_[individual].used.data();
    int const focal = used[f];
    std::int32_t const x = g0[focal], y = g1[focal];
    double exact[4] = {}, one[4] = {};
    auto const tally = [&](int side, Match const& match) {
        if (match.mismatches == 0) {
            exact[side] += match.score / length;
        } else if (match.mismatches == 1) {
            one[side] += site_weight_[match.first] * match.score / length;
        }
    };
    std::int32_t const* chromosome_codes = codes_.data();
    for (int row_number = 0; row_number < 2 * n_; ++row_number, chromosome_codes += loci_) {
        if (row_number / 2 == individual) {
            continue;
        }
        std::int32_t const c = chromosome_codes[focal];
        bool const fits_x = c == x || c == -1, fits_y = c == y || c == -1;
        if (!fits_x && !fits_y) {
            continue;
        }
        Match m0{static_cast<double>(length), 0, 0}, m1{static_cast<double>(length), 0, 0};
        for (int p = start; p < start + length; ++p) {
            if (p == f) {
                continue;
            }
            int const l = used[p];
            std::int32_t const other = chromosome_codes[l];
            if (missing_ && (other == -1 || g0[l] == -1 || g1[l] == -1)) {
                m0.score -= other == -1 || g0[l] == -1;
                m1.score -= other == -1 || g1[l] == -1;
                if (other != -1 && g0[l] != -1 && other != g0[l] && m0.mismatches++ == 0) m0.first = l;
                if (other != -1 && g1[l] != -1 && other != g1[l] && m1.mismatches++ == 0) m1.first = l;
            } else {
                if (other != g0[l] && m0.mismatches++ == 0) m0.first = l;
                if (other != g1[l] && m1.mismatches++ == 0) m1.first = l;
            }
            if (m0.mismatches > 1 && m1.mismatches > 1) {
                break;
            }
        }
        if (c == -1) {
            m0.score -= 1.0;
            m1.score -= 1.0;
        }
        if (fits_x) {
            tally(0, m0);
            tally(1, m1);
        }
        if (fits_y) {
            tally(2, m0);
            tally(3, m1);
        }
    }
    auto const total = [&](int k) { return one[k] * parameters_.epsilon + exact[k] + parameters_.alpha; };
    return {total(0), total(1), total(2), total(3)};
}

KpvChain::Evaluation KpvChain::evaluate(int individual, std::int32_t const* g0, std::int32_t const* g1, int start,
                                        int length, int f) const {
    LocalSupport const s = support(individual, g0, g1, start, length, f);
    Evaluation e;
    e.p1 = s.a * s.d;
    e.p2 = s.b * s.c;
    e.weight = std::sqrt(s.a + s.b + s.c + s.d);
    double const large = std::max(e.p1, e.p2) + parameters_.gamma;
    double const small = std::min(e.p1, e.p2) + parameters_.gamma;
    double const ratio = small > 0.0 ? large / small : large == 0.0 ? 1.0 : 1e30;
    e.information = ratio - 1.0;
    return e;
}

KpvChain::Evaluation KpvChain::evaluate(int individual, Window const& w, int f) const {
    return evaluate(individual, codes_.data() + row(individual, 0), codes_.data() + row(individual, 1), w.start,
                    w.length, f);
}

void KpvChain::visit(int individual, int site, bool recombine) {
    Site& s = individuals_[individual].sites[site];
    Evaluation e;
    int const side = choose_window(individual, site, e);
    Window w = s.window[side];
    int const grown = grow(individual, s.position, w, e);
    shrink(individual, s.position, w, e, grown);
    if (recombine) {
        update_stretch(individual, site, w, e);
    } else {
        update_phase(individual, s.locus, e);
    }
    w.weight = e.weight;
    s.window[side] = w;
}

/// The window to work on: at the first visit the one that tells more, later one by weight. @return 0 left, 1 right.
int KpvChain::choose_window(int individual, int site, Evaluation& e) {
    std::vector<Site>& sites = individuals_[individual].sites;
    Site& s = sites[site];
    int const f = s.position;
    if (s.visited) {
        int const side = s.two && !(uniform() < s.window[0].weight / (s.window[0].weight + s.window[1].weight)) ? 1 : 0;
        e = evaluate(individual, s.window[side], f);
        return side;
    }
    s.visited = true;
    int const last = static_cast<int>(sites.size()) - 1;
    s.two = site > 0 && site < last;
    int const from = site == 0 ? f : sites[site - 1].position;
    int const to = site == 0 ? sites[1].position : f;
    s.window[0] = {from, to - from + 1, 2, 0.0};
    e = evaluate(individual, s.window[0], f);
    s.window[0].weight = e.weight;
    if (!s.two) {
        return 0;
    }
    s.window[1] = {f, sites[site + 1].position - f + 1, 2, 0.0};
    Evaluation const right = evaluate(individual, s.window[1], f);
    s.window[1].weight = right.weight;
    double const sum = e.information + right.information;
    if (uniform() < (sum > 0.0 ? e.information / sum : 0.5)) {
        return 0;
    }
    e = right;
    return 1;
}

/// @return the side that grew, -1 for none.
int KpvChain::grow(int individual, int f, Window& w, Evaluation& e) const {
    Individual const& one = individuals_[individual];
    int const m = static_cast<int>(one.used.size());
    bool left = w.start > 0, right = w.start + w.length < m;
    if (f == 0 && right && uniform() < 0.5) {
        right = false;
    }
    if (f == m - 1 && left && uniform() < 0.5) {
        left = false;
    }
    int const side = draw_side(left, right);
    if (side < 0) {
        return -1;
    }
    Window larger = w;
    ++larger.length;
    int const end = side == 0 ? --larger.start : w.start + w.length;
    Evaluation tried = evaluate(individual, larger, f);
    if (tried.weight < 1.0) {
        tried.information = 0.0;
    }
    if (keeps(e.information, tried.information, true)) {
        return -1;
    }
    larger.heterozygous += one.heterozygous[end] != 0;
    w = larger;
    e = tried;
    return side;
}

void KpvChain::shrink(int individual, int f, Window& w, Evaluation& e, int grown) const {
    Individual const& one = individuals_[individual];
    int const ends[2] = {w.start, w.start + w.length - 1};
    auto const may_go = [&](int side) {
        return ends[side] != f && grown != side && (one.heterozygous[ends[side]] == 0 || w.heterozygous > 2);
    };
    int const side = draw_side(may_go(0), may_go(1));
    if (side < 0) {
        return;
    }
    Window smaller = w;
    --smaller.length;
    smaller.start += side == 0;
    Evaluation tried = evaluate(individual, smaller, f);
    if (tried.weight < 1.0) {
        tried.information = 0.0;
    }
    if (keeps(e.information, tried.information, false)) {
        return;
    }
    smaller.heterozygous -= one.heterozygous[ends[side]] != 0;
    w = smaller;
    e = tried;
}

void KpvChain::update_phase(int individual, int locus, Evaluation const& e) {
    double const sum = e.p1 + e.p2;
    double const q = sum > 0.0 ? e.p1 / sum : 0.5;
    if (uniform() > q) {
        swap_alleles(individual, locus);
        ++accepted_;
    } else {
        ++rejected_;
    }
}

/// Exchanges everything behind a point next to the site when the exchanged copy is the better supported one.
void KpvChain::update_stretch(int individual, int site, Window const& w, Evaluation const& e) {
    std::vector<Site> const& sites = individuals_[individual].sites;
    int const locus = sites[site].locus;
    int from = locus + 1;
    if (site != 0) {
        from = site == static_cast<int>(sites.size()) - 1 || uniform() < 0.5 ? locus : locus + 1;
    }
    auto const g0 = chromosome(individual, 0), g1 = chromosome(individual, 1);
    std::int32_t* const t0 = trial_.data();
    std::int32_t* const t1 = trial_.data() + loci_;
    for (int l = 0; l < loci_; ++l) {
        t0[l] = l < from ? g0[l] : g1[l];
        t1[l] = l < from ? g1[l] : g0[l];
    }
    Evaluation const exchanged = evaluate(individual, t0, t1, w.start, w.length, sites[site].position);
    double const sum = e.p1 + exchanged.p1;
    double const q = sum > 0.0 ? e.p1 / sum : 0.5;
    if (uniform() > q) {
        for (int l = from; l < loci_; ++l) {
            swap_alleles(individual, l);
        }
        ++accepted_;
    } else {
        ++rejected_;
    }
}

}  // namespace tov
