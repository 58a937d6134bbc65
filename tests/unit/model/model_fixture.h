// Small hand-made data for the tests of the data model.
#pragma once

#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "model/pheno.h"
#include "support/fresh_process.h"

namespace tov::test {

/// Codes of all reports of a test, in order.
class Reports {
public:
    Reports() { codes().clear(); }
    void listen() {
        Errors::ErrorProc = [](ErrorType, my_string const& function, int code) {
            codes().push_back(code);
            origins().push_back(function.str());
        };
    }
    [[nodiscard]] static std::vector<int>& codes() {
        static std::vector<int> all;
        return all;
    }
    [[nodiscard]] static std::vector<std::string>& origins() {
        static std::vector<std::string> all;
        return all;
    }
};

/// A process with a log whose reports are noted, an allele database, and makers of haplotypes of one-letter alleles.
class ModelData {
public:
    explicit ModelData(long seed = 1) : process(seed) {
        Reports::codes().clear();
        Reports::origins().clear();
        reports_.listen();
    }
    /// A pool haplotype with one allele a character, alleles made as needed.
    TPopHaplotype haplotype(std::string_view alleles, double freq = 0.0) {
        TPopHaplotype h;
        for (std::size_t l = 0; l < alleles.size(); ++l) {
            h.alleles().Add(db.insert_allele(static_cast<int>(l), alleles.substr(l, 1), 0.0));
        }
        h.set_freq(freq);
        return h;
    }
    std::unique_ptr<TPhenotype> phenotype(std::string_view a, std::string_view b, double count = 1.0) {
        TPopHaplotype const first = haplotype(a);
        TPopHaplotype const second = haplotype(b);
        auto p = std::make_unique<TPhenotype>(&first, &second, 0);
        p->set_obs_freq(count);
        return p;
    }
    struct Entry {
        std::string_view a;
        std::string_view b;
        double count;
    };
    void fill(TPhenDB& list, std::initializer_list<Entry> entries) {
        for (Entry const& e : entries) list.Add(phenotype(e.a, e.b, e.count).release());
    }

    FreshProcess process;
    TAlleleDB db;

private:
    Reports reports_;
};

/// Allele names of a haplotype, joined.
inline std::string text(TPopHaplotype const& h) {
    std::string s;
    for (int l = 0; l < h.nb_loci(); ++l) s += h[l] ? h[l]->name().str() : "?";
    return s;
}

inline std::vector<std::string> texts(TPopHaploDB const& pool) {
    std::vector<std::string> all;
    for (TPopHaplotype const* const h : pool.view()) all.push_back(text(*h));
    return all;
}

/// "first/second" of each genotype.
inline std::vector<std::string> genotype_texts(TPhenotype const& p) {
    std::vector<std::string> all;
    for (TGenotype const* const g : p.genotypes().view()) all.push_back(text(*g->first()) + "/" + text(*g->second()));
    return all;
}

}  // namespace tov::test
