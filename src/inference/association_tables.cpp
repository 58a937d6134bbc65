// The batch tables of the tests of association within a sample, and the side table of linkage disequilibrium.
#include "inference/association_tables.h"

#include <fstream>
#include <ostream>

#include "base/trimat.h"
#include "inference/hw_report.h"
#include "inference/ld_report.h"
#include "input/settings.h"
#include "model/hpopdb.h"
#include "output/escape.h"
#include "output/glbobj.h"

namespace tov {

void begin_hw_batch_row(std::string_view sample) {
    if (ofs_HW) {
        *ofs_HW << quoted(settings::input_file) << '\t' << quoted(sample);
    }
}

void write_hw_batch_locus(int locus, HardyWeinbergRow const& row) {
    if (ofs_HW) {
        *ofs_HW << '\t';
        print_batch_values(ofs_HW, {locus + 1.0, static_cast<double>(row.individuals), row.obs_het, row.exp_het, row.p,
                                    row.sd});
        *ofs_HW << '\t' << row.steps;
    }
}

void end_hw_batch_row() {
    if (ofs_HW) {
        *ofs_HW << '\n' << std::flush;
    }
}

void write_linkage_batch_row(std::string_view sample, LinkedPair const& pair) {
    if (!ofs_link_dis) {
        return;
    }
    begin_batch_row(ofs_link_dis, settings::input_file, sample);
    *ofs_link_dis << pair.first << '\t' << pair.second << '\t' << pair.steps << '\t';
    print_batch_values(ofs_link_dis, {pair.p, pair.sd});
    *ofs_link_dis << '\n' << std::flush;
}

void write_linkage_side_table(settings const& set, std::string_view sample, TriMat const& p, int n) {
    if (set.project_dir.empty()) {
        return;
    }
    std::ofstream table(set.ld_output_file, std::ios::app);
    table << sample << '\n';
    for (int a = 1; a < n; ++a) {
        for (int b = 0; b < a; ++b) {
            table << (b == 0 ? "" : "\t") << p(a, b);
        }
        table << '\n';
    }
}

void write_frequency_batch_rows(std::string_view sample, TPopHaploDB const& pool) {
    if (!ofs_allele_freqs) {
        return;
    }
    for (TPopHaplotype const* const haplotype : pool.view()) {
        begin_batch_row(ofs_allele_freqs, settings::input_file, sample);
        *ofs_allele_freqs << haplotype->name() << '\t';
        print_batch_values(ofs_allele_freqs, {haplotype->freq()});
        *ofs_allele_freqs << '\n';
    }
    *ofs_allele_freqs << std::flush;
}

}  // namespace tov
