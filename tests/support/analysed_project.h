/// Projects as text in memory, ready for the analyses of their samples, which print into a string.
#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "diversity/popgen.h"
#include "input/settings.h"
#include "model/alldb.h"
#include "output/glbobj.h"
#include "support/project_text.h"

namespace tov::test {

/// Reports seen by a test: their codes, in order.
inline std::vector<int>& reported_codes() {
    static std::vector<int> codes;
    return codes;
}

/// A project whose alleles are built as a run builds them.
class AnalysedProject {
public:
    explicit AnalysedProject(std::string const& text, bool genotypes_to_haplotypes = false) : project(text) {
        initialize_tovenia_global_objects();
        reported_codes().clear();
        Errors::ErrorProc = [](ErrorType, my_string const&, int code) { reported_codes().push_back(code); };
        set.set_ofs(&document_);
        set.DataType = project.profile.DataType;
        set.GenotypicData = project.profile.GenotypicData;
        set.GameticPhase = project.profile.GameticPhase;
        set.AllowedLevelOfMissingData = 1.0;
        set.print_sample_banner = false;
        set.alleles = &alleles;
        char const separator = project.profile.LocusSeparator;
        project.samples.init_all_pointers(&alleles);
        if (project.samples.IsEmpty()) return;
        project.samples[0]->make_all_blanks(separator);
        if (project.profile.GenotypicData != 0) {
            project.samples.build_all_vectors(separator);
            if (genotypes_to_haplotypes) project.samples.phen_to_gam(project.haplotypes, &project.profile, &set);
        } else {
            project.samples.sum_copies(project.haplotypes);
        }
        for (int i = 0; i < project.haplotypes.size(); ++i) {
            HaploDef& definition = project.haplotypes[i];
            definition.build_haplovect(&alleles, separator, 0, definition.copies);
        }
    }

    [[nodiscard]] PopGenetics& sample(int i = 0) { return dynamic_cast<PopGenetics&>(*project.samples[i]); }
    template <class Class>
    [[nodiscard]] Class& sample_as(int i = 0) {
        return dynamic_cast<Class&>(*project.samples[i]);
    }
    /// Runs the given tasks on sample i. @return what they printed.
    std::string run(long tasks, int i = 0) {
        set.TaskNumber = tasks;
        document_.str("");
        sample(i).test_methods(set);
        return document_.str();
    }
    [[nodiscard]] std::string log() const { return project.fresh.log(); }

    ProjectText project;
    settings set;
    TAlleleDB alleles;

private:
    std::ostringstream document_;
};

}  // namespace tov::test
