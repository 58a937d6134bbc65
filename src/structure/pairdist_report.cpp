// What the distances between pairs of samples print.
#include "structure/pairdist_report.h"

#include <cmath>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "input/settings.h"
#include "model/sample.h"
#include "output/html_out.h"
#include "output/references.h"
#include "output/style.h"
#include "output/table.h"
#include "output/xml.h"
#include "structure/formula/pairwise.h"
#include "structure/pairdist.h"

namespace tov {

namespace {

class PairReport {
public:
    PairReport(ProjectView const& view, PairwiseResults const& results)
        : set_(view.set), samples_(*view.samples), r_(results), out_(view.set.ofs()), n_(samples_.NbPopulations()) {}

    void print() {
        print_head();
        bool const fst = set_.PrintFstVals != 0 && r_.has_fst;
        if (fst) {
            print_fst();
        }
        if (set_.PrintMissIntermatchs != 0) {
            print_differences();
        }
        if (r_.tested) {
            print_difference_tests();
        }
        if (set_.ComputeDeltaMuSqr != 0) {
            title("Delta mu-square distance between all pairs of populations");
            print_references(out_, {"goldstein1995"});
            triangle(r_.delta_mu);
        }
        if (set_.UnequalPopSizeDiv != 0 && set_.PrintMissIntermatchs != 0) {
            print_divergence();
        }
        if (fst) {
            print_derived();
        }
    }

private:
    void title(std::string_view text) { heading(out_, text, 0, '-'); }

    void triangle(TriMat const& m) {
        lower_triangle(out_, n_, [&m](int i, int j) { return m(i, j); });
    }

    void method() {
        if (set_.ComputeConventionalFST != 0) {
            out_ << "Computing conventional F-Statistics from haplotype frequencies\n";
        } else {
            out_ << "\nDistance method: ";
            set_.print_distance_method(out_, set_.DistanceMethodAMOVA);
        }
        out_ << "\n";
    }

    void print_head() {
        bool const groups = samples_.pooled != 0;
        print_js_doc_entry(set_, 2, groups ? "_gr_pairw_diff" : "_pop_pairw_diff", "Pairwise distances");
        out_ << "\n" << rule{86, '='} << "\n== Comparisons of pairs of population samples\n" << rule{86, '='} << "\n"
             << "\nList of labels for population samples used below:"
             << "\n-------------------------------------------------\n";
        std::vector<std::string> names;
        for (int i = 0; i < n_; ++i) {
            names.emplace_back(samples_[i]->pop_name().c_str());
        }
        XmlSection const section(out_, "pairDistPopLabels");
        label_list(out_, names);
    }

    void print_fst() {
        title("Population pairwise FSTs");
        method();
        {
            XmlSection const section(out_, "PairFstMat");
            triangle(r_.fst);
        }
        if (!r_.tested) {
            return;
        }
        title("FST P values");
        out_ << "Number of permutations : " << r_.plan.permutations << "\n";
        {
            XmlSection const section(out_, "PairFstPvalMat");
            lower_triangle(
                out_, n_,
                [this](int i, int j) {
                    return i == j ? std::string("*")
                                  : number_text(r_.p_fst(i, j), 5) + "+-" + number_text(r_.sd_fst(i, j), 4);
                },
                18);
        }
        title("Matrix of significant Fst P values");
        out_ << "\nSignificance Level=" << num{set_.FSTSignifLevel, 0, 4} << "\n";
        significance_matrix(out_, number_labels(n_), MatrixForm{}, [this](int i, int j) { return r_.p_fst(i, j); },
                            set_.FSTSignifLevel);
    }

    void print_differences() {
        title("Population average pairwise differences");
        out_ << "\nAbove diagonal    : Average number of pairwise differences between populations (PiXY)"
             << "\nDiagonal elements : Average number of pairwise differences within population (PiX)"
             << "\nBelow diagonal    : Corrected average pairwise difference (PiXY-(PiX+PiY)/2)\n\n";
        method();
        {
            XmlSection const section(out_, "pairwiseDifferenceMatrix");
            MatrixForm form;
            form.cells = Cells::square;
            number_matrix(out_, number_labels(n_), form, [this](int i, int j) { return r_.differences(i, j); });
        }
    }

    void print_difference_tests() {
        title("PXY P value");
        p_values(r_.p_pixy);
        title("Corrected PXY P value");
        p_values(r_.p_corrected);
    }

    /// A triangle of P-values with "*" on the diagonal.
    void p_values(TriMat const& m) {
        lower_triangle(
            out_, n_,
            [&m](int i, int j) { return i == j ? std::string("*") : number_text(m(i, j), 5); }, 10);
    }

    void starred(TriMat const& m) {
        lower_triangle(
            out_, n_,
            [&](int i, int j) {
                bool const failed = i != j && r_.divergence->converged(i, j) == 0.0;
                return number_text(m(i, j), 5) + (failed ? "*" : " ");
            },
            12);
    }

    /// @param tag  element around the values; null for none.
    void estimate(std::string_view name, char const* tag, TriMat const& values, std::string_view p_name,
                  TriMat const& p) {
        title(name);
        {
            std::optional<XmlSection> section;
            if (tag != nullptr) {
                section.emplace(out_, tag);
            }
            starred(values);
        }
        if (r_.tested) {
            title(p_name);
            p_values(p);
        }
    }

    void print_divergence() {
        DivergenceMatrices const& d = *r_.divergence;
        title("Divergence times allowing for unequal population sizes (tau)");
        print_references(out_, {"takahata_nei1985"});
        out_ << "\nAn * denotes the cases where the estimation of divergence time did not converge\n";
        estimate("tau values", "tauMatrix", d.tau, "tau P values", d.p_tau);
        estimate("Unequal population sizes (k)", nullptr, d.k, "k P values", d.p_k);
        estimate("Ancestral population sizes (theta0)", "ancestralPopSize", d.theta0, "theta0 P values", d.p_theta0);
    }

    /// A matrix that is derived from the FST: "0" for a negative FST, "inf" from 1 on.
    void derived(std::string_view name, char const* tag, char const* reference, double (*value)(double) noexcept) {
        title(name);
        out_ << "(M=N for haploid data, M=2N for diploid data)\n";
        print_references(out_, {reference});
        XmlSection const section(out_, tag);
        lower_triangle(
            out_, n_,
            [&](int i, int j) {
                double const fst = i == j ? 0.0 : r_.fst(i, j);
                double const x = value(fst);
                return fst < 0.0 ? std::string("0") : std::isinf(x) ? std::string("inf\t") : number_text(x, 5);
            },
            10);
    }

    void print_derived() {
        derived("Matrix of coancestry coefficients as t/M=-ln(1-FST)", "coancestryCoefficients", "reynolds1983",
                coancestry_distance);
        if (set_.PrintSlatkinsDist != 0) {
            derived("Matrix of Slatkin linearized FSTs as t/M=FST/(1-FST)", "slatkinFst", "slatkin1995",
                    linearised_fst);
        }
    }

    settings const& set_;
    Samples const& samples_;
    PairwiseResults const& r_;
    std::ostream& out_;
    int n_;
};

}  // namespace

void print_pairwise_distances(ProjectView const& view, PairwiseResults const& results) {
    PairReport(view, results).print();
}

}  // namespace tov
