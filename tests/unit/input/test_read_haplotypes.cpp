// Allelic definitions and the list of haplotypes.
#include <gtest/gtest.h>

#include <sstream>

#include "input/definition.h"
#include "model/hapldb.h"
#include "model/pheno.h"
#include "support/fresh_process.h"

namespace tov {
namespace {

using test::FreshProcess;

bool has(std::string const& text, std::string const& part) { return text.find(part) != std::string::npos; }

ProfileSettings profile_of(TDataType type, char separator = ' ') {
    ProfileSettings p;
    p.DataType = type;
    p.LocusSeparator = separator;
    return p;
}

struct Scanned {
    DefinitionFault fault;
    std::string content;
    int loci;
};

Scanned scan(ProfileSettings const& profile, std::string const& text) {
    Scanned s{DefinitionFault::none, "", -1};
    s.fault = DefinitionScanner(profile).scan(text, s.content, s.loci);
    return s;
}

TEST(Definition, DnaKeepsLettersDeletionAndMissingCode) {
    Scanned const s = scan(profile_of(DNA, 0), " ACgt-N?\r");
    EXPECT_EQ(s.fault, DefinitionFault::none);
    EXPECT_EQ(s.content, "ACgt-N?");
    EXPECT_EQ(s.loci, 7);
}

TEST(Definition, BlanksTabsAndTheSeparatorVanishBetweenSites) {
    EXPECT_EQ(scan(profile_of(DNA, 0), "AC GT\tA  C").content, "ACGTAC");
    EXPECT_EQ(scan(profile_of(DNA, '/'), "A/C/G").content, "ACG");
    EXPECT_EQ(scan(profile_of(RFLP, 0), "01 1-?").content, "011-?");
}

TEST(Definition, APoundSignEndsIt) { EXPECT_EQ(scan(profile_of(DNA, 0), "ACG # T").content, "ACG"); }

TEST(Definition, OtherCharactersAreFaults) {
    EXPECT_EQ(scan(profile_of(DNA, 0), "AC1").fault, DefinitionFault::character);
    EXPECT_EQ(scan(profile_of(DNA, 0), "AC*").fault, DefinitionFault::character);
    EXPECT_EQ(scan(profile_of(DNA, 0), "A/C").fault, DefinitionFault::character);
    EXPECT_EQ(scan(profile_of(DNA, 0), std::string("A\0C", 3)).fault, DefinitionFault::character);
    EXPECT_EQ(scan(profile_of(RFLP, 0), "012").fault, DefinitionFault::character);
    EXPECT_EQ(scan(profile_of(RFLP, 0), "0A").fault, DefinitionFault::character);
    EXPECT_EQ(scan(profile_of(DNA, 0), "AC\xe9").fault, DefinitionFault::character);
}

TEST(Definition, TheMissingCodeOfTheProfileIsASite) {
    ProfileSettings p = profile_of(DNA, 0);
    p.MissingData = '9';
    EXPECT_EQ(scan(p, "AC9").content, "AC9");
    EXPECT_EQ(scan(p, "AC?").fault, DefinitionFault::character);
}

TEST(Definition, AnEmptyOneIsAFault) {
    EXPECT_EQ(scan(profile_of(DNA, 0), "").fault, DefinitionFault::empty);
    EXPECT_EQ(scan(profile_of(STANDARD), " \t").fault, DefinitionFault::empty);
    EXPECT_EQ(scan(profile_of(MICROSAT, '/'), " / / ").fault, DefinitionFault::empty);
    EXPECT_EQ(scan(profile_of(DNA, '/'), "//").fault, DefinitionFault::empty);
}

TEST(Definition, FrequencyDataHaveNone) {
    Scanned const s = scan(profile_of(FREQUENCY), "whatever 1 2");
    EXPECT_EQ(s.fault, DefinitionFault::none);
    EXPECT_EQ(s.content, "");
    EXPECT_EQ(s.loci, 0);
}

TEST(Definition, MicrosatellitesAreWholeNumbers) {
    Scanned const s = scan(profile_of(MICROSAT), "  183\t? -2   147 null");
    EXPECT_EQ(s.fault, DefinitionFault::none);
    EXPECT_EQ(s.content, "183 ? -2 147 null");
    EXPECT_EQ(s.loci, 5);
    for (char const* bad : {"183 14.5", "a", "1-2", "-", "12a"})
        EXPECT_EQ(scan(profile_of(MICROSAT), bad).fault, DefinitionFault::no_integer) << bad;
}

TEST(Definition, WordsAreJoinedByOneBlankWhateverTheSeparator) {
    EXPECT_EQ(scan(profile_of(MICROSAT, '/'), "183/147 /149").content, "183 147 149");
    Scanned const s = scan(profile_of(STANDARD, ';'), "A1;b_2;;?");
    EXPECT_EQ(s.content, "A1 b_2 ?");
    EXPECT_EQ(s.loci, 3);
    EXPECT_EQ(scan(profile_of(STANDARD), "A\x01").fault, DefinitionFault::character);
}

TEST(Definition, StandardDataWithoutSeparatorHaveOneCharacterALocus) {
    Scanned const s = scan(profile_of(STANDARD, 0), "AbC 1");
    EXPECT_EQ(s.content, "AbC1");
    EXPECT_EQ(s.loci, 4);
    DefinitionScanner const scanner(profile_of(STANDARD, 0));
    EXPECT_EQ(scanner.nb_loci("AbC1"), 4);
    EXPECT_EQ(DefinitionScanner(profile_of(STANDARD)).nb_loci("AbC 1"), 2);
    EXPECT_EQ(DefinitionScanner(profile_of(STANDARD)).nb_loci(""), 0);
}

TEST(Definition, DnaIsComparedWithoutCase) {
    EXPECT_TRUE(DefinitionScanner(profile_of(DNA, 0)).same("acGT", "ACgt"));
    EXPECT_FALSE(DefinitionScanner(profile_of(DNA, 0)).same("acGT", "ACgtA"));
    EXPECT_FALSE(DefinitionScanner(profile_of(STANDARD)).same("a b", "A b"));
}

TEST(Definition, SeparatorBecomesOneBlankForWords) {
    for (TDataType const type : {MICROSAT, STANDARD}) {
        ProfileSettings p = profile_of(type, '/');
        normalise_separator(p);
        EXPECT_EQ(p.LocusSeparator, ' ');
    }
    ProfileSettings standard = profile_of(STANDARD, 0), sizes = profile_of(MICROSAT, 0), dna = profile_of(DNA, '/');
    normalise_separator(standard);
    normalise_separator(sizes);
    normalise_separator(dna);
    EXPECT_EQ(standard.LocusSeparator, 0);
    EXPECT_EQ(sizes.LocusSeparator, ' ');
    EXPECT_EQ(dna.LocusSeparator, '/');
}

TEST(HaploDefReading, FillsTheContent) {
    ProfileSettings p = profile_of(DNA, 0);
    HaploDef h(my_string("H1"));
    my_string text(" ACGT");
    EXPECT_EQ(h.read_data(text, p), 1);
    EXPECT_EQ(h.content, "ACGT");
    std::istringstream is("ggg\nnext");
    EXPECT_EQ(h.read_data(is, p), 1);
    EXPECT_EQ(h.content, "ggg");
}

TEST(HaploDefReading, ReportsInvalidCharactersAndNumbers) {
    FreshProcess fresh;
    ProfileSettings dna = profile_of(DNA, 0), sizes = profile_of(MICROSAT);
    HaploDef h(my_string("H1"));
    my_string text("AC7");
    EXPECT_EQ(h.read_data(text, dna), 0);
    EXPECT_TRUE(has(fresh.log(), "\"HaploDef::read_data()\" : invalid character while reading phenotype"));
    text = "12 x";
    EXPECT_EQ(h.read_data(text, sizes), 0);
    EXPECT_TRUE(has(fresh.log(), "\"HaploDef::read_data()\" : microsatellite allele not coded as an integer value"));
    fresh.clear_log();
    text = "";
    EXPECT_EQ(h.read_data(text, dna), 0);
    EXPECT_EQ(fresh.log(), "");
    EXPECT_EQ(h.content, "");
}

TEST(PhenotypeReading, FillsOneChromosomeAfterTheOther) {
    TPhenotype individual;
    std::istringstream is("12 14\n13 15\nx\n");
    EXPECT_EQ(individual.read_data(is, MICROSAT, ' '), 1);
    EXPECT_EQ(individual.read_data(is, MICROSAT, ' '), 1);
    EXPECT_EQ(individual.allele_string(0), "12 14");
    EXPECT_EQ(individual.allele_string(1), "13 15");
    FreshProcess fresh;
    EXPECT_EQ(individual.read_data(is, MICROSAT, ' '), 0);
    EXPECT_TRUE(has(fresh.log(), "TPhenotype::read_data()"));
}

struct ListText {
    ListText(std::string const& text, std::string const& opening, bool external = false, TDataType type = DNA,
             char separator = '\0') {
        ProfileSettings p = profile_of(type, separator);
        std::istringstream is(text);
        line = 10;
        result = list.NewReadHaplotypeList(is, p, external, line, opening);
        log = fresh.log();
    }
    FreshProcess fresh;
    Haplo_DB list;
    int result = 0;
    int line = 0;
    std::string log;
};

TEST(HaplotypeList, IsReadUpToItsBrace) {
    ListText const t("H1 ACGT # one\n\n\tH2\tACGA\nH3 AAAA }\nrest\n", "HaplList={");
    EXPECT_EQ(t.result, 1);
    ASSERT_EQ(t.list.size(), 3);
    EXPECT_EQ(t.list[0].id, "H1");
    EXPECT_EQ(t.list[1].content, "ACGA");
    EXPECT_EQ(t.list[2].content, "AAAA");
    EXPECT_EQ(t.line, 14);
    EXPECT_EQ(t.log, "");
}

TEST(HaplotypeList, TheOpeningLineMayHoldTheFirstHaplotypeOrLackTheBrace) {
    ListText const same("H2 GGGG }", "HaplList={ H1 ACGT");
    EXPECT_EQ(same.result, 1);
    EXPECT_EQ(same.list.size(), 2);
    ListText const next("\n {\nH1 ACGT\n}", "HaplList=");
    EXPECT_EQ(next.result, 1);
    EXPECT_EQ(next.list.size(), 1);
    ListText const behind("{ H1 ACGT\n}", "HaplList=");
    EXPECT_EQ(behind.result, 1);
    EXPECT_EQ(behind.list.size(), 1);
}

TEST(HaplotypeList, WithoutOpeningBraceIsError40) {
    ListText const t("H1 ACGT\n}", "HaplList=");
    EXPECT_EQ(t.result, 0);
    EXPECT_TRUE(has(t.log, "\tUnable to read haplotype list, aborting reading procedure\n"));
    EXPECT_TRUE(has(t.log, "error while reading haplotype list"));
}

TEST(HaplotypeList, ASectionBeforeTheBraceStopsIt) {
    for (char const* section : {"[[DistanceMatrix]]", "[[Samples]]", "[[structure]]", "[[Mantel]]"}) {
        ListText const t(std::string("H1 ACGT\n") + section + "\n", "HaplList={");
        EXPECT_EQ(t.result, 0);
        EXPECT_TRUE(has(t.log, "\tMissing closing brace in Haplotype definition list, aborting reading procedure\n"));
    }
    ListText const end("H1 ACGT\n", "HaplList={");
    EXPECT_EQ(end.result, 0);
    EXPECT_TRUE(has(end.log, "\tMissing closing brace in Haplotype definition list"));
}

TEST(HaplotypeList, OneIdTwiceStopsIt) {
    ListText const t("H1 ACGT\nH1 ACGT\n}", "HaplList={");
    EXPECT_EQ(t.result, 0);
    EXPECT_TRUE(has(t.log,
                    "\tHaplotype \"H1\" listed on line 12 is already defined previously, aborting reading "
                    "procedure...\n"));
}

TEST(HaplotypeList, AnotherNumberOfLociStopsIt) {
    ListText const t("H1 ACGT\nH2 ACG\n}", "HaplList={");
    EXPECT_EQ(t.result, 0);
    EXPECT_TRUE(has(t.log,
                    "\tNumber of loci for haplotype \"H2\" is different (3) from that previously defined (4) on "
                    "line 12\n"));
}

TEST(HaplotypeList, ABadDefinitionStopsIt) {
    ListText const bad("H1 AC1T\n}", "HaplList={");
    EXPECT_EQ(bad.result, 0);
    EXPECT_TRUE(has(bad.log, "invalid character while reading phenotype"));
    EXPECT_TRUE(has(bad.log, "\tUnable to read haplotype definition on line 11, aborting reading procedure\n"));
    ListText const missing("H1\n}", "HaplList={");
    EXPECT_EQ(missing.result, 0);
    EXPECT_TRUE(has(missing.log, "\tUnable to read haplotype definition on line 11, aborting reading procedure\n"));
}

TEST(HaplotypeList, AFileOfItsOwnNeedsNoBraces) {
    ListText const t("H1 12 13\nH2 12 14\n", "", true, MICROSAT, ' ');
    EXPECT_EQ(t.result, 1);
    EXPECT_EQ(t.list.size(), 2);
    ListText const braces("{\nH1 12 13\n}\n", "", true, MICROSAT, ' ');
    EXPECT_EQ(braces.result, 1);
    EXPECT_EQ(braces.list.size(), 1);
}

}  // namespace
}  // namespace tov
