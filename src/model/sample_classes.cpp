// Samples: classes of haplotypes that can't be told from each other, listed and merged.
#include <ostream>
#include <string>
#include <unordered_map>
#include <vector>

#include "base/dmat.h"
#include "model/sample.h"
#include "output/escape.h"
#include "output/style.h"

namespace tov {

namespace {

using Positions = std::unordered_map<HaploDef const*, std::size_t>;

Positions positions_in(Haplo_DB const& db) {
    Positions positions;
    for (HaploDef const* const h : db.list().view()) positions.emplace(h, positions.size());
    return positions;
}

// Row of a haplotype in the matrix: its index there, or its place in the list while it has none.
int row_of(HaploDef const& h, Positions const& positions) {
    return h.matrix_index >= 0 ? h.matrix_index : static_cast<int>(positions.at(&h));
}

// What is wrong with the classes of n haplotypes, or null. A class bears the number of one of its members.
char const* fault_of_classes(int const* classes, std::size_t n) {
    std::vector<char> occurs(n, 0);
    for (std::size_t i = 0; i < n; ++i) {
        if (classes[i] < 0 || static_cast<std::size_t>(classes[i]) >= n)
            return "\n\tSamples::print_out_haplo_cl(): inconsistent class found.\n";
        occurs[static_cast<std::size_t>(classes[i])] = 1;
    }
    for (std::size_t c = 0; c < n; ++c) {
        if (occurs[c] && static_cast<std::size_t>(classes[c]) != c)
            return "\n\tSamples::print_out_haplo_cl():the number of class separator is not right.\n";
    }
    return nullptr;
}

// Copies of each class in one sample.
std::vector<long long> copies_by_class(Population const& population, Positions const& positions, int const* classes) {
    std::vector<long long> copies(positions.size(), 0);
    for (PHaploDef const* const h : population.haplotypes.view()) {
        auto const at = positions.find(h->haplotype);
        if (at != positions.end()) copies[static_cast<std::size_t>(classes[at->second])] += h->copies;
    }
    return copies;
}

}  // namespace

void Samples::print_out_haplo_cl(std::ostream* os, DistMat const& /*matrix*/, Haplo_DB* db, int const* classes) const {
    if (!os || !db || !classes) return;
    constexpr int class_width = 6;
    constexpr int least_count_width = 10;
    *os << "\n\nHaplotype frequency distribution among the samples:\n"
        << "===================================================\n\n";
    auto const n = static_cast<std::size_t>(db->size());
    if (char const* const fault = fault_of_classes(classes, n)) {
        *os << fault;
        return;
    }
    std::vector<std::string> members(n);
    for (std::size_t i = 0; i < n; ++i) {
        std::string& ids = members[static_cast<std::size_t>(classes[i])];
        if (!ids.empty()) ids += ' ';
        ids += (*db)[static_cast<int>(i)].id.str();
    }
    Positions const positions = positions_in(*db);
    std::vector<std::vector<long long>> counts;
    for (Population const* const p : populations.view()) counts.push_back(copies_by_class(*p, positions, classes));
    int ids_width = 12;
    for (std::string const& ids : members) ids_width = std::max(ids_width, shown_length(ids) + 1);
    *os << left_label{"Class", class_width} << left_label{"Haplotypes", ids_width};
    std::vector<int> widths;
    for (Population const* const p : populations.view()) {
        std::string const name = p->pop_name().str();
        widths.push_back(std::max(least_count_width, shown_length(name) + 2));
        *os << user_text{name, widths.back(), false};
    }
    *os << '\n';
    int number = 0;
    for (std::size_t c = 0; c < n; ++c) {
        if (members[c].empty()) continue;
        *os << left_label{std::to_string(++number), class_width} << user_text{members[c], ids_width};
        for (std::size_t s = 0; s < counts.size(); ++s) *os << integer{counts[s][c], widths[s]};
        *os << '\n';
    }
}

void Samples::IdentifyIdenticalHaplotypes(std::ostream* /*os*/, DistMat const& matrix, Haplo_DB* db,
                                          int const* classes) {
    if (!db || !classes) return;
    Positions const positions = positions_in(*db);
    for (Population* const population : populations.view()) {
        auto const list = population->haplotypes.view();
        std::unordered_map<int, std::vector<PHaploDef*>> by_class;
        for (PHaploDef* const h : list) {
            if (!positions.contains(h->haplotype)) continue;
            auto& peers = by_class[classes[positions.at(h->haplotype)]];
            int const row = row_of(*h->haplotype, positions);
            for (PHaploDef* const first : peers) {
                if (matrix(row_of(*first->haplotype, positions), row) != 0.0) continue;
                first->copies += h->copies;
                first->haplotype->copies += h->copies;
                h->haplotype->copies -= h->copies;
                h->copies = 0;
                break;
            }
            if (h->copies > 0) peers.push_back(h);
        }
        population->nb_original_haplotypes = population->haplotypes.GetItemsInContainer();
        for (int i = population->haplotypes.GetItemsInContainer() - 1; i >= 0; --i) {
            if (population->haplotypes.view()[static_cast<std::size_t>(i)]->copies == 0)
                population->haplotypes.Detach(i);
        }
        population->nb_diff_haplotypes = population->haplotypes.GetItemsInContainer();
    }
}

}  // namespace tov
