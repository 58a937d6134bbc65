// Gametic phases of one sample in the document, and as a project file.
#include <ostream>
#include <map>
#include <set>

#include "input/settings.h"
#include "inference/gp_gibbs.h"
#include "model/alldb.h"
#include "output/escape.h"
#include "output/references.h"
#include "output/style.h"
#include "output/table.h"
#include "output/tovenia_files.h"

namespace tov {

namespace {

bool is_sites(TDataType type) { return type == DNA || type == RFLP; }

}  // namespace

/// Alleles with a blank between loci, without one for sites.
std::string TGenotSample::text_of(TGamete const& gamete) const {
    std::string text;
    for (int l = 0; l < loci_; ++l) {
        if (l > 0 && !is_sites(set_.DataType)) {
            text += ' ';
        }
        if (gamete[l] < 0) {
            text += missing_;
        } else {
            text += alleles_->locus(l)->allele(gamete[l])->name().str();
        }
    }
    return text;
}

int TGenotSample::polymorphic_loci() const {
    int count = 0;
    for (int l = 0; l < loci_; ++l) {
        std::set<int> seen;
        for (TGamete const& gamete : original_) {
            if (gamete[l] >= 0) {
                seen.insert(gamete[l]);
            }
        }
        count += seen.size() > 1;
    }
    return count;
}

void TGenotSample::print_parameters(std::ostream& out) const {
    out << "\n======================================================="
        << "\nEstimation of gametic phase from multi-locus diploid data"
        << "\nbased on a Gibbs sampling strategy" << "\n=======================================================\n\n";
    print_references(out, {"stephens2001"});
    out << "\nEstimation parameters :\n=======================\n"
        << "\n\tBurnin                   : " << set_.GibbsBurnIn
        << "\n\tSampling interval        : " << set_.GibbsSamplingInterval
        << "\n\tNum. samples             : " << set_.GibbsNumSamples
        << "\n\tAve. prior alpha         : " << num{set_.GibbsAlphaInitValue}
        << "\n\tAve. post alpha          : " << num{set_.GibbsAlphaInitValue}
        << "\n\tEpsilon value            : " << num{set_.GibbsEpsilonValue}
        << "\n\tHet. site influence zone : " << set_.GibbsHetSiteInfluenceZone
        << "\n\tWindow size              : " << 2
        << "\n\tGamma parameter          : " << num{set_.GibbsGamma}
        << "\nSample properties :\n===================\n"
        << "\nNum. individuals           : " << individuals_.size()
        << "\nNum. ambiguous individuals : " << ambiguous_
        << "\nNum. loci                  : " << loci_
        << "\nNum. polymorphic loci      : " << polymorphic_loci() << "\n";
}

void TGenotSample::writeResults(std::ostream& out) const {
    if (samples_taken_ == 0 && ambiguous_ > 0) {
        out << "GAMETIC PHASES NOT ESTIMATED....";
        return;
    }
    print_parameters(out);
    if (ambiguous_ == 0) {
        out << "\n NO AMBIGUOUS INDIVIDUALS IN THIS SAMPLE, PHASE ESTIMATION SKIPPED\n\n";
        return;
    }
    std::vector<EstimatedHaplotype> const haplotypes = constructEstimatedHaploDB();
    print_haplotypes(out, haplotypes);
    print_phases(out, haplotypes);
}

void TGenotSample::print_haplotypes(std::ostream& out, std::vector<EstimatedHaplotype> const& haplotypes) const {
    out << "\nList of estimated haplotype frequencies" << "\n---------------------------------------\n\n"
        << "[ Hapl. ID]\tHapl. freq.\tHaplotype definition\n" << rule{60} << "\n";
    for (std::size_t h = 0; h < haplotypes.size(); ++h) {
        out << "[" << integer{static_cast<long long>(h) + 1, 9} << "]\t" << num{haplotypes[h].frequency, 11, 6} << "\t"
            << doc_text(text_of(haplotypes[h].alleles)) << "\n";
    }
    out << rule{60} << "\n";
}

void TGenotSample::print_phases(std::ostream& out, std::vector<EstimatedHaplotype> const& haplotypes) const {
    std::map<TGamete, std::size_t> number;
    for (std::size_t h = 0; h < haplotypes.size(); ++h) {
        number[haplotypes[h].alleles] = h + 1;
    }
    out << "\nEstimated gametic phase of all individuals" << "\n------------------------------------------\n"
        << "Indiv. name\tPhase freq.\tConstituant haplotypes\n" << rule{60} << "\n";
    for (TGenotIndividual const& individual : individuals_) {
        out << doc_text(individual.name);
        for (SampledPhase const& phase : individual.phases) {
            out << "\t" << num{phase.count / static_cast<double>(samples_taken_), 0, 5} << "\t["
                << number[phase.first] << "] [" << number[phase.second] << "]\t" << doc_text(text_of(phase.first))
                << "   " << doc_text(text_of(phase.second)) << "\n";
        }
    }
    out << rule{60} << "\n";
}

void TGenotSample::writeSample(std::ostream& out, std::string const& name) const {
    write_Tovenia_header_gibbs("Gametic phases of " + name, 1, set_.DataType, out);
    write_Tovenia_sample_header_gibbs(name, static_cast<int>(individuals_.size()), out);
    char const separator = is_sites(set_.DataType) ? '\0' : '\t';
    auto const write = [&](TGamete const& gamete) {
        for (int l = 0; l < loci_; ++l) {
            if (l > 0 && separator != '\0') {
                out << separator;
            }
            if (gamete[l] < 0) {
                out << '?';
            } else {
                out << alleles_->locus(l)->allele(gamete[l])->name();
            }
        }
        out << "\n";
    };
    for (std::size_t i = 0; i < individuals_.size(); ++i) {
        bool const sampled = !individuals_[i].phases.empty();
        out << individuals_[i].name << "\t1\t";
        write(sampled ? individuals_[i].phases.front().first : original_[2 * i]);
        out << "\t\t";
        write(sampled ? individuals_[i].phases.front().second : original_[2 * i + 1]);
    }
    write_Tovenia_sample_footer_gibbs(out);
    out << "\n";
}

}  // namespace tov
