// The section [[Structure]], and the structure itself.
#include <gtest/gtest.h>

#include <sstream>

#include "support/project_text.h"
#include "support/scratch_directory.h"

namespace tov {
namespace {

using test::profile_text;
using test::ProjectText;
using test::sample_text;
using test::ScratchDirectory;

/// Samples a, b, c, d; the section's first line is line 30.
std::string project_with(std::string const& section) {
    std::string text = profile_text("DNA", 4) + "[[Samples]]\n";
    for (char const* name : {"a", "b", "c", "d"}) text += sample_text(name, "1", "H1 1 ACGT\n");
    return text + "[[Structure]]\n" + section;
}

TEST(StructureReading, GroupsHoldSamplesInOrder) {
    ProjectText const t(
        project_with("StructureName=\"two # groups\"\nNbGroups=2\n# note\nGroup={\n\"b\" \"a\"\n}\n"
                     "Group={\n\"d\" # not c\n}\n"));
    EXPECT_TRUE(t.logs("Opened quote not closed"));  // the comment sign cuts the name
    EXPECT_TRUE(t.logs("\tWarning: Bad value assigned to StructureName on line 31\n"));
    EXPECT_TRUE(t.logs("invalid value assigned to \"StructureName\""));
    ASSERT_EQ(t.result, 1) << t.log;
    ASSERT_EQ(t.structure.nb_groups(), 2);
    EXPECT_EQ(t.structure.nb_samples(), 3);
    EXPECT_EQ(t.structure.group(0).sample_names[0], "b");
    EXPECT_EQ(t.structure.group(0).sample_indexes[0], 1);
    EXPECT_EQ(t.structure.population(0, 1), t.samples[0]);
    EXPECT_EQ(t.structure.population(1, 0), t.samples[3]);
    EXPECT_EQ(t.structure.all_populations().size(), 3u);
    EXPECT_EQ(t.structure.DataType, DNA);
}

TEST(StructureReading, NameBracesAndQuotesInEveryForm) {
    ProjectText const t(project_with("StructureName='s'\nNbGroups=2\nGroup=\n{ 'a' \"b\" }\nGroup={ \"c\"}\n"));
    ASSERT_EQ(t.result, 1) << t.log;
    EXPECT_EQ(t.structure.name, "s");
    EXPECT_EQ(t.structure.group(0).nb_samples(), 2);
    EXPECT_EQ(t.structure.group(1).nb_samples(), 1);
}

TEST(StructureReading, WithoutASectionTheStructureIsEmpty) {
    ProjectText const t(profile_text("DNA") + "[[Samples]]\n" + sample_text("a", "1", "H1 1 ACGT\n"));
    ASSERT_EQ(t.result, 1) << t.log;
    EXPECT_EQ(t.structure.nb_groups(), 0);
    EXPECT_EQ(t.structure.nb_samples(), 0);
}

TEST(StructureReading, BeforeTheSamplesItIsRefused) {
    ProjectText const t(profile_text("DNA") + "[[Structure]]\nNbGroups=1\n");
    EXPECT_EQ(t.result, 0);
    EXPECT_TRUE(t.logs("Line #9"));
    EXPECT_TRUE(t.logs("[STRUCTURE] section defined before the [SAMPLES] section. Aborting reading project"));
}

TEST(StructureReading, AnExternalDefinitionIsPassedOver) {
    ProjectText const t(project_with("StructureName= EXTERN \"file\"\nNbGroups=9\nGroup={\n\"nobody\"\n}\n"));
    EXPECT_EQ(t.result, 1) << t.log;
    EXPECT_TRUE(t.logs("External definition of the \"Genetic Structure\" is not supported anymore in ver 3"));
    EXPECT_TRUE(
        t.logs("\tWarning: External definition of the GENETIC STRUCTURE is not possible anymore.\n"
               "\tPlease incorporate it into the project. Skipping reading of the Genetic structure.\n"));
    EXPECT_EQ(t.structure.nb_groups(), 0);
    EXPECT_FALSE(t.logs("\"NbGroups\" not found"));
}

TEST(StructureReading, ANameThatHoldsTheWordExternIsANameAllTheSame) {
    ProjectText const t(project_with("StructureName=\"external\"\nNbGroups=1\nGroup={\"a\"}\n"));
    EXPECT_EQ(t.result, 1) << t.log;
    EXPECT_EQ(t.structure.name, "external");
}

TEST(StructureReading, ABadNumberOfGroupsIsError47) {
    ProjectText const t(project_with("NbGroups=two\nGroup={\"a\"}\n"));
    EXPECT_EQ(t.result, 0);
    EXPECT_TRUE(t.logs("invalid value assigned to \"NbGroups\""));
    EXPECT_TRUE(t.logs("Line #31 : Bad value after keyword 'NbGroups'"));
    EXPECT_TRUE(t.logs("\tProblems in reading Structure section... aborting reading  project file.\n"));
}

TEST(StructureReading, ObsoleteKeysAreWarnings) {
    ProjectText const t(project_with("NbGroups=1\nDistMatLabel=\"x\"\nIndividualLevel=0\nGroup={\"a\"}\n"));
    EXPECT_EQ(t.result, 1) << t.log;
    EXPECT_TRUE(t.logs("\tWarning: Keyword \"DistMatLabel\" is obsolete. Skipping keyword.\n"));
    EXPECT_TRUE(
        t.logs("\tWarning: Keyword \"IndividualLevel\" defined on line 33 is obsolete. Activation of this option "
               "is now made through the interface.\n"));
}

TEST(StructureReading, GroupFaults) {
    struct Case {
        char const *section, *message, *report;
    };
    for (Case const& c : {
             Case{
                 "Group={\"a\"}\n",
                 "\tError: Unexpected \"Group\" section found on line 31. Expected number of group is zero. Check that "
                 "\"NbGroups\" has been previously defined. Aborting reading project.\n",
                 ""},
             Case{"NbGroups=1\nGroup=\n\"a\"\n}\n",
                  "\tError: Missing opening brace in Group #1. Aborting reading project\n", ""},
             Case{"NbGroups=1\nGroup={\n\"a\"\n",
                  "\tError: Missing closing brace in Group #1. Aborting reading project\n",
                  "missing closing brace for group definition"},
             Case{"NbGroups=1\nGroup={\n\"a\"\n[[Mantel]]\n",
                  "\tError: Missing closing brace in Group #1. Aborting reading project\n",
                  "missing closing brace for group definition"},
             Case{
                 "NbGroups=1\nGroup={\n\"a\"\n\"z\"\n}\n",
                 "\tError: Sample \"z\" defined in Group #1 on line 34 has not been defined in the [Samples] section.\n"
                 "\tAborting reading project.\n",
                 "unknown sample name"},
             Case{"NbGroups=2\nGroup={\"a\" \"b\"}\nGroup={\"c\"\n\"a\"}\n",
                  "\tError: Sample \"a\" defined in Group #2 on line 34 has been alredy included in group #1.\n",
                  "sample included twice in a group"},
             Case{"NbGroups=1\nGroup={\n a b\n}\n",
                  "\t\tError while exploring structure of Group # 1. It does not contain any population sample\n"
                  "\t\t\tCheck your [[Structure]] section, for unquoted sample names\n"
                  "\t\tAborting reading project.\n",
                  "group does not contain any population sample"},
             Case{"NbGroups=2\nGroup={\"a\"}\nGroup={\"b\"}\nGroup={\"c\"}\n",
                  "\tInvalid number of groups defined. 2were expected, while 3 have been found!\n"
                  "\tCheck your [[Structure]] section, for missing group or unquoted sample names\n",
                  ""},
             Case{"NbGroups=2\nGroup={\"a\"}\n",
                  "\tInvalid number of groups defined. 2were expected, while 1 have been found!\n", ""},
         }) {
        ProjectText const t(project_with(c.section));
        EXPECT_EQ(t.result, 0) << c.section;
        EXPECT_TRUE(t.logs(c.message)) << c.section << " gave " << t.log;
        EXPECT_TRUE(t.logs(c.report)) << c.section << " gave " << t.log;
    }
}

TEST(StructureReading, AnUnclosedQuoteHidesTheRestOfItsLine) {
    ProjectText const t(project_with("NbGroups=1\nGroup={\n\"a\" \"b\n}\n"));
    EXPECT_EQ(t.result, 1) << t.log;
    EXPECT_EQ(t.structure.nb_samples(), 1);
}

TEST(StructureReading, MissingKeysAreToldInTheEnd) {
    ProjectText const t(project_with("StructureName=\"x\"\n"));
    EXPECT_EQ(t.result, 0);
    EXPECT_TRUE(
        t.logs("\tKeyword \"NbGroups\" not found in Structure section. Unknown number of groups to read. Check "
               "your project file.\n"));
    EXPECT_TRUE(
        t.logs("\tKeyword \"Group\" not found in Structure section. No groups definition could be read. Check "
               "your project file.\n"));
    EXPECT_TRUE(t.logs("missing required keywords definition in project file"));
}

TEST(Structure, IsWrittenInProjectFileFormAndPrintedEscaped) {
    ProjectText const t(profile_text("DNA", 2) + "[[Samples]]\n" + sample_text("a<b", "1", "H1 1 ACGT\n") +
                        sample_text("c", "1", "H1 1 ACGT\n") +
                        "[[Structure]]\nStructureName=\"s\"\nNbGroups=2\nGroup={\"a<b\"}\nGroup={\"c\"}\n");
    ASSERT_EQ(t.result, 1) << t.log;
    std::ostringstream file, document;
    file << t.structure;
    EXPECT_EQ(
        file.str(),
        "\n\t[[Structure]]\n\n\t\tStructureName = \"s\"\n\t\tNbGroups = 2\n\t#Group1\n\t\tGroup={\n\t\t\"a<b\"\n\t\t}\n"
        "\t#Group2\n\t\tGroup={\n\t\t\"c\"\n\t\t}\n");
    t.structure.print_structure(document);
    EXPECT_EQ(
        document.str(),
        "\n\nGenetic structure to test :\n---------------------------\nNo. of Groups = 2\n\t#Group1\n\t\tGroup={\n"
        "\t\t\"a&lt;b\"\n\t\t}\n\t#Group2\n\t\tGroup={\n\t\t\"c\"\n\t\t}\n");
}

TEST(Structure, GroupsAreMergedInOrder) {
    ProjectText t(project_with("StructureName=\"s\"\nNbGroups=3\nGroup={\"d\"}\nGroup={\"a\" \"c\"}\nGroup={\"b\"}\n"));
    ASSERT_EQ(t.result, 1) << t.log;
    t.structure.merge_groups();
    ASSERT_EQ(t.structure.nb_groups(), 1);
    ASSERT_EQ(t.structure.nb_samples(), 4);
    EXPECT_EQ(t.structure.group(0).sample_names[0], "d");
    EXPECT_EQ(t.structure.group(0).sample_names[2], "c");
    EXPECT_EQ(t.structure.population(0, 3), t.samples[1]);
}

TEST(Structure, OfOneLocusHasTheSameGroups) {
    ProjectText const t(project_with("StructureName=\"s\"\nNbGroups=2\nGroup={\"d\"}\nGroup={\"a\" \"c\"}\n"));
    ASSERT_EQ(t.result, 1) << t.log;
    Samples one_locus;
    for (Population const* population : t.structure.all_populations()) {
        std::unique_ptr<Population> copy = new_population(DNA);
        copy->set_name(population->pop_name());
        one_locus.Add(copy.release());
    }
    Structure built;
    t.structure.build_one_loci_str(&one_locus, &built);
    ASSERT_EQ(built.nb_groups(), 2);
    EXPECT_EQ(built.name, "s");
    EXPECT_EQ(built.DataType, DNA);
    EXPECT_EQ(built.population(0, 0), one_locus[0]);
    EXPECT_EQ(built.population(1, 1), one_locus[2]);
    EXPECT_EQ(built.group(1).sample_names[1], "c");
}

TEST(Structure, ExploreWritesTheGroups) {
    ScratchDirectory scratch;
    Structure structure;
    std::istringstream is("StructureName=\"s\"\nNbGroups=2\nGroup={\n\"a\" \"b\"\n}\nGroup={\"c\"}\n[[Mantel]]\n");
    EXPECT_EQ(structure.explore(is, "groups.txt"), 1);
    EXPECT_EQ(scratch.read("groups.txt"), "2\n2\na\nb\n1\nc\n");
    EXPECT_EQ(structure.nb_groups(), 2);
    EXPECT_EQ(structure.name, "s");
    std::istringstream again("");
    EXPECT_EQ(structure.explore(again, "no_such_directory/groups.txt"), 0);
}

}  // namespace
}  // namespace tov
