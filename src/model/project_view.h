// The parts of a project that analyses work on.
#pragma once

namespace tov {

class DistMat;
class Haplo_DB;
class Mantel;
class Project;
class Samples;
class Structure;
class TAlleleDB;
class amova_results;
class settings;

/// Borrowed parts of a project; the group level and the locus-by-locus AMOVA make views of their own.
struct ProjectView {
    settings& set;
    Samples* samples = nullptr;
    Structure* structure = nullptr;
    Haplo_DB* haplotypes = nullptr;
    DistMat* distances = nullptr;
    TAlleleDB* alleles = nullptr;
    Mantel* mantel = nullptr;
    amova_results* amova = nullptr;
};

/// View of the project's own parts; defined with Project.
[[nodiscard]] ProjectView view_of(Project& project);

}  // namespace tov
