/// Gametic phase of individuals by a pseudo-Gibbs chain with windows that adapt around each heterozygous site.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace tov {

struct KpvParameters {
    int zone = 5;                ///< loci used around each heterozygous site; 0: these sites alone, < 0: all loci
    double alpha = 0.01;         ///< added to every count: weight of the prior
    double epsilon = 0.01;       ///< weight of haplotypes that differ at one site
    double gamma = 0.0;          ///< added to both phases in the ratio that steers the windows
    double recombination = 0.0;  ///< share of steps that exchange whole stretches
};

/// Support of the four local haplotypes of an individual: the first chromosome's other sites with either allele of the
/// focal site, and the second's.
struct LocalSupport {
    double a = 0.0, b = 0.0, c = 0.0, d = 0.0;
};

/// The chain. Individuals are pairs of rows of allele codes (sizes for microsatellites), -1 for missing data.
///
/// Source: of the windows and their growth, the pseudo-Gibbs idea of Stephens, Smith & Donnelly 2001, Am. J. Hum.
/// Genet. 68: 978-989. Everything lies in contiguous arrays; a step allocates nothing.
class KpvChain {
public:
    /// @param codes  2 n rows of `loci` codes: both chromosomes of the first individual, then of the second, ...
    KpvChain(std::vector<std::int32_t> codes, int loci, KpvParameters const& parameters);

    /// Random phase at every locus of every individual, ambiguous or not. Draws: one a locus and individual.
    void randomise_phases();
    /// One step on an ambiguous individual; nothing when there is none.
    /// Draws: the individual; whether to recombine (only when that share is positive); a permutation of its sites; then
    /// per site the choice of a window, its growth, its shrinking and the update.
    void step();

    [[nodiscard]] int individuals() const noexcept { return n_; }
    [[nodiscard]] int loci() const noexcept { return loci_; }
    [[nodiscard]] std::vector<int> const& ambiguous() const noexcept { return ambiguous_; }
    [[nodiscard]] std::span<std::int32_t const> chromosome(int individual, int which) const noexcept {
        return {codes_.data() + row(individual, which), static_cast<std::size_t>(loci_)};
    }
    /// Whether the individual's two alleles at a locus have changed places since construction.
    [[nodiscard]] bool swapped(int individual, int locus) const noexcept {
        return swapped_[static_cast<std::size_t>(individual) * loci_ + locus] != 0;
    }
    [[nodiscard]] long accepted() const noexcept { return accepted_; }
    [[nodiscard]] long rejected() const noexcept { return rejected_; }
    void reset_counters() noexcept { accepted_ = rejected_ = 0; }

    /// Support over the window of `length` used loci from position `start`, focal position f.
    [[nodiscard]] LocalSupport support(int individual, int start, int length, int f) const;

private:
    struct Window {
        int start = 0, length = 0, heterozygous = 0;
        double weight = 0.0;
    };
    /// Windows of one heterozygous site; the outermost sites have the left one alone.
    struct Site {
        int locus = 0;
        int position = 0;  ///< among the individual's used loci
        bool visited = false;
        bool two = false;
        Window window[2];
    };
    struct Individual {
        std::vector<int> used;            ///< loci in use, ascending
        std::vector<char> heterozygous;   ///< one flag a used locus
        std::vector<Site> sites;          ///< heterozygous sites, ascending
        std::vector<int> order;           ///< work space of the permutation
    };
    struct Evaluation {
        double p1 = 0.0, p2 = 0.0, weight = 0.0, information = 0.0;
    };

    [[nodiscard]] std::size_t row(int individual, int which) const noexcept {
        return (2 * static_cast<std::size_t>(individual) + static_cast<std::size_t>(which)) * loci_;
    }
    void prepare(int individual);
    [[nodiscard]] LocalSupport support(int individual, std::int32_t const* g0, std::int32_t const* g1, int start,
                                       int length, int f) const;
    [[nodiscard]] Evaluation evaluate(int individual, std::int32_t const* g0, std::int32_t const* g1, int start,
                                      int length, int f) const;
    [[nodiscard]] Evaluation evaluate(int individual, Window const& w, int f) const;
    void visit(int individual, int site, bool recombine);
    int choose_window(int individual, int site, Evaluation& e);
    int grow(int individual, int f, Window& w, Evaluation& e) const;
    void shrink(int individual, int f, Window& w, Evaluation& e, int grown) const;
    void update_phase(int individual, int locus, Evaluation const& e);
    void update_stretch(int individual, int site, Window const& w, Evaluation const& e);
    void swap_alleles(int individual, int locus) noexcept;

    int n_ = 0;
    int loci_ = 0;
    KpvParameters parameters_;
    bool missing_ = false;
    std::vector<std::int32_t> codes_;
    std::vector<std::uint8_t> swapped_;
    std::vector<double> site_weight_;
    std::vector<Individual> individuals_;
    std::vector<int> ambiguous_;
    std::vector<std::int32_t> trial_;  ///< two chromosomes, of a recombination
    long accepted_ = 0;
    long rejected_ = 0;
};

}  // namespace tov
