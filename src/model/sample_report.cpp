// Samples: the section of a project file, and anchors of computations in the document.
#include <limits>
#include <ostream>

#include "model/sample.h"
#include "output/html_out.h"

namespace tov {

void Samples::print_computation_anchor(int level, settings& s, my_string const& entry, my_string const& anchor) {
    print_js_doc_entry(s, level, anchor.str(), entry.str());
}

namespace {

void write_haplotypes(std::ostream& os, Population const& population, bool with_definition) {
    for (PHaploDef const* const h : population.haplotypes.view()) {
        os << "\t\t\t" << h->name() << '\t' << h->copies;
        if (with_definition && h->haplotype) os << '\t' << h->haplotype->content;
        os << '\n';
    }
}

void write_phenotypes(std::ostream& os, Population const& population) {
    for (TPhenotype const* const p : population.phenotypes.view()) {
        os << "\t\t\t" << p->name() << '\t' << p->obs_count() << '\t' << p->allele_string(0) << '\n'
           << "\t\t\t\t\t" << p->allele_string(1) << '\n';
    }
}

}  // namespace

std::ostream& operator<<(std::ostream& os, Samples const& samples) {
    // Sizes and counts are read again: they are written with all their digits.
    auto const precision = os.precision(std::numeric_limits<double>::digits10);
    os << "\n\t[[Samples]]\n\n";
    for (Population const* const p : samples.populations.view()) {
        double const size = samples.GenotypicData ? p->sample_size() / 2.0 : p->sample_size();
        os << "\t\tSampleName=\"" << p->pop_name() << "\"\n"
           << "\t\tSampleSize=" << size << '\n'
           << "\t\tSampleData={\n";
        if (samples.GenotypicData) {
            write_phenotypes(os, *p);
        } else {
            write_haplotypes(os, *p, samples.DataType != FREQUENCY);
        }
        os << "\t\t}\n";
    }
    os.precision(precision);
    return os;
}

}  // namespace tov
