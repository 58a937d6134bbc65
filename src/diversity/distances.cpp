// Matrices of distances between the distinct haplotypes of a sample, one way for each data type.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <span>
#include <string_view>
#include <variant>
#include <vector>

#include "diversity/formula/allele_codes.h"
#include "diversity/formula/site_planes.h"
#include "diversity/popdna.h"
#include "diversity/popmic.h"
#include "diversity/poprflp.h"
#include "diversity/popsta.h"
#include "input/settings.h"
#include "run/errors.h"

namespace tov {

// --- What the four matrices share ---

bool PopGenetics::begin_distance_matrix(char const* function) {
    dist_mat_complete_ = false;
    max_mismatch_ = 0;
    int const n = nb_haplotypes();
    if (n == 0) {
        E.error(ErrorType::Error, function, 108);
        return false;
    }
    dist_mat_ = std::make_unique<RectMat>(n, n);
    return true;
}

void PopGenetics::raise_largest_distance(double d) {
    constexpr double largest_int = std::numeric_limits<int>::max();
    if (max_mismatch_ < d) {
        max_mismatch_ = static_cast<int>(std::min(d, largest_int));
    }
}

bool PopGenetics::go_on(settings const& s) {
    settings::print_message();
    return *s.is_stop() == 0;
}

namespace {

/// Loci of a sample that enter its distances: those with a flag in use_site.
std::vector<int> usable_loci(PopGenetics const& sample) {
    std::vector<int> loci;
    std::vector<int> const& flags = sample.use_site();
    for (std::size_t i = 0; i < flags.size(); ++i) {
        if (flags[i] != 0) {
            loci.push_back(static_cast<int>(i));
        }
    }
    return loci;
}

/// Allele codes of the usable loci: rank + 1, 0 for missing data.
template <class Code>
AlleleCodes<Code> allele_codes(PopGenetics const& sample, std::vector<int> const& loci) {
    auto const n = static_cast<std::size_t>(sample.nb_haplotypes());
    AlleleCodes<Code> codes(n, loci.size());
    for (std::size_t i = 0; i < n; ++i) {
        PHaploDef const& entry = sample.haplotype(static_cast<int>(i));
        std::span<Code> const row = codes.row(i);
        for (std::size_t k = 0; k < loci.size(); ++k) {
            TAllele const* const allele = entry[loci[k]];
            row[k] = is_missing(allele, sample.profile.MissingData) ? Code{0} : static_cast<Code>(allele->rank() + 1);
        }
    }
    return codes;
}

/// Codes of allele sizes: their rank among the distinct ones + 1, 0 for missing data.
template <class Code>
AlleleCodes<Code> size_codes(std::vector<double> const& sizes, std::size_t loci, std::vector<double> const& distinct) {
    std::size_t const n = loci > 0 ? sizes.size() / loci : 0;
    AlleleCodes<Code> codes(n, loci);
    for (std::size_t i = 0; i < n; ++i) {
        for (std::size_t k = 0; k < loci; ++k) {
            double const x = sizes[i * loci + k];
            if (!std::isnan(x)) {
                codes.row(i)[k] =
                    static_cast<Code>(std::lower_bound(distinct.begin(), distinct.end(), x) - distinct.begin() + 1);
            }
        }
    }
    return codes;
}

int largest_rank(PopGenetics const& sample, std::vector<int> const& loci) {
    int largest = 0;
    for (int i = 0; i < sample.nb_haplotypes(); ++i) {
        for (int const locus : loci) {
            TAllele const* const allele = sample.haplotype(i)[locus];
            largest = std::max(largest, allele ? allele->rank() : 0);
        }
    }
    return largest;
}

/// Fills row i of the lower triangle with the number of loci that differ.
class DifferentLoci {
public:
    /// By alleles, over the usable loci.
    explicit DifferentLoci(PopGenetics const& sample) : codes_(of_alleles(sample)) {}
    /// By allele sizes, `loci` of them a row; a size that is not a number is missing.
    DifferentLoci(std::vector<double> const& sizes, std::size_t loci) : codes_(of_sizes(sizes, loci)) {}

    void fill_row(std::size_t i, std::span<double> row) const {
        std::visit(
            [&](auto const& codes) {
                for (std::size_t j = 0; j < i; ++j) {
                    row[j] = count_different_loci(codes.row(i), codes.row(j));
                }
            },
            codes_);
    }

private:
    using Codes = std::variant<AlleleCodes<std::uint8_t>, AlleleCodes<std::uint32_t>>;

    static Codes of_alleles(PopGenetics const& sample) {
        std::vector<int> const loci = usable_loci(sample);
        if (largest_rank(sample, loci) < 255) {
            return allele_codes<std::uint8_t>(sample, loci);
        }
        return allele_codes<std::uint32_t>(sample, loci);
    }
    static Codes of_sizes(std::vector<double> const& sizes, std::size_t loci) {
        std::vector<double> distinct;
        for (double const x : sizes) {
            if (!std::isnan(x)) {
                distinct.push_back(x);
            }
        }
        std::sort(distinct.begin(), distinct.end());
        distinct.erase(std::unique(distinct.begin(), distinct.end()), distinct.end());
        if (distinct.size() < 255) {
            return size_codes<std::uint8_t>(sizes, loci, distinct);
        }
        return size_codes<std::uint32_t>(sizes, loci, distinct);
    }

    Codes codes_;
};

}  // namespace

// --- DNA ---

int PopulDNA::compute_distance_matrix(std::ostream* out, settings* s, int scale) {
    double const factor = scale != 0 && distance_method_ != DIFF ? nb_usable_loci_ : 1.0;
    if (!begin_distance_matrix("PopulDNA::compute_distance_matrix(ofstream)")) {
        return 0;
    }
    NucleotideMethod method{distance_method_, weights_, gamma_a_, {}};
    if (distance_method_ >= TAJIMA_NEI && distance_method_ <= TAMURA_NEI) {
        comp_nucl_freq();
        method.frequencies = frequencies_;
    }
    if (has_contents()) {
        std::vector<std::string_view> const contents = haplotype_contents();
        NucleotidePlanes const planes(contents, use_site_, profile.MissingData);
        std::vector<double> variances(contents.size());
        for (std::size_t i = 0; i < contents.size(); ++i) {
            std::span<double> const row = dist_mat_->row(static_cast<int>(i));
            RowResult const result = nucleotide_distance_row(planes, i, method, row, variances);
            if (result.status != DistanceStatus::ok) {
                report_failure(result.status);
                E.error(ErrorType::Error, "PopulDNA::compute_distance_matrix(ofstream)", 136);
                return 0;
            }
            for (std::size_t j = 0; j < i; ++j) {
                row[j] *= factor;
                raise_largest_distance(row[j]);
                double const v = variances[j];
                dist_mat_->row(static_cast<int>(j))[i] = (v >= 0.0 ? std::sqrt(v) : 0.0) * factor;
            }
            if (!go_on(*s)) {
                return 0;
            }
        }
    }
    return finish_distance_matrix(out);
}

// --- RFLP ---

int PopulRFLP::compute_distance_matrix(std::ostream* out, settings* s, int scale) {
    bool const proportion = rflp_distance_method_ == RFLP_P_DIST;
    double const factor = scale != 0 && rflp_distance_method_ != RFLP_DIFF ? nb_usable_loci_ : 1.0;
    if (!begin_distance_matrix("PopulRFLP::compute_distance_matrix(ofstream)")) {
        return 0;
    }
    if (has_contents()) {
        std::vector<std::string_view> const contents = haplotype_contents();
        if (nb_usable_loci_ == 0 && contents.size() > 1) {
            E.error(ErrorType::Error, "PopulRFLP::compute_distance_matrix(ofstream)", 136);
            return 0;
        }
        RflpRows const rows(contents, use_site_, profile.MissingData);
        for (std::size_t i = 0; i < contents.size(); ++i) {
            std::span<double> const row = dist_mat_->row(static_cast<int>(i));
            for (std::size_t j = 0; j < i; ++j) {
                RflpCounts const counts = rows.compare(i, j);
                PairDistance const d =
                    proportion ? rflp_proportion(counts, deletion_weight_) : rflp_difference(counts, deletion_weight_);
                row[j] = d.distance * factor;
                raise_largest_distance(row[j]);
                dist_mat_->row(static_cast<int>(j))[i] = std::sqrt(d.variance) * factor;
            }
            if (!go_on(*s)) {
                return 0;
            }
        }
    }
    return finish_distance_matrix(out);
}

// --- Microsatellites ---

int PopulMicrosat::parse_sizes(std::vector<double>& sizes, std::vector<int> const& loci) const {
    constexpr double missing = std::numeric_limits<double>::quiet_NaN();
    sizes.clear();
    sizes.reserve(static_cast<std::size_t>(nb_haplotypes()) * loci.size());
    for (int i = 0; i < nb_haplotypes(); ++i) {
        PHaploDef const& entry = haplotype(i);
        for (int const locus : loci) {
            TAllele const* const allele = entry[locus];
            if (is_missing(allele, profile.MissingData)) {
                sizes.push_back(missing);
                continue;
            }
            double const size = std::atof(allele->name().c_str());
            if (!std::isfinite(size)) {
                E.error(ErrorType::Error, "PopulMicrosat::compute_distance_matrix(ofstream)", 121);
                return 0;
            }
            sizes.push_back(size);
        }
    }
    return 1;
}

int PopulMicrosat::compute_distance_matrix(std::ostream* out, settings* s, int) {
    if (!begin_distance_matrix("PopulMicrosat::compute_distance_matrix(ofstream)")) {
        return 0;
    }
    *_AOS_ << "\t\tBeginning distance computations ...\n";
    std::clock_t const start = std::clock();
    std::vector<int> const loci = usable_loci(*this);
    std::vector<double> sizes;
    if (parse_sizes(sizes, loci) == 0) {
        return 0;
    }
    DifferentLoci const differences(sizes, distance_method_ == 0 ? loci.size() : 0);
    auto sizes_of = [&](std::size_t i) { return std::span<double const>(sizes).subspan(i * loci.size(), loci.size()); };
    for (std::size_t i = 0; i < static_cast<std::size_t>(nb_haplotypes()); ++i) {
        std::span<double> const row = dist_mat_->row(static_cast<int>(i));
        if (distance_method_ == 0 && !loci.empty()) {
            differences.fill_row(i, row);
        }
        for (std::size_t j = 0; j < i; ++j) {
            if (distance_method_ != 0) {
                row[j] = sum_of_squared_differences(sizes_of(i), sizes_of(j));
            }
            raise_largest_distance(row[j]);
        }
        if (!go_on(*s)) {
            return 0;
        }
    }
    // kept on purpose: clock ticks under the name of milliseconds
    *_AOS_ << "\t\tdone ! (" << std::clock() - start << " ms)\n";
    return finish_distance_matrix(out);
}

// --- Standard data ---

int PopulStandard::compute_distance_matrix(std::ostream* out, settings* s, int) {
    if (!begin_distance_matrix("PopulStandard::compute_distance_matrix(ofstream)")) {
        return 0;
    }
    *_AOS_ << "\t\tBeginning distance computations ...\n";
    std::clock_t const start = std::clock();
    DifferentLoci const differences(*this);
    for (int i = 0; i < nb_haplotypes(); ++i) {
        std::span<double> const row = dist_mat_->row(i);
        differences.fill_row(static_cast<std::size_t>(i), row);
        for (int j = 0; j < i; ++j) {
            raise_largest_distance(row[static_cast<std::size_t>(j)]);
        }
        if (!go_on(*s)) {
            return 0;
        }
    }
    *_AOS_ << "\t\tdone ! (" << std::clock() - start << " ms)\n";  // kept on purpose, as above
    return finish_distance_matrix(out);
}

// --- Conventional F-statistics, haplotypes that differ ---

void PopGenetics::compute_dist_mat_for_conventional_FST(std::ostream&, settings const&) {
    int const n = nb_haplotypes();
    dist_mat_ = std::make_unique<RectMat>(n, n);
    max_mismatch_ = n > 1 ? 1 : 0;
    if (profile.DataType == STANDARD || profile.DataType == MICROSAT) {
        DifferentLoci const differences(*this);
        for (int i = 0; i < n; ++i) {
            std::span<double> const row = dist_mat_->row(i);
            differences.fill_row(static_cast<std::size_t>(i), row);
            for (int j = 0; j < i; ++j) {
                dist_mat_->row(j)[static_cast<std::size_t>(i)] = row[static_cast<std::size_t>(j)];
            }
        }
    }
    dist_mat_->set_conventional_fst(1);
    dist_mat_complete_ = true;
}

void PopGenetics::check_hapl_freqs(RectMat const& distances, MY_TISArrayAsVector<AHaplFreq>& target) const {
    int const n = std::min(nb_haplotypes(), distances.dimension());
    std::vector<char> merged(static_cast<std::size_t>(n), 0);
    for (int i = 0; i < n; ++i) {
        if (merged[static_cast<std::size_t>(i)] != 0) {
            continue;
        }
        int sum = haplotype(i).copies;
        for (int j = i + 1; j < n; ++j) {
            char& done = merged[static_cast<std::size_t>(j)];
            if (done == 0 && distances(j, i) == 0.0) {
                done = 1;
                sum += haplotype(j).copies;
            }
        }
        target.Add(new AHaplFreq(sum));
    }
}

}  // namespace tov
