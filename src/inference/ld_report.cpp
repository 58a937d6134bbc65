// Text of the tests of linkage disequilibrium and of its coefficients.
#include "inference/ld_report.h"

#include <algorithm>
#include <ostream>

#include "base/special.h"
#include "base/trimat.h"
#include "input/settings.h"
#include "output/escape.h"
#include "output/style.h"
#include "output/table.h"

namespace tov {

namespace {

constexpr int decimals = 5;
constexpr int cell_width = decimals + 5;

std::vector<std::string> locus_labels(std::span<int const> loci) {
    std::vector<std::string> labels;
    for (int const locus : loci) labels.push_back(std::to_string(locus));
    return labels;
}

int widest(std::span<std::string const> labels) {
    int width = 0;
    for (std::string const& text : labels) width = std::max(width, shown_length(text));
    return width;
}

}  // namespace

// --- Tests of pairs ---

void print_ld_title(std::ostream& out) {
    out << "Test of linkage disequilibrium for all pairs of loci:\n"
        << "-----------------------------------------------------\n\n";
}

void print_ld_chain_lengths(std::ostream& out, long steps, long burn_in) {
    out << "Exact test using a Markov chain :"
        << "\nChain length     :" << steps << "\nDememorization   :" << burn_in
        << "\nNote: The test is only performed for polymorphic pairs of loci"
        << "\n\n";
}

namespace {

void print_p(std::ostream& out, LinkedPair const& pair, char const* what) {
    out << num{pair.p, 8, decimals} << "  +-  " << num{pair.sd, 10, decimals} << " (" << pair.steps << what;
}

}  // namespace

void print_ld_pair(std::ostream& out, LinkedPair const& pair) {
    out << "Pair (" << pair.first << ", " << pair.second << ") Exact P=";
    print_p(out, pair, " Steps done)\n");
}

void print_ld_permutation_lengths(std::ostream& out, bool recessive, int permutations, int starts) {
    out << (recessive ? "Resampling test using the EM algorithm (recessive data)"
                      : "Permutation test using the EM algorithm")
        << "\nNumber of permutations               : " << permutations
        << "\nNumber of initial conditions for EM  : " << starts << "\n\n";
}

void print_ld_genotype_pair(std::ostream& out, LinkedGenotypePair const& pair) {
    auto const p = static_cast<double>(Prob_of_chi_sq(static_cast<float>(pair.df), static_cast<float>(pair.chi)));
    out << "Pair(" << pair.test.first << ", " << pair.test.second << ")\n"
        << "LnLHood LD : " << num{pair.lnLD, 0, decimals} << "  LnLHood LE : " << num{pair.lnLE, 0, decimals}
        << "\nExact P= ";
    print_p(out, pair.test, " permutations done)   \n");
    out << "  Chi-square test value=" << num{pair.chi, 0, decimals} << " (P = " << num{p, 0, decimals} << ",  "
        << pair.df << " d.f.)\n\n";
}

// --- Tables over all pairs ---

void print_linked_loci(std::ostream& out, TriMat const& p, std::span<int const> loci, double level) {
    int const n = static_cast<int>(loci.size());
    std::vector<int> const partners = significant_partners(n, [&](int i, int j) { return p(i, j); }, level);
    std::vector<double> counts(partners.begin(), partners.end());
    std::vector<std::string> const labels = locus_labels(loci);
    FramedRowForm form;
    form.head = "y\\Locus: ";
    form.tail = "   No. of Loci";
    out << "\nNumber of linked loci per polymorphic locus (significance level=" << num{level, 0, 4} << "):\n\n";
    framed_row(out, labels, counts, form);
    for (double& x : counts) x = n > 1 ? 100.0 * x / (n - 1) : 0.0;
    form.precision = 2;
    form.cell_width = 8;
    out << "\nPercentage of linked loci per locus (significance level=" << num{level, 0, 4} << "):\n\n";
    framed_row(out, labels, counts, form);
    out << '\n';
}

void settings::print_diseq_table(TriMat& p_values, int n, int* loci) {
    std::ostream& out = ofs();
    std::vector<std::string> const labels = locus_labels({loci, static_cast<std::size_t>(std::max(n, 0))});
    MatrixForm form;
    form.label_width = 8;
    form.cell_width = widest(labels) + 2;
    form.corner = "Locus  #";
    form.bar = "|";
    out << "\nTable of significant linkage disequilibrium (significance level=" << num{SignificanceLevelLD, 0, 4}
        << "):\n\n"
        << rule{form.label_width + 1 + n * form.cell_width} << '\n';
    significance_matrix(out, labels, form, [&](int i, int j) { return p_values(i, j); }, SignificanceLevelLD);
    out << '\n';
}

// --- Coefficients ---

void print_ld_loci(std::ostream& out, int first, int second) {
    out << "\n--------------------\n"
        << "Loci " << first << " and " << second << "\n"
        << "--------------------\n";
}

namespace {

/// Head and rows of the tables of one pair.
class PairTable {
public:
    PairTable(std::ostream& out, LdTableLabels const& labels, LdCoefficients const& x)
        : out_(out),
          labels_(labels),
          corner_("Locus " + std::to_string(labels.first_locus) + " \\Locus " + std::to_string(labels.second_locus)),
          label_width_(std::max(widest(labels.first_alleles), static_cast<int>(corner_.size()))),
          column_width_(fitting_width(fitting_width(std::max(cell_width, widest(labels.second_alleles) + 1), x.expected,
                                                    decimals),
                                      x.chi2, decimals)) {}

    template <class Cell>
    void print(char const* title, Cell&& cell) {
        out_ << title << left_label{corner_, label_width_};
        for (std::string const& allele : labels_.second_alleles) out_ << user_text{allele, column_width_, false};
        out_ << '\n';
        std::size_t const columns = labels_.second_alleles.size();
        out_ << rule{label_width_ + static_cast<int>(columns) * column_width_} << '\n';
        for (std::size_t a = 0; a < labels_.first_alleles.size(); ++a) {
            out_ << user_text{labels_.first_alleles[a], label_width_, false};
            for (std::size_t b = 0; b < columns; ++b) cell(a * columns + b, column_width_);
            out_ << '\n';
        }
    }
    void print(char const* title, std::vector<double> const& values) {
        print(title, [&](std::size_t i, int width) { out_ << num{values[i], width, decimals}; });
    }

private:
    std::ostream& out_;            // borrowed
    LdTableLabels const& labels_;  // borrowed
    std::string corner_;
    int label_width_;
    int column_width_;
};

}  // namespace

void print_ld_tables(std::ostream& out, LdTableLabels const& labels, ContingencyTable const& counts,
                     LdCoefficients const& x) {
    PairTable table(out, labels, x);
    table.print("\n  1: Observed contingency table\n",
                [&](std::size_t i, int width) { out << integer{counts.cells[i], width}; });
    out << "  Total number of gametes : " << counts.total() << '\n';
    table.print("\n  2: Expected table\n", x.expected);
    table.print("\n 3: Table of disequilibrium values (D=pab-pa*pb) for all two-locus haplotypes\n\n", x.D);
    table.print("\n 4: Table of standardized disequilibrium values (D'=D/Dmax)\n", x.Dprime);
    // kept on purpose: the number 4 stands twice, and the table called r2 holds r with its sign.
    table.print("\n 4: Table of standardized disequilibrium values (r2)\n", x.r);
    table.print("\n 5: Table of Chi-square values ( Chi2=sqr(D)*n/(pa*(1-pa)*pb*(1-pb)) )\n", x.chi2);
    table.print("\n 6: Table of Chi-square P values (1 d.f.)\n", x.chi2_p);
}

}  // namespace tov
