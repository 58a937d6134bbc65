// Population: haplotypes shared with another sample, and the sample's anchor in the document.
#include <ostream>
#include <string>
#include <unordered_map>

#include "base/dmat.h"
#include "model/popbase.h"
#include "output/escape.h"
#include "output/html_out.h"

namespace tov {

void Population::print_out_redondant(std::ostream& os, Population const& other, DistMat const& matrix) {
    os << "\nShared with " << user_text{other.sample_name.str()} << ":\n";
    bool any = false;
    for (PHaploDef const* const mine : current_haplotypes->view()) {
        for (PHaploDef const* const theirs : other.current_haplotypes->view()) {
            if (!mine->haplotype || !theirs->haplotype) continue;
            int const i = mine->haplotype->matrix_index;
            int const j = theirs->haplotype->matrix_index;
            if (mine->haplotype != theirs->haplotype && (i < 0 || j < 0 || matrix(i, j) != 0.0)) continue;
            os << '\t' << doc_text(mine->haplotype->id.str()) << '\t' << doc_text(theirs->haplotype->id.str()) << '\n';
            any = true;
        }
    }
    if (!any) os << "\tnone\n";
}

void Population::print_population_anchor(int level, settings& s, char const* tag) {
    print_js_doc_entry(s, level, std::string(tag) + std::to_string(index), sample_name.str());
}

}  // namespace tov
