// Exact tests of differentiation of samples.
#include "structure/diffpop.h"

#include <string>
#include <unordered_map>

#include "input/settings.h"
#include "model/sample.h"
#include "output/references.h"
#include "output/style.h"
#include "output/table.h"
#include "output/xml.h"
#include "run/errors.h"
#include "structure/formula/differentiation.h"

namespace tov {

namespace {

/// One kind with its counts over the samples, before the table's width is known.
struct Kind {
    std::vector<int> counts;
};

ContingencyTable table_of(std::vector<Kind> const& kinds, std::size_t samples) {
    ContingencyTable table;
    if (kinds.size() < 2) {
        return table;
    }
    table.shape(static_cast<int>(samples), static_cast<int>(kinds.size()));
    for (std::size_t k = 0; k < kinds.size(); ++k) {
        for (std::size_t s = 0; s < samples; ++s) {
            table.at(static_cast<int>(s), static_cast<int>(k)) = kinds[k].counts[s];
        }
    }
    return table;
}

std::vector<std::string> names_of(Samples const& samples) {
    std::vector<std::string> names;
    for (int i = 0; i < samples.NbPopulations(); ++i) {
        names.push_back(samples[i]->pop_name().str());
    }
    return names;
}

}  // namespace

bool DiffInterPop::by_phenotypes() const { return samples_->GenotypicData != 0 && samples_->GameticPhase == 0; }

ContingencyTable DiffInterPop::build_all_table(std::vector<Population const*> const& populations) const {
    std::vector<Kind> kinds;
    std::unordered_map<HaploDef const*, std::size_t> place;
    for (std::size_t s = 0; s < populations.size(); ++s) {
        auto const& list = populations[s]->haplotypes;
        for (int k = 0; k < static_cast<int>(list.GetItemsInContainer()); ++k) {
            auto const [at, is_new] = place.emplace(list[k]->haplotype, kinds.size());
            if (is_new) {
                kinds.push_back({std::vector<int>(populations.size(), 0)});
            }
            kinds[at->second].counts[s] += list[k]->copies;
        }
    }
    return table_of(kinds, populations.size());
}

ContingencyTable DiffInterPop::build_pheno_table(std::vector<Population const*> const& populations) const {
    std::vector<Kind> kinds;
    std::vector<TPhenotype const*> firsts;
    for (std::size_t s = 0; s < populations.size(); ++s) {
        for (int k = 0; k < populations[s]->phenotypes.size(); ++k) {
            TPhenotype const& phenotype = populations[s]->phenotypes.phenotype(k);
            std::size_t at = 0;
            while (at < firsts.size() && !(*firsts[at] == phenotype)) {
                ++at;
            }
            if (at == firsts.size()) {
                firsts.push_back(&phenotype);
                kinds.push_back({std::vector<int>(populations.size(), 0)});
            }
            kinds[at].counts[s] += static_cast<int>(phenotype.obs_count());
        }
    }
    return table_of(kinds, populations.size());
}

ContingencyTable DiffInterPop::build_table(std::vector<Population const*> const& populations) const {
    return by_phenotypes() ? build_pheno_table(populations) : build_all_table(populations);
}

namespace {

ChainOutcome run_test(settings& set, ContingencyTable const& table, DifferentiationChain chain) {
    return test_differentiation(
        table, chain, DifferentiationPlan(set.NumPermutPopDiff), set.NumDememoPopDiff, set.PrecProbPopDiff,
        [&set] { return *set.is_stop() != 0; },
        [](long steps) {
            settings::inc_work_done(0.001 * static_cast<double>(steps));
            settings::print_message();
        });
}

}  // namespace

ChainOutcome DiffInterPop::make_sample_test() {
    std::vector<Population const*> populations;
    for (int i = 0; i < samples_->NbPopulations(); ++i) {
        populations.push_back((*samples_)[i]);
    }
    ChainOutcome const outcome = run_test(*set_, build_table(populations), DifferentiationChain::samples);
    pair_failed_ = pair_failed_ || outcome.failed;
    return outcome;
}

ChainOutcome DiffInterPop::make_diff_test(int i, int j) {
    ChainOutcome const outcome =
        run_test(*set_, build_table({(*samples_)[i], (*samples_)[j]}), DifferentiationChain::pair);
    pair_failed_ = pair_failed_ || outcome.failed;
    return outcome;
}

void DiffInterPop::make_all_tests() {
    if (set_ == nullptr || samples_ == nullptr) {
        E.error(ErrorType::Error, "DiffInterPop::make_all_tests()", 59);
        return;
    }
    bool const testable = samples_->GenotypicData == 0 || samples_->GameticPhase != 0 || samples_->RecessiveData == 0;
    if (!testable || samples_->NbPopulations() < 2) {
        return;
    }
    settings::set_message("Making population differentiation test...");
    settings::print_message();
    print_heading();
    ChainOutcome const global = make_sample_test();
    if (global.stopped) {
        return;
    }
    print_global(global);
    print_pairs();
}

void DiffInterPop::print_heading() const {
    std::ostream& out = set_->ofs();
    std::string_view const kind = by_phenotypes() ? "Genotype" : "Haplotype";
    std::string const title = "== Exact Test of Sample Differentiation Based on " + std::string(kind) + " Frequencies";
    out << "\n" << rule{static_cast<int>(title.size()), '='} << "\n" << title << "\n"
        << rule{static_cast<int>(title.size()), '='} << "\n";
    print_references(out, {"raymond_rousset1995", "goudet1996"});
}

void DiffInterPop::print_global(ChainOutcome const& outcome) const {
    std::ostream& out = set_->ofs();
    out << "\nList of labels for population samples used below:"
        << "\n-------------------------------------------------\n";
    {
        XmlSection const section(out, "exactTestPopLabels");
        LabelListForm form;
        form.between = "\t";
        label_list(out, names_of(*samples_), form);
    }
    out << "\n" << rule{74} << "\nGlobal test of differentiation among sample:"
        << "\n--------------------------------------------\n"
        << "\n Non-differentiation: Exact P value = " << num{outcome.p, 5, 5} << " +- " << num{outcome.sd, 5, 5}
        << "  (" << outcome.steps << " Markov steps done)";
}

void DiffInterPop::print_pairs() {
    std::ostream& out = set_->ofs();
    int const R = samples_->NbPopulations();
    out << "\n\n" << rule{74} << "\nDifferentiation test between all pairs of samples:"
        << "\n--------------------------------------------------\n"
        << "\nMarkov chain length : " << DifferentiationPlan(set_->NumPermutPopDiff).steps << " steps)\n\n"
        << "Non-differentiation exact P values :\n\n";
    p_values_.clear();
    int const label_width = 6;
    int const cell_width = label_width + 11;
    out << label{"", label_width};
    for (int j = 0; j < R; ++j) {
        out << integer{j + 1, cell_width};
    }
    out << "\n";
    for (int i = 0; i < R; ++i) {
        out << integer{i + 1, label_width};
        for (int j = 0; j < i; ++j) {
            ChainOutcome const outcome = make_diff_test(i, j);
            if (outcome.stopped) {
                return;
            }
            p_values_.push_back(outcome.p);
            out << label{number_text(outcome.p, 5) + "+-" + number_text(outcome.sd, 4), cell_width};
        }
        out << std::endl;
    }
    if (set_->PrintHistoPopDiff != 0) {
        print_significance();
    }
    if (pair_failed_) {
        out << "\nAt for one population pair the test was not possible to\n"
            << "be done. This is indicated by an absurde P-value of -1:";
    }
}

void DiffInterPop::print_significance() const {
    std::ostream& out = set_->ofs();
    int const R = samples_->NbPopulations();
    double const level = set_->SignLevelPopDiff;
    CellValue const p = [this](int i, int j) {
        return p_values_[static_cast<std::size_t>(i) * static_cast<std::size_t>(i - 1) / 2 +
                         static_cast<std::size_t>(j)];
    };
    std::vector<std::string> const labels = number_labels(R);
    out << "\n\n--------------------------------"
        << "\nTable of significant differences (significance level=" << num{level, 0, 4} << "):"
        << "\n--------------------------------\n\n";
    MatrixForm form;
    form.cells = Cells::square;
    form.label_width = form.cell_width = 6;
    significance_matrix(out, labels, form, p, level);
    out << "\n\n" << rule{60} << "\nHistogram of the number of significant different populations (significance level="
        << num{level, 0, 4} << "):\n" << rule{60} << "\n\n";
    std::vector<double> counts;
    for (int const count : significant_partners(R, p, level)) {
        counts.push_back(count);
    }
    framed_row(out, labels, counts, FramedRowForm{});
}

}  // namespace tov
