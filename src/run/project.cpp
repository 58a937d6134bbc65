// Project: life, file names, emptying, back-ups.
#include "run/project.h"

#include <cstdio>
#include <fstream>
#include <new>

#include "base/dmat.h"
#include "base/scoped_swap.h"
#include "input/settings.h"
#include "model/alldb.h"
#include "model/hapldb.h"
#include "model/sample.h"
#include "model/struct.h"
#include "output/xml.h"
#include "run/errors.h"
#include "run/paths.h"
#include "run/run_state.h"
#include "structure/amova_results.h"
#include "structure/mantel.h"

namespace tov {

Project::Project() try
    : haplotypes_(std::make_unique<Haplo_DB>()),
      distances_(std::make_unique<DistMat>()),
      samples_(std::make_unique<Samples>()),
      structure_(std::make_unique<Structure>()),
      mantel_(std::make_unique<Mantel>()),
      alleles_(std::make_unique<TAlleleDB>()),
      settings_(std::make_unique<settings>()),
      amova_(std::make_unique<amova_results>()) {
    haplotypes_->project = this;
    distances_->project = this;
    run_settings = settings_.get();
} catch (std::bad_alloc const&) {
    E.error(ErrorType::Memory, "Project::Project()", 0);
}

Project::~Project() = default;

std::ostream& Project::document() { return settings_->ofs(); }

void Project::clean() {
    distances_->reset();
    distances_->destroy();
    structure_->reset();
    samples_->clean();
    haplotypes_->reset();
    mantel_->reset();
    alleles_->destroy();
    E.results = nullptr;
    std::remove("trans_out.txt");
    std::remove("dum_tov.tvp");
}

void Project::print_error_message() const {
    std::ofstream(ToveniaExeDirectory + "tov_pro.txt", std::ios::trunc) << "error\n";
}

void Project::build_res_bac_names() {
    std::string const base = without_extension(settings::input_file);
    settings_->result_file = base + ".htm";
    settings_->backup_file = base + ".bac";
    settings_->project_path = directory_of(settings::input_file);
}

int Project::write() {
    if (!backup_allowed) return 0;
    std::ofstream out(settings_->backup_file, std::ios::trunc);
    if (!out.is_open()) {
        E.error(ErrorType::Error, "Project::write()", 133);
        return 0;
    }
    unify_definitions();
    // The samples hold counts, and a tag of a result document would end the matrix.
    ScopedSwap<int> const counts(Frequency, 0);
    ScopedSwap<bool> const plain(xmlOutput, false);
    out << p_pro() << *haplotypes_;
    // Distances that the data give need no place in the project.
    if (!distances_->conventional_fst()) out << *distances_;
    out << *samples_;
    if (structure_->nb_groups() > 0) out << *structure_;
    out.flush();
    if (out.good()) return 1;
    E.error(ErrorType::Error, "Project::write()", 133);
    return 0;
}

void Project::save_associated_set() { settings_->print_settings(without_extension(settings::input_file) + ".tvs"); }

}  // namespace tov
