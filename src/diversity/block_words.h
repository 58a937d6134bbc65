// Where the wordings of the four data types differ in the blocks of a sample's analyses.
#pragma once

#include <string_view>

#include "input/profile.h"

namespace tov {

/// Texts of one data type.
struct BlockWords {
    TDataType type;
    // Standard diversity indices
    std::string_view distinct;     ///< line of the number of distinct haplotypes
    std::string_view original;     ///< line of their number before equal ones were merged
    std::string_view polymorphic;  ///< line of polymorphic sites or loci
    // Molecular diversity indices
    std::string_view diversity_per_locus;  ///< title of the mean over loci
    // Tests
    std::string_view one_haplotype_test;  ///< the test that the warning of a single haplotype names
    std::string_view table_failure;       ///< console line of a missing table of the Ewens-Watterson test
    std::string_view refused_data;        ///< the data type in the refusals of Tajima's and Fu's tests, or empty
};

inline constexpr std::string_view plain_table_failure = "\t\tFile 500k100.bnb not found... skipping task !\n";

inline constexpr BlockWords dna_words = {
    .type = DNA,
    .distinct = "\nNo. of sequences         : ",
    .original = "\nNo. of original \nsequences in sample      : ",
    .polymorphic = "\nNo. of polymorphic sites : ",
    .diversity_per_locus = "Nucleotide diversity (average over loci)",
    .one_haplotype_test = "Chakraborty's",  // kept on purpose: the warning names the wrong test
    .table_failure = plain_table_failure,
    .refused_data = ""};

inline constexpr BlockWords rflp_words = {.type = RFLP,
                                          .distinct = "\nNo. of haplotypes        : ",
                                          .original = "\nNo. of original \nhaplotypes in sample     : ",
                                          .polymorphic = "\nNo. of polymorphic sites : ",
                                          .diversity_per_locus = "Nucleotide diversity (average over loci)",
                                          .one_haplotype_test = "Chakraborty's",
                                          .table_failure = plain_table_failure,
                                          .refused_data = ""};

inline constexpr BlockWords microsat_words = {.type = MICROSAT,
                                              .distinct = "\nNo. of alleles           : ",
                                              .original = "\nNo. of original \nalleles in sample        : ",
                                              .polymorphic = "\nNo. of polymorphic loci  : ",
                                              .diversity_per_locus = "Nucleotide diversity (average over loci)",
                                              .one_haplotype_test = "Chakraborty's",
                                              .table_failure = plain_table_failure,
                                              .refused_data = "Microsatellite data"};

inline constexpr BlockWords standard_words = {.type = STANDARD,
                                              .distinct = "\nNo. of haplotypes        : ",
                                              .original = "\nNo. of original \nhaplotypes in sample     : ",
                                              .polymorphic = "\nNo. of polymorphic loci  : ",
                                              .diversity_per_locus = "Average gene diversity over loci",
                                              .one_haplotype_test = "Ewens-Watterson's",
                                              .table_failure = "\t\t\tFile *.bnb not found... skipping task !\n",
                                              .refused_data = "standard data type"};

}  // namespace tov
