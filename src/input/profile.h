// The keys of a project's [Profile] section and the kinds of genetic data.
#pragma once

#include <iosfwd>

#include "base/arrays.h"
#include "base/cstring.h"

namespace tov {

class settings;

/// Kinds of genetic data, in the order of their numbers in files and tables.
enum TDataType : int { DNA = 0, RFLP = 1, MICROSAT = 2, STANDARD = 3, FREQUENCY = 4 };

/// How the earlier project format lists its loci.
enum TLocusListing : int { TABLE = 0, ONE_BY_ONE = 1 };

/// Word of a data type as it stands in a project file ("DNA", "RFLP", "MICROSAT", "STANDARD", "FREQUENCY").
[[nodiscard]] char const* data_type_name(TDataType type) noexcept;

// Limits the format names; no reader refuses a project that goes beyond them.
inline constexpr int MAX_PATH_NAME = 1000;
inline constexpr int MAX_FILE_NAME = 400;
inline constexpr int MAX_GROUPS = 1000;
inline constexpr int MIN_GROUPS = 1;
inline constexpr int MAX_SAMPLES = 1000;
inline constexpr int MIN_SAMPLES = 1;
inline constexpr int MAX_LOCI = 10;
inline constexpr int MIN_LOCI = 0;
inline constexpr int MAX_NB_ALLELES = 1000;
inline constexpr int MAX_NB_GENE_COPY = 5000;

inline constexpr char RecessiveAlleleDefault[] = "null";
inline constexpr char UsedHaplListDefault[] = "NONE";

/// The keys of a [Profile] section. Base of Project, Samples, Structure and Haplo_DB, which hold copies of it.
class ProfileSettings {
public:
    ProfileSettings();
    ProfileSettings(ProfileSettings const&) = default;
    ProfileSettings(ProfileSettings&&) = default;
    ProfileSettings& operator=(ProfileSettings const&) = default;
    ProfileSettings& operator=(ProfileSettings&&) = default;
    virtual ~ProfileSettings() = default;

    /// Sets every key to its default; the pointer to the settings of the run stays.
    void initialize();

    /// Reads a [Profile] section key by key from anywhere in a project (used by the explore path).
    ///
    /// @return 1 if the section was found, 0 otherwise.
    /// Errors: each key reports its own code on a missing or invalid value and takes its default.
    int get_profile_settings(std::istream& ifs);

    /// Reads the value of one key, its name in lower case; keys it does not know are passed over.
    int read_profile_id_content(std::istream& ifs, my_string const& ident);

    my_string title;
    MY_TArrayAsVector<my_string> LociLabels{0, 10};
    int NbSamples = 0;
    int NbGroups = 0;
    int GenotypicData = 0;  ///< 1: two lines per individual
    int GameticPhase = 1;   ///< 1: known
    TDataType DataType = STANDARD;
    TLocusListing LocusListing = TABLE;
    int NbLoci = 0;
    int Interleave = 0;
    char LocusSeparator = ' ';  ///< 0: none
    char MissingData = '?';
    my_string DistMatLabel;
    my_string UsedHaplList;
    my_string ExtHaplFile;
    int IndividualLevel = 0;
    int Frequency = 0;  ///< 0: absolute counts, 1: relative
    int RecessiveData = 0;
    my_string RecessiveAllele;
    int GivenDistMat = 1;
    double EpsilonValue = 1e-7;
    double FrequencyThreshold = 1e-5;
    settings* run_settings = nullptr;  ///< borrowed: the settings of the run
};

/// Writes the profile in project file form, up to and with the line "[Data]".
std::ostream& operator<<(std::ostream& os, ProfileSettings& profile);

}  // namespace tov
