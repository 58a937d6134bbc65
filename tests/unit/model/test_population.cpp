// Samples: conversions, checks and pooling.
#include <gtest/gtest.h>

#include <sstream>

#include "base/dmat.h"
#include "input/settings.h"
#include "model/sample.h"
#include "model_fixture.h"

namespace tov {
namespace {

using test::ModelData;
using test::Reports;

void add_individual(Population& sample, char const* a, char const* b, double count = 1.0) {
    auto p = std::make_unique<TPhenotype>();
    p->set_obs_freq(count);
    p->allele_string(0) = my_string(a);
    p->allele_string(1) = my_string(b);
    sample.phenotypes.Add(p.release());
}

// A genotypic sample of microsatellites with blanks between loci.
void make_genotypic(Population& sample, TAlleleDB& db) {
    sample.profile.GenotypicData = 1;
    sample.profile.GameticPhase = 0;
    sample.profile.DataType = MICROSAT;
    sample.profile.LocusSeparator = ' ';
    sample.alleles = &db;
}

void add_haplotype(Population& sample, Haplo_DB& list, char const* id, char const* content, int copies) {
    HaploDef* h = list.find_id(my_string(id));
    if (!h) {
        h = new HaploDef(my_string(id), my_string(content));
        list.Add(h);
    }
    sample.haplotypes.Add(new PHaploDef(h, copies));
    sample.set_sample_size(sample.sample_size() + copies);
}

std::vector<std::string> entries(MY_TIArrayAsVector<PHaploDef> const& list) {
    std::vector<std::string> all;
    for (PHaploDef const* const h : list.view()) {
        all.push_back(h->name().str() + "=" + h->haplotype->content.str() + " x" + std::to_string(h->copies));
    }
    return all;
}

TEST(Population, SmallNameKeepsTheEndOfALongName) {
    auto const small = [](char const* name) { return Population(my_string(name)).get_small_name().str(); };
    EXPECT_EQ(small("Rome"), "Rome");
    EXPECT_EQ(small("Abcdefgh"), "Abcde");
    EXPECT_EQ(small("Abcdefghi"), "Abcdeghi");
    EXPECT_EQ(small("Sample number 17"), "Samplr17");
    EXPECT_EQ(small(""), "");
}

TEST(Population, InverseSizeOfAnEmptySampleIsZero) {
    Population p(my_string("x"), 4.0);
    EXPECT_DOUBLE_EQ(p.inverse_sample_size(), 0.25);
    p.set_sample_size(0.0);
    EXPECT_EQ(p.inverse_sample_size(), 0.0);
    EXPECT_EQ(p.pop_index(), -1);
    EXPECT_EQ(p.polymSite(3), 0);
}

TEST(Population, NumberOfLociIsReadFromTheFirstEntry) {
    Haplo_DB list;
    Population dna;
    dna.profile.LocusSeparator = '\0';
    EXPECT_EQ(dna.evaluate_nb_loci(), 0);
    add_haplotype(dna, list, "h", "ACGT", 1);
    EXPECT_EQ(dna.evaluate_nb_loci(), 4);
    TAlleleDB db;
    Population genotypic;
    make_genotypic(genotypic, db);
    add_individual(genotypic, "101  99 7 ", "1 2 3");
    EXPECT_EQ(genotypic.evaluate_nb_loci(), 3);
}

TEST(Population, PhasedIndividualsOfTheSameChromosomesShareTwoDefinitions) {
    ModelData data;
    Population sample;
    make_genotypic(sample, data.db);
    add_individual(sample, "1 2", "3 4");
    add_individual(sample, "1  2", "3 4", 2.0);
    Haplo_DB list;
    sample.phen_to_gam(&list, &sample.profile, nullptr);
    EXPECT_EQ(entries(sample.haplotypes), (std::vector<std::string>{"h1=1 2 x3", "h2=3 4 x3"}));
    EXPECT_EQ(sample.nb_diff_haplotypes, 2);
    EXPECT_EQ(sample.converted, 1);
    EXPECT_EQ(list[0].copies, 3);
    EXPECT_EQ(entries(sample.gene_copies),
              (std::vector<std::string>{"h1=1 2 x1", "h2=3 4 x1", "h1=1 2 x1", "h2=3 4 x1", "h1=1 2 x1", "h2=3 4 x1"}));
}

TEST(Population, HomozygousIndividualCountsTwiceAndDefinitionsAreSharedBetweenSamples) {
    ModelData data;
    Population one;
    Population two;
    make_genotypic(one, data.db);
    make_genotypic(two, data.db);
    add_individual(one, "1", "1");
    add_individual(two, "2", "1", 3.0);
    Haplo_DB list;
    one.phen_to_gam(&list, &one.profile, nullptr);
    two.phen_to_gam(&list, &two.profile, nullptr);
    EXPECT_EQ(entries(one.haplotypes), std::vector<std::string>{"h1=1 x2"});
    EXPECT_EQ(entries(two.haplotypes), (std::vector<std::string>{"h2=2 x3", "h1=1 x3"}));
    EXPECT_EQ(list[0].copies, 5);
}

TEST(Population, AlleleVectorsOfIndividualsAndTheirRepetition) {
    ModelData data;
    Population sample;
    make_genotypic(sample, data.db);
    add_individual(sample, "101 7", "99 7", 3.0);
    add_individual(sample, "99 7", "? 8", 1.0);
    sample.build_allele_vectors(' ');
    EXPECT_EQ(data.db.nb_loci(), 2);
    EXPECT_EQ(data.db(0, my_string("99"))->freq(), 4.0);
    EXPECT_EQ(data.db(1, my_string("7"))->freq(), 7.0);
    EXPECT_DOUBLE_EQ(sample.phenotypes.phenotype(0).rel_freq(), 0.75);
    sample.build_allele_vectors(' ');
    EXPECT_EQ(sample.phenotypes.phenotype(0).pheno_length(), 2);
    EXPECT_EQ(data.db(0, my_string("99"))->freq(), 8.0);
    sample.convertAlleleStringsToHaplotypes();
    EXPECT_EQ(data.db(0, my_string("99"))->freq(), 8.0);
    EXPECT_EQ(sample.phenotypes.phenotype(1).pseudo_hapl1(0)->name(), "?");
}

TEST(Population, BlanksStandFirstAtEveryLocusOnceADatabase) {
    ModelData data;
    Population sample;
    make_genotypic(sample, data.db);
    add_individual(sample, "1 2 3", "1 2 3");
    sample.make_all_blanks(' ');
    EXPECT_EQ(data.db.nb_loci(), 3);
    EXPECT_EQ(data.db(2, 0)->name(), "\x01");
    EXPECT_TRUE(data.db.is_unused_blank(2, 0));
    EXPECT_EQ(data.db.counter, 1);
    sample.profile.RecessiveData = 1;
    sample.make_all_blanks(' ');
    EXPECT_EQ(data.db.locus(0)->nb_alleles(), 1);
    data.db.destroy();
    sample.profile.RecessiveAllele = my_string("null");
    sample.make_all_blanks(' ');
    EXPECT_EQ(data.db(0, 0)->name(), "null");
    EXPECT_TRUE(Reports::codes().empty());
}

TEST(Population, BlanksOfEmptyDataAreReported) {
    ModelData data;
    Population sample;
    make_genotypic(sample, data.db);
    sample.make_all_blanks(' ');
    sample.profile.GenotypicData = 0;
    sample.make_all_blanks(' ');
    EXPECT_EQ(Reports::codes(), (std::vector<int>{152, 108}));
    EXPECT_EQ(data.db.nb_loci(), 0);
}

TEST(Population, BiallelicLocusWithABlankIsPolymorphic) {
    ModelData data;
    Population sample;
    make_genotypic(sample, data.db);
    add_individual(sample, "A A", "G A");
    add_individual(sample, "A ?", "A A");
    sample.make_all_blanks(' ');
    sample.build_allele_vectors(' ');
    EXPECT_TRUE(data.db.locus(0)->is_polymorph('?'));
    EXPECT_FALSE(data.db.locus(1)->is_polymorph('?'));
}

TEST(Population, AlleleFrequenciesAreThoseOfThisSampleAlone) {
    ModelData data;
    Population one;
    Population two;
    make_genotypic(one, data.db);
    make_genotypic(two, data.db);
    add_individual(one, "A X", "B X", 3.0);
    add_individual(one, "A X", "A Y");
    add_individual(two, "C Y", "C Y");
    one.build_allele_vectors(' ');
    two.build_allele_vectors(' ');
    one.update_allele_freq();
    EXPECT_DOUBLE_EQ(data.db(0, my_string("A"))->freq(), 5.0 / 8.0);
    EXPECT_DOUBLE_EQ(data.db(0, my_string("B"))->freq(), 3.0 / 8.0);
    EXPECT_EQ(data.db(0, my_string("C"))->freq(), 0.0);
    EXPECT_DOUBLE_EQ(data.db(1, my_string("Y"))->freq(), 1.0 / 8.0);
    two.update_allele_freq();
    EXPECT_EQ(data.db(0, my_string("A"))->freq(), 0.0);
    EXPECT_EQ(data.db(0, my_string("C"))->freq(), 1.0);
}

TEST(Population, AlleleFrequenciesOfHaplotypesAndOfNobody) {
    ModelData data;
    Haplo_DB list;
    Population sample;
    sample.alleles = &data.db;
    add_haplotype(sample, list, "a", "AC", 3);
    add_haplotype(sample, list, "b", "AG", 1);
    for (int i = 0; i < 2; ++i) list[i].build_haplovect(&data.db, '\0', 0, 1.0);
    sample.update_allele_freq();
    EXPECT_DOUBLE_EQ(data.db(1, my_string("C"))->freq(), 0.75);
    EXPECT_EQ(data.db(0, 0)->freq(), 1.0);
    for (PHaploDef* const h : sample.haplotypes.view()) h->copies = 0;
    sample.update_allele_freq();
    EXPECT_EQ(Reports::codes(), std::vector<int>{158});
}

TEST(Population, EstimatedPoolBecomesCountsWithoutEntriesBelowOneHalf) {
    ModelData data;
    Population sample(my_string("s"), 10.0);
    sample.profile.LocusSeparator = '\0';
    sample.pool.insert(data.haplotype("AB"), 0.66);
    sample.pool.insert(data.haplotype("ab"), 0.30);
    sample.pool.insert(data.haplotype("aB"), 0.04);
    Haplo_DB list;
    sample.h_pop_db_to_gam(&list, nullptr);
    EXPECT_EQ(entries(sample.haplotypes), (std::vector<std::string>{"h1=AB x7", "h2=ab x3"}));
    EXPECT_EQ(sample.nb_diff_haplotypes, 2);
    EXPECT_EQ(sample.sample_size(), 10.0);
    EXPECT_EQ(list[1].matrix_index, 1);
    EXPECT_EQ(list[0].nb_loci(), 2);
    MY_TIArrayAsVector<PHaploDef> target;
    sample.profile.LocusSeparator = ' ';
    Haplo_DB separated;
    sample.h_pop_db_to_gam(&separated, &target);
    EXPECT_EQ(entries(target), (std::vector<std::string>{"h1=A B x7", "h2=a b x3"}));
}

TEST(Samples, EstimatedPoolsShareTheirDefinitions) {
    ModelData data;
    Samples samples;
    for (double const share : {0.75, 0.25}) {
        auto sample = std::make_unique<Population>(my_string("s"), 8.0);
        sample->profile.LocusSeparator = '\0';
        sample->pool.insert(data.haplotype("AB"), share);
        sample->pool.insert(data.haplotype(share > 0.5 ? "ab" : "aB"), 1.0 - share);
        samples.Add(sample.release());
    }
    Haplo_DB list;
    samples.h_pop_db_to_gam(list);
    EXPECT_EQ(entries(samples[0]->haplotypes), (std::vector<std::string>{"h1=AB x6", "h2=ab x2"}));
    EXPECT_EQ(entries(samples[1]->haplotypes), (std::vector<std::string>{"h1=AB x2", "h3=aB x6"}));
    EXPECT_EQ(list.size(), 3);
    EXPECT_EQ(list[0].copies, 8);
}

TEST(Population, WholeListStandsForOneSample) {
    ModelData data;
    Haplo_DB list;
    list.Add(new HaploDef(my_string("a")));
    list.Add(new HaploDef(my_string("b")));
    list[0].copies = 2;
    list[1].copies = 5;
    Population sample;
    sample.haplotype_transf(list);
    EXPECT_EQ(entries(sample.haplotypes), (std::vector<std::string>{"a= x2", "b= x5"}));
    EXPECT_EQ(sample.sample_size(), 7.0);
    EXPECT_TRUE(Reports::codes().empty());
    sample.haplotype_transf(list);
    EXPECT_EQ(Reports::codes(), std::vector<int>{156});
    EXPECT_EQ(sample.nb_haplotypes(), 2);
}

TEST(Population, PoolingMergesByAllelicContentNotById) {
    ModelData data;
    Haplo_DB list;
    Population one;
    Population two;
    two.alleles = &data.db;
    add_haplotype(one, list, "a", "AC", 3);
    add_haplotype(two, list, "b", "AC", 2);
    add_haplotype(two, list, "c", "AG", 1);
    for (int i = 0; i < 3; ++i) list[i].build_haplovect(&data.db, '\0', 0, 1.0);
    one += two;
    EXPECT_EQ(entries(one.haplotypes), (std::vector<std::string>{"a=AC x5", "c=AG x1"}));
    EXPECT_EQ(one.sample_size(), 6.0);
    EXPECT_DOUBLE_EQ(one.inverse_sample_size(), 1.0 / 6.0);
    EXPECT_EQ(one.alleles, &data.db);
    EXPECT_EQ(one.nb_diff_haplotypes, 2);
}

TEST(Population, PoolingOfFrequenciesGoesByIdAndOfIndividualsCopiesThem) {
    ModelData data;
    Haplo_DB list;
    Population one;
    Population two;
    add_haplotype(one, list, "a", "", 3);
    add_haplotype(two, list, "b", "", 2);
    add_haplotype(two, list, "a", "", 1);
    add_individual(two, "1", "2", 4.0);
    one += two;
    EXPECT_EQ(entries(one.haplotypes), (std::vector<std::string>{"a= x4", "b= x2"}));
    ASSERT_EQ(one.phenotypes.size(), 1);
    EXPECT_EQ(one.phenotypes.phenotype(0).allele_string(1), "2");
    EXPECT_NE(&one.phenotypes.phenotype(0), &two.phenotypes.phenotype(0));
}

TEST(Population, CleaningLeavesNothingBehind) {
    ModelData data;
    Haplo_DB list;
    Population sample(my_string("x"), 5.0);
    add_haplotype(sample, list, "a", "A", 1);
    add_individual(sample, "A", "A");
    sample.pool.insert(data.haplotype("A"), 1.0);
    sample.polym_sites = {1};
    sample.use_gene_copy_list();
    sample.clean();
    EXPECT_EQ(sample.nb_haplotypes(), 0);
    EXPECT_EQ(sample.phenotypes.size(), 0);
    EXPECT_EQ(sample.pool.nb_haplotypes(), 0);
    EXPECT_FALSE(sample.polymorphism_known());
    EXPECT_EQ(sample.current_haplotypes, &sample.haplotypes);
    EXPECT_EQ(sample.pop_name(), "x");
    sample.initialize();
    EXPECT_TRUE(sample.pop_name().is_null());
    EXPECT_EQ(sample.sample_size(), 0.0);
}

// --- Samples ---

class SamplesOf : public ::testing::Test {
protected:
    Population& add_sample(char const* name) {
        samples.Add(new Population(my_string(name)));
        Population& p = *samples[samples.NbPopulations() - 1];
        p.alleles = &data.db;
        p.profile.LocusSeparator = '\0';
        return p;
    }
    void build() {
        for (int i = 0; i < list.size(); ++i) list[i].build_haplovect(&data.db, '\0', 0, 1.0);
    }
    ModelData data;
    Haplo_DB list;
    Samples samples;
};

TEST_F(SamplesOf, WhollyMissingHaplotypesLeaveTheirSample) {
    Population& one = add_sample("one");
    add_haplotype(one, list, "a", "A?", 3);
    add_haplotype(one, list, "m", "??", 2);
    one.nb_diff_haplotypes = 2;
    build();
    EXPECT_EQ(samples.verify_data(), 1);
    EXPECT_EQ(entries(one.haplotypes), std::vector<std::string>{"a=A? x3"});
    EXPECT_EQ(one.sample_size(), 3.0);
    EXPECT_EQ(one.nb_diff_haplotypes, 1);
}

TEST_F(SamplesOf, SampleOfMissingDataAloneFails) {
    Population& one = add_sample("one");
    add_haplotype(one, list, "m", "??", 2);
    build();
    EXPECT_EQ(samples.verify_data(), 0);
    EXPECT_EQ(Reports::codes(), std::vector<int>{108});
    EXPECT_EQ(Reports::origins().back(), "Samples::verify_data()");
}

TEST_F(SamplesOf, UnequalNumbersOfLociFail) {
    add_haplotype(add_sample("one"), list, "a", "AC", 3);
    Population& two = add_sample("two");
    add_haplotype(two, list, "b", "ACG", 3);
    build();
    EXPECT_EQ(samples.verify_data(), 0);
    EXPECT_EQ(Reports::codes(), std::vector<int>{71});
}

TEST_F(SamplesOf, WhollyMissingIndividualsLeaveTheirSample) {
    Population& one = add_sample("one");
    make_genotypic(one, data.db);
    add_individual(one, "1 2", "? ?");
    add_individual(one, "? ?", "? ?", 3.0);
    one.set_sample_size(8.0);
    samples.build_all_vectors(' ');
    EXPECT_EQ(samples.verify_data(), 1);
    EXPECT_EQ(one.phenotypes.size(), 1);
    EXPECT_EQ(one.sample_size(), 2.0);
}

TEST_F(SamplesOf, UnequalPhenotypesFail) {
    Population& one = add_sample("one");
    make_genotypic(one, data.db);
    add_individual(one, "1 2", "1 2");
    add_individual(one, "1 2 3", "1 2 3");
    samples.build_all_vectors(' ');
    EXPECT_EQ(samples.verify_data(), 0);
    EXPECT_EQ(Reports::codes(), std::vector<int>{69});
}

TEST_F(SamplesOf, FrequencyDataHaveNoLociToBeMissing) {
    add_haplotype(add_sample("one"), list, "a", "", 3);
    EXPECT_EQ(samples.verify_data(), 1);
    EXPECT_EQ(samples[0]->sample_size(), 3.0);
}

TEST_F(SamplesOf, DnaAloneGoesToUpperCase) {
    Population& one = add_sample("one");
    add_haplotype(one, list, "a", "acg-", 3);
    add_individual(one, "ac", "gt");
    samples.DataType = STANDARD;
    samples.convert_dna_upper(list);
    EXPECT_EQ(list[0].content, "acg-");
    samples.DataType = DNA;
    samples.convert_dna_upper(list);
    EXPECT_EQ(list[0].content, "ACG-");
    EXPECT_EQ(one.phenotypes.phenotype(0).allele_string(1), "GT");
    EXPECT_EQ(list.find(my_string("ACG-")), &list[0]);
}

TEST_F(SamplesOf, SeparatorsLeaveAllTexts) {
    Population& one = add_sample("one");
    add_haplotype(one, list, "a", "A C G", 3);
    add_individual(one, "A C", "G T");
    samples.LocusSeparator = ' ';
    samples.rm_separators(list);
    EXPECT_EQ(list[0].content, "ACG");
    EXPECT_EQ(one.phenotypes.phenotype(0).allele_string(0), "AC");
}

TEST_F(SamplesOf, CopiesAreSummedOverSamples) {
    add_haplotype(add_sample("one"), list, "a", "A", 3);
    Population& two = add_sample("two");
    add_haplotype(two, list, "a", "A", 4);
    add_haplotype(two, list, "b", "C", 1);
    list[0].copies = 99;
    samples.sum_copies(list);
    EXPECT_EQ(list[0].copies, 7);
    EXPECT_EQ(list[1].copies, 1);
}

TEST_F(SamplesOf, HaplotypesAtDistanceZeroMergeWithinTheirClass) {
    Population& one = add_sample("one");
    add_haplotype(one, list, "a", "AC", 3);
    add_haplotype(one, list, "b", "A?", 2);
    add_haplotype(one, list, "c", "AG", 1);
    samples.sum_copies(list);
    DistMat matrix(3);
    matrix(2, 0) = 1.0;
    int const classes[] = {0, 0, 2};
    std::ostringstream os;
    samples.print_out_haplo_cl(&os, matrix, &list, classes);
    EXPECT_EQ(os.str(),
              "\n\nHaplotype frequency distribution among the samples:\n"
              "===================================================\n\n"
              "Class Haplotypes         one\n1     a b                  5\n2     c                    1\n");
    samples.IdentifyIdenticalHaplotypes(&os, matrix, &list, classes);
    EXPECT_EQ(entries(one.haplotypes), (std::vector<std::string>{"a=AC x5", "c=AG x1"}));
    EXPECT_EQ(one.nb_original_haplotypes, 3);
    EXPECT_EQ(one.nb_diff_haplotypes, 2);
    EXPECT_EQ(list[0].copies, 5);
    int const wrong[] = {0, 7, 2};
    std::ostringstream fault;
    samples.print_out_haplo_cl(&fault, matrix, &list, wrong);
    EXPECT_NE(fault.str().find("\n\tSamples::print_out_haplo_cl(): inconsistent class found.\n"), std::string::npos);
    // Class 1 holds "a", and its own number stands in class 2.
    int const headless[] = {1, 2, 2};
    std::ostringstream other;
    samples.print_out_haplo_cl(&other, matrix, &list, headless);
    EXPECT_EQ(other.str(),
              "\n\nHaplotype frequency distribution among the samples:\n"
              "===================================================\n\n"
              "\n\tSamples::print_out_haplo_cl():the number of class separator is not right.\n");
}

TEST_F(SamplesOf, ClassesStandUnderTheWholeNamesOfTheSamples) {
    add_haplotype(add_sample("Northern lake"), list, "a", "AC", 3);
    add_haplotype(add_sample("Northern bay"), list, "b", "AG", 2);
    DistMat const matrix(2);
    std::ostringstream os;
    int const classes[] = {0, 1};
    samples.print_out_haplo_cl(&os, matrix, &list, classes);
    EXPECT_NE(os.str().find("Class Haplotypes    Northern lake  Northern bay\n"
                            "1     a                         3             0\n"
                            "2     b                         0             2\n"),
              std::string::npos)
        << os.str();
}

TEST_F(SamplesOf, SharedHaplotypesAreListed) {
    Population& one = add_sample("one");
    add_haplotype(one, list, "a", "AC", 3);
    Population& two = add_sample("two");
    add_haplotype(two, list, "b", "A?", 1);
    add_haplotype(two, list, "c", "TT", 1);
    DistMat matrix(3);
    matrix(2, 0) = matrix(2, 1) = 2.0;
    list.associate_with2(matrix);
    std::ostringstream os;
    one.print_out_redondant(os, two, matrix);
    EXPECT_EQ(os.str(), "\nShared with two:\n\ta\tb\n");
    two.haplotypes.Detach(0);
    std::ostringstream none;
    one.print_out_redondant(none, two, matrix);
    EXPECT_EQ(none.str(), "\nShared with two:\n\tnone\n");
}

TEST_F(SamplesOf, CoordinatesAreScaledFromTheOrigin) {
    add_sample("one").init_front_settings(10.0, -20.0);
    add_sample("two").init_front_settings(40.0, 20.0);
    samples.calc_geo_dist();
    EXPECT_DOUBLE_EQ(samples.geo_distances[1], 50.0);
    EXPECT_DOUBLE_EQ(samples.geo_distances[2], 50.0);
    EXPECT_EQ(samples.geo_distances[0], 0.0);
    samples.normalize_coord();
    EXPECT_DOUBLE_EQ(samples[0]->longitude(), 0.25);
    EXPECT_DOUBLE_EQ(samples[0]->latitude(), 0.0);
    EXPECT_DOUBLE_EQ(samples[1]->latitude(), 1.0);
}

TEST_F(SamplesOf, SectionOfAProjectFile) {
    add_haplotype(add_sample("one"), list, "a", "AC", 3);
    std::ostringstream os;
    os << samples;
    EXPECT_EQ(os.str(),
              "\n\t[[Samples]]\n\n\t\tSampleName=\"one\"\n\t\tSampleSize=3\n\t\tSampleData={\n\t\t\ta\t3\tAC\n\t\t}\n");
}

TEST_F(SamplesOf, SizesAndCountsAreWrittenWithAllDigits) {
    add_haplotype(add_sample("one"), list, "a", "AC", 1234567);
    std::ostringstream os;
    os << samples;
    EXPECT_NE(os.str().find("SampleSize=1234567\n"), std::string::npos) << os.str();
    Samples genotypic;
    genotypic.GenotypicData = 1;
    genotypic.Add(new Population(my_string("two")));
    add_individual(*genotypic[0], "1 2", "1 3", 1234567.5);
    genotypic[0]->set_sample_size(2469135.0);
    std::ostringstream individuals;
    individuals << genotypic << 1.0 / 3.0;
    EXPECT_NE(individuals.str().find("SampleSize=1234567.5\n"), std::string::npos) << individuals.str();
    EXPECT_NE(individuals.str().find("\t1234567.5\t1 2\n"), std::string::npos) << individuals.str();
    EXPECT_TRUE(individuals.str().ends_with("}\n0.333333")) << "the stream's own precision is back";
}

TEST_F(SamplesOf, MoreIndividualsThanMemoryHoldsAreNotTurnedIntoHaplotypes) {
    for (char const* const name : {"one", "two"}) {
        Population& sample = add_sample(name);
        make_genotypic(sample, data.db);
        add_individual(sample, "1", "2", most_individuals / 2 + 1);
    }
    EXPECT_THROW(samples.phen_to_gam(list, nullptr, nullptr), ExceptionType);
    EXPECT_EQ(Reports::codes(), std::vector<int>{0});
    EXPECT_EQ(Reports::origins(), std::vector<std::string>{"Samples::phen_to_gam()"});
    EXPECT_EQ(list.size(), 0);
}

class CountingPopulation : public Population {
public:
    explicit CountingPopulation(std::vector<std::string>& calls, char const* name)
        : Population(my_string(name)), calls_(calls) {}
    void test_methods(settings& s) override {
        calls_.push_back(pop_name().str() + std::to_string(pop_index()));
        if (pop_name() == "stops") s.stop = 1;
    }

private:
    std::vector<std::string>& calls_;
};

TEST(SamplesRun, EverySampleRunsInOrderUntilAStop) {
    ModelData data;
    std::vector<std::string> calls;
    Samples samples;
    for (char const* const name : {"a", "stops", "c"}) samples.Add(new CountingPopulation(calls, name));
    data.db.InsertAllPos(0, my_string("A"), 1.0);
    samples.init_all_pointers(&data.db);
    settings s;
    samples.compute_stuff(s);
    EXPECT_EQ(calls, (std::vector<std::string>{"a0", "stops1"}));
    EXPECT_EQ(numSamplesAnalysed, 2);
    EXPECT_EQ(TAllele::numPop, 3);
    EXPECT_NE(data.db(0, 0)->pop_freq(), nullptr);
}

TEST(SamplesRun, WorkGrowsWithTheTasks) {
    ModelData data;
    data.process.keep(settings::global_work_to_do);
    Haplo_DB list;
    Samples samples;
    samples.Add(new Population(my_string("one")));
    add_haplotype(*samples[0], list, "a", "ACGT", 3);
    samples[0]->profile.LocusSeparator = '\0';
    settings s;
    s.TaskNumber = 0;
    samples.evaluate_work(s);
    EXPECT_EQ(settings::to_do_work(), 0.0);
    s.TaskNumber = task::linkage_disequilibrium;
    samples.evaluate_work(s);
    double const once = settings::to_do_work();
    EXPECT_GT(once, 0.0);
    s.TaskNumber |= task::amova;
    samples.evaluate_work(s);
    EXPECT_GT(settings::to_do_work(), once);
}

}  // namespace
}  // namespace tov
