// The batch tables of the tests of association within a sample, and the side table of linkage disequilibrium.
#include "inference/association_tables.h"

#include <fstream>
#include <ostream>

#include "base/trimat.h"
#include "inference/hw_report.h"
#include "inference/ld_report.h"
#include "input/settings.h"
#include "model/hpopdb.h"
#include "output/glbobj.h"

namespace tov {

TabRow hw_batch_row(std::string_view sample) { return batch_row(ofs_HW, settings::input_file, sample); }

void write_hw_batch_locus(TabRow& table_row, int locus, HardyWeinbergRow const& row) {
    table_row << locus + 1 << row.individuals << row.obs_het << row.exp_het << row.p << row.sd << row.steps;
}

void write_linkage_batch_row(std::string_view sample, LinkedPair const& pair) {
    batch_row(ofs_link_dis, settings::input_file, sample)
        << pair.first << pair.second << pair.steps << pair.p << pair.sd;
}

void write_linkage_side_table(settings const& set, std::string_view sample, TriMat const& p, int n) {
    if (set.project_dir.empty()) {
        return;
    }
    std::ofstream table(set.ld_output_file, std::ios::app);
    TabRow(table) << sample;
    for (int a = 1; a < n; ++a) {
        TabRow row(table);
        for (int b = 0; b < a; ++b) {
            row << p(a, b);
        }
    }
}

void write_frequency_batch_rows(std::string_view sample, TPopHaploDB const& pool) {
    if (!ofs_allele_freqs) {
        return;
    }
    for (TPopHaplotype const* const haplotype : pool.view()) {
        batch_row(ofs_allele_freqs, settings::input_file, sample) << haplotype->name() << haplotype->freq();
    }
}

}  // namespace tov
