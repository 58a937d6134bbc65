// Tables of an AMOVA locus by locus, and the averages over loci.
#include "structure/amova_table.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <ostream>
#include <string>
#include <string_view>

#include "input/settings.h"
#include "output/html_out.h"
#include "output/style.h"
#include "output/table.h"
#include "structure/formula/locus_average.h"

namespace tov {

namespace {

constexpr char const* component_names[] = {"Va", "Vb", "Vc", "Vd"};

AmovaCase const one_group{{"Among populations:", "Within populations:"},
                          {slot_FST},
                          {slot_FST},
                          {" Among\n populations", " Within\n populations"},
                          {{0, slot_FST, false}}};
AmovaCase const one_group_individuals_case{
    {"Among populations:", "Among Individuals:", "Within Individuals:"},
    {slot_FIS, slot_FST, slot_FIT},
    {slot_FIS, slot_FST, slot_FIT},
    {" Among\n populations", " Among\n individuals\n within\n populations", " Within\n individuals"},
    {{1, slot_FIS, false}, {0, slot_FST, false}, {2, slot_FIT, true}}};
AmovaCase const groups_case{
    {"Among Groups:", "Among Population:", "Within Populations:"},
    {slot_FSC, slot_FST, slot_FCT},
    {slot_FST, slot_FSC, slot_FCT},
    {" Among\n groups", " Among\n populations\n within\n groups", " Within\n populations"},
    {{2, slot_FST, true}, {1, slot_FSC, false}, {0, slot_FCT, false}}};
AmovaCase const groups_individuals_case{
    {"Among Groups:", "Among Population:", "Within Populations:", "Within Individuals:"},
    {slot_FIS, slot_FSC, slot_FCT, slot_FIT},
    {slot_FIS, slot_FSC, slot_FCT, slot_FIT},
    {" Among\n groups", " Among\n populations\n within\n groups", " Among\n individuals\n within\n populations",
     " Within\n individuals"},
    {{3, slot_FIT, true}, {2, slot_FIS, false}, {1, slot_FSC, false}, {0, slot_FCT, false}}};
AmovaCase const one_population_case{{"Among Individuals:", "Within Individuals:"},
                                    {slot_FIS},
                                    {slot_FIS},
                                    {" Among\n individuals", " Within\n individuals"},
                                    {{0, slot_FIS, false}}};

/// Components in numerator and denominator of an index of a case with n levels.
ComponentRatio ratio_of(AmovaIndexSlot slot, int n, bool individuals) {
    switch (slot) {
        case slot_FST: return n == 2 || individuals ? ComponentRatio{0, 1, n} : ComponentRatio{0, 2, n};
        case slot_FCT: return {0, 1, n};
        case slot_FSC: return {1, 2, n};
        case slot_FIT: return {0, n - 1, n};
        case slot_FIS: return {n - 2, n - 1, n};
        default: return {};
    }
}

int levels(AmovaCase const& c) { return static_cast<int>(c.blocks.size()); }

bool shown(amova_results const& record) { return record.variance[4] > 1e-17; }

constexpr int locus_width = 7;
constexpr int p_width = 10;
constexpr int least_width = 12;
constexpr int digits = 5;
constexpr int relative_digits = 3;

double share_of_variance(amova_results const& record, int component) {
    return 100.0 * record.variance[component] / record.variance[4];
}

double relative_to(double index, double value) { return 100.0 * (value - index) / index; }

}  // namespace

AmovaCase const* amova_case(int case_number) {
    static constexpr AmovaCase const* none = nullptr;
    static AmovaCase const* const cases[] = {none,
                                             &one_group,
                                             &one_group_individuals_case,
                                             &groups_case,
                                             &groups_individuals_case,
                                             &groups_case,
                                             &one_population_case,
                                             &one_group};
    return case_number >= 1 && case_number <= 7 ? cases[case_number] : nullptr;
}

char const* index_name(AmovaIndexSlot slot) {
    static constexpr char const* names[] = {"FST", "FSC", "FCT", "FIT", "FIS"};
    return names[slot];
}

int AMOVA_table::width() const {
    AmovaCase const* const c = amova_case(first_case());
    std::vector<double> numbers;
    for (auto const& record : records_) {
        for (int k = 0; c != nullptr && shown(*record) && k < levels(*c); ++k) {
            numbers.insert(numbers.end(), {record->ssd[k], record->variance[k], share_of_variance(*record, k)});
        }
    }
    return fitting_width(least_width, numbers, digits);
}

int AMOVA_table::population_width(int least, bool fis) const {
    std::vector<double> absolute, relative;
    for (auto const& record : records_) {
        double const index = record->index[fis ? slot_FIS : slot_FST];
        for (double const value : fis ? record->fis_per_pop : record->fst_per_pop) {
            absolute.push_back(value);
            relative.push_back(index == 0.0 ? 0.0 : relative_to(index, value));
        }
    }
    return fitting_width(fitting_width(least, absolute, digits), relative, relative_digits);
}

void AMOVA_table::print_table_header(std::ostream& out) const {
    if (empty()) {
        return;
    }
    AmovaCase const* const c = amova_case(first_case());
    if (c == nullptr) {
        out << "Invalid AMOVA case\n";
        return;
    }
    int const width = this->width();
    int const block = 3 * width + locus_width;
    out << label{"", locus_width};
    for (char const* const name : c->blocks) {
        out << label{name, block};
    }
    out << label{"Fixation indices:", block} << "\n" << label{"Locus", locus_width};
    for (int k = 0; k < levels(*c); ++k) {
        out << label{"SSD", width} << label{"d.f.", locus_width} << label{component_names[k], width}
            << label{"% variation", width};
    }
    for (AmovaIndexSlot const slot : c->columns) {
        out << label{index_name(slot), width} << label{"P-value", p_width};
    }
    out << "\n";
}

void AMOVA_table::print_table(std::ostream& out) const {
    AmovaCase const* const c = amova_case(first_case());
    if (c == nullptr) {
        return;
    }
    int const width = this->width();
    for (auto const& record : records_) {
        if (!shown(*record)) {
            continue;
        }
        out << integer{record->locus + 1, locus_width};
        for (int k = 0; k < levels(*c); ++k) {
            out << num{record->ssd[k], width, digits} << integer{record->df[k], locus_width}
                << num{record->variance[k], width, digits} << num{share_of_variance(*record, k), width, digits};
        }
        for (AmovaIndexSlot const slot : c->columns) {
            out << num{record->index[slot], width, digits} << num{record->p_value[slot], p_width, digits};
        }
        out << "\n";
    }
}

namespace {

void print_row_of_populations(std::ostream& out, int locus, double index, std::vector<double> const& values,
                              int column, bool relative, bool fis) {
    out << integer{locus + 1, locus_width} << num{index, 14, 5};
    for (double const value : values) {
        if (fis && !(value > -9.99999)) {
            out << label{"N.A.", column};
        } else if (relative) {
            out << num{relative_to(index, value), column, relative_digits};
        } else {
            out << num{value, column, digits};
        }
    }
    out << "\n";
}

}  // namespace

void AMOVA_table::print_Fst_per_pop_table(std::ostream& out, int column, bool relative) const {
    for (auto const& record : records_) {
        if (record->ssd[4] > 0.0 && !(relative && record->index[slot_FST] == 0.0)) {
            print_row_of_populations(out, record->locus, record->index[slot_FST], record->fst_per_pop, column,
                                     relative, false);
        }
    }
}

void AMOVA_table::print_Fis_per_pop_table(std::ostream& out, int column, bool relative) const {
    for (auto const& record : records_) {
        if (record->ssd[4] > 0.0 && !(relative && record->index[slot_FIS] == 0.0)) {
            print_row_of_populations(out, record->locus, record->index[slot_FIS], record->fis_per_pop, column,
                                     relative, true);
        }
    }
}

namespace {

/// Label of a row of the average, its last line filled up to the column of the sums of squares.
std::string row_label(std::string label) {
    constexpr std::size_t column = 17;
    std::size_t const last_line = label.size() - (label.rfind('\n') + 1);
    return label.append(column - std::min(column, last_line), ' ');
}

/// The averages of one table.
class LocusAverage {
public:
    LocusAverage(std::vector<std::unique_ptr<amova_results>> const& records, AmovaCase const& c, int case_number)
        : records_(records), case_(c), individuals_(case_number == 2) {
        for (auto const& record : records) {
            components_.push_back({record->variance[0], record->variance[1], record->variance[2],
                                   record->variance[3]});
            for (int k = 0; k < levels(c); ++k) {
                ssd_[k] += record->ssd[k];
                variance_[k] += record->variance[k];
            }
            total_ += record->variance[4];
        }
    }

    void print_table(std::ostream& out) const {
        std::string const title =
            "AMOVA design and results (average over " + std::to_string(records_.size()) + " loci):";
        out << "\n" << rule{static_cast<int>(title.size())} << "\n" << title << "\n"
            << rule{static_cast<int>(title.size())} << "\n\n" << rule{70}
            << "\n Source of               Sum of           Variance            Percentage\n"
               " variation               squares          components          variation\n"
            << rule{70} << "\n";
        double ssd_total = 0.0;
        for (int k = 0; k < levels(case_); ++k) {
            ssd_total += ssd_[k];
            double const share = total_ != 0.0 ? 100.0 * variance_[k] / total_ : 0.0;
            out << row_label(case_.labels[k]) << num{ssd_[k], 15, 3} << num{variance_[k], 15, 5} << " "
                << component_names[k] << num{share, 17, 2} << "\n\n";
        }
        out << rule{70} << "\n" << row_label(" Total") << num{ssd_total, 15, 3} << num{total_, 15, 5} << "\n"
            << rule{70} << "\n";
        out << "\nAverage F-Statistics over all loci\n Fixation Indices\n";
        for (AmovaIndexSlot const slot : case_.averages) {
            out << "       " << index_name(slot) << " : " << num{component_ratio(ratio(slot), variance_), 12, 5}
                << "\n";
        }
    }

    void print_bootstraps(std::ostream& out) const {
        static constexpr int replicates = 20000;
        static constexpr Percentile rows[] = {
            {" 0.05 %    : ", 10},    {" 0.1 %     : ", 20},    {" 0.25 %    : ", 50},    {" 0.5 %     : ", 100},
            {" 1 %       : ", 200},   {" 2.5 %     : ", 500},   {" 5 %       : ", 1000},  {" 10 %      : ", 2000},
            {" 50 %      : ", 10000}, {" 90 %      : ", 18000}, {" 95 %      : ", 19000}, {" 97.5 %    : ", 19500},
            {" 99 %      : ", 19800}, {" 99.5 %    : ", 19900}, {" 99.75 %   : ", 19950}, {" 99.9 %    : ", 19980},
            {" 99.95 %   : ", 19990}};
        for (AmovaIndexSlot const slot : case_.averages) {
            std::vector<double> const sorted = bootstrap_over_loci(components_, ratio(slot), replicates);
            out << "\n" << index_name(slot) << " bootstrap percentile values (over " << replicates
                << " bootstraps)\n";
            percentile_table(out, sorted, rows, 12, 5);
        }
    }

    void print_tests(std::ostream& out) const {
        int const permutations = records_.front()->permutations;
        if (permutations == 0) {
            out << "\nNo permutations were done and significance levels cannot be reported\n";
            return;
        }
        out << "\nSignificance tests (" << permutations << " permutations)\n------------------\n\n";
        for (AmovaCase::Test const& test : case_.tests) {
            std::vector<std::vector<double> const*> values;
            for (auto const& record : records_) {
                values.push_back(&record->null_values[test.component]);
            }
            double const observed = variance_[test.component] / static_cast<double>(records_.size());
            AverageTest const result = average_test(values, observed, test.below, permutations);
            double const all = permutations;
            out << component_names[test.component] << " and " << index_name(test.slot) << " : P(rand. value "
                << (test.below ? "&lt;" : ">") << " obs. value)  = " << num{result.beyond / all, 8, 5}
                << "\n             P(rand. value = obs. value)  = " << num{result.equal / all, 8, 5}
                << "\n                                  P-value = " << num{result.p, 8, 5} << "\n\n";
        }
    }

private:
    [[nodiscard]] ComponentRatio ratio(AmovaIndexSlot slot) const {
        return ratio_of(slot, levels(case_), individuals_);
    }

    std::vector<std::unique_ptr<amova_results>> const& records_;
    AmovaCase const& case_;
    bool individuals_;
    std::vector<std::array<double, 4>> components_;
    std::array<double, 4> ssd_{}, variance_{};
    double total_ = 0.0;
};

}  // namespace

void AMOVA_table::print_average_loci(std::ostream& out, settings const& set, bool groups) const {
    if (empty()) {
        return;
    }
    std::string_view const title = "Global AMOVA results as a weighted average over loci";
    heading(out, title, static_cast<int>(title.size()));
    AmovaCase const* const c = amova_case(first_case());
    if (c == nullptr) {
        out << "Invalid AMOVA case\n";
        return;
    }
    LocusAverage const average(records_, *c, first_case());
    average.print_table(out);
    if (records_.size() > 5) {
        print_js_doc_entry(set, 2, groups ? "gr_bootstrap" : "bootstrap", "F-stat bootstraps");
        average.print_bootstraps(out);
    }
    average.print_tests(out);
}

}  // namespace tov
