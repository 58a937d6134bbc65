// The reader of a whole project: profile keys, sections, and what is missing.
#pragma once

#include <iosfwd>

#include "input/profile.h"

namespace tov {

class DistMat;
class Haplo_DB;
class Mantel;
class Samples;
class Structure;

/// What a project is read into; all borrowed.
struct ProjectParts {
    ProfileSettings& profile;
    Haplo_DB& haplotypes;
    DistMat& distances;
    Samples& samples;
    Structure& structure;
    Mantel& mantel;
};

/// Reads a project line by line. External files are looked for beside settings::input_file.
///
/// The profile must have been initialised. At the end, or after a fault that stops the reading, each missing item is
/// told in the log.
/// @return 1, or 0 after a fault in a section or with required items missing (203).
int read_project(std::istream& is, ProjectParts const& parts);

/// Which sections and keys of a project were met.
struct SeenItems {
    bool profile = false;
    bool nb_samples = false;
    bool data_type = false;
    bool genotypic_data = false;
    bool locus_separator = false;
    bool gametic_phase = false;
    bool recessive_allele = false;
    bool missing_data = false;
    bool data = false;
    bool haplotype_definition = false;
    bool hapl_list = false;
    bool distance_matrix = false;
    bool matrix_size = false;
    bool matrix_data = false;
    bool samples = false;
    bool sample_size = false;
    bool sample_data = false;
    bool sample_name = false;
    bool structure = false;
    bool nb_groups = false;
    bool group = false;
    bool mantel = false;
    bool mantel_size = false;
    bool mantel_number = false;
    bool mantel_labels = false;
    bool mantel_matrix = false;
    bool mantel_used_labels = false;
};

/// Result of one line handed to the keys of the profile.
enum class KeyResult { not_mine, done, stop };

/// Reads a line of the [Profile] section. Keys are words found anywhere in the line, in any case; the first of a fixed
/// order decides.
///
/// @param text  the line without its comment.
KeyResult read_profile_line(ProfileSettings& profile, SeenItems& seen, my_string const& text, int line);

/// Logs each item that is missing. @return true when all that is required is there.
bool report_missing_items(ProfileSettings const& profile, SeenItems const& seen);

}  // namespace tov
