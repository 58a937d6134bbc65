// The mismatch distribution of a sample, and the estimates of expansions from it.
#include <ostream>

#include "base/recmat.h"
#include "demography/expdem.h"
#include "demography/formula/mismatch_model.h"
#include "demography/spatialexp.h"
#include "diversity/popgen.h"
#include "input/settings.h"
#include "run/errors.h"

namespace tov {

namespace {

/// Largest distance with a distribution: beyond it the classes alone would fill the memory. Only weights or allele
/// sizes of millions get there.
constexpr int largest_class = 5000000;

}  // namespace

int PopGenetics::compute_mm_distr(std::ostream&, settings&) {
    mismatch_.clear();
    exp_mismatch_.clear();
    exp_max_mismatch_ = 0;
    mismatch_mean_ = mismatch_variance_ = mismatch_tau_ = mismatch_theta_ = 0.0;
    if (max_mismatch_ > largest_class) {
        *_AOS_ << "\t\tdistances of " << max_mismatch_ << " have no mismatch distribution\n";
        max_mismatch_ = 0;
    }
    if (max_mismatch_ == 0) {
        return 1;
    }
    if (nb_haplotypes() == 0) {
        E.error(ErrorType::Error, "PopGenetics::compute_mm_distr()", 108);
        return 0;
    }
    std::size_t const classes = 2 * static_cast<std::size_t>(max_mismatch_) + 1;
    mismatch_.assign(classes, 0);
    if (dist_mat_ != nullptr && haplotype(0).haplotype != nullptr && !haplotype(0).haplotype->content.is_null()) {
        auto const count = [&](double distance, std::int64_t pairs) {
            auto const at = static_cast<std::size_t>(distance > 0.0 ? distance : 0.0);
            if (at < classes) {
                mismatch_[at] += pairs;
            }
        };
        for (int i = 0; i < nb_haplotypes(); ++i) {
            std::int64_t const f = haplotype(i).copies;
            for (int j = 0; j < i; ++j) {
                count((*dist_mat_)(i, j), f * haplotype(j).copies);
            }
            count((*dist_mat_)(i, i), (f - 1) * f / 2);
        }
    } else {
        E.error(ErrorType::Error, "PopGenetics::compute_mm_distr(ofstream ofs)", 122);
    }
    MismatchMoments const m =
        mismatch_moments(std::span<std::int64_t const>(mismatch_).first(static_cast<std::size_t>(max_mismatch_) + 1));
    mismatch_mean_ = m.mean;
    mismatch_variance_ = m.variance;
    mismatch_theta_ = m.theta;
    mismatch_tau_ = m.tau;
    mismatch_raggedness_ = m.raggedness;
    MismatchReference reference = mismatch_reference(m, static_cast<int>(classes));
    MismatchFit const fit = mismatch_fit(mismatch_, reference);
    exp_max_mismatch_ = reference.last_class;
    exp_mismatch_ = std::move(reference.counts);
    mismatch_chi2_ = fit.chi_square;
    mismatch_df_ = fit.df;
    mismatch_p_chi2_ = fit.p;
    return 1;
}

void PopGenetics::est_demog_mis(settings* s, std::ostream& out) {
    ann_missmatch(*this, *s).solve_least_square(out);
}

/// 3: one deme size; 4: two; 2: both, two first. Any other number prints nothing.
void PopGenetics::est_spatial_mis(settings* s, std::ostream& out) {
    int const parameters = s->MismatchSpatialExpNumParams;
    if (parameters == 4 || parameters == 2) {
        mismatchSpatialExpansion(*this, *s, ExpansionModel::spatial_4p).solve_least_square(out);
        spatial_two_sizes_fit_ = spatial_fit_;
    }
    if (parameters == 3 || parameters == 2) {
        mismatchSpatialExpansion(*this, *s, ExpansionModel::spatial_3p).solve_least_square(out);
        spatial_one_size_fit_ = spatial_fit_;
    }
}

}  // namespace tov
