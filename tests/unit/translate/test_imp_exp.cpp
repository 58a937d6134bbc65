#include <gtest/gtest.h>

#include <regex>

#include "base/timing.h"
#include "model/sample.h"
#include "translate/imp_exp.h"
#include "translate_fixture.h"

using namespace tov;
using namespace tov::test;

namespace {

std::unique_ptr<std::ofstream> file(std::string const& name) { return std::make_unique<std::ofstream>(name); }

constexpr char genepop[] = "t\nL1\nPop\nA1, 0102\n";

}  // namespace

TEST(ImpExp, FormatsHaveTheirNumbers) {
    EXPECT_EQ(imp_exp::format_number("Genepop"), 1);
    EXPECT_EQ(imp_exp::format_number("Phylip"), 2);
    EXPECT_EQ(imp_exp::format_number("Mega"), 3);
    EXPECT_EQ(imp_exp::format_number("Biosys"), 4);
    EXPECT_EQ(imp_exp::format_number("Zentara"), 5);
    EXPECT_EQ(imp_exp::format_number("Tovenia"), 7);
    EXPECT_EQ(imp_exp::format_number("genepop"), imp_exp::unknown);
    EXPECT_EQ(imp_exp::format_number(""), imp_exp::unknown);
}

TEST(ImpExp, TheDiploidFlagIsOffAtFirst) { EXPECT_EQ(imp_exp().diploid, 0); }

TEST(ImpExp, BlankLinesAreKnown) {
    EXPECT_TRUE(imp_exp::is_line_blank(""));
    EXPECT_TRUE(imp_exp::is_line_blank(" \t\r"));
    EXPECT_FALSE(imp_exp::is_line_blank(" x"));
    char line[] = "a b \r";
    EXPECT_TRUE(imp_exp::is_line_blank_rm(line));
    EXPECT_STREQ(line, "a b");
    char blank[] = " \r";
    EXPECT_FALSE(imp_exp::is_line_blank_rm(blank));
    EXPECT_STREQ(blank, "");
}

TEST(ImpExp, ImportBeginsWithTimeSourceAndFormat) {
    Export context;
    context.directory.write("in.gen", genepop);
    imp_exp translator;
    translator.diploid = 1;
    translator.import_data(imp_exp::genepop, "in.gen", "mid.tvp", file("mid.tvp"));
    std::string const project = context.directory.read("mid.tvp");
    EXPECT_TRUE(
        std::regex_search(project, std::regex("^#File created by Tovenia translator on \\d\\d/\\d\\d/19\\d\\d at "
                                              "\\d\\d:\\d\\d:\\d\\d\\)\n#The input file was \"in\\.gen\"  with "
                                              "format \"GenePop\" \n\\[Profile\\]\n")))
        << project;
    EXPECT_EQ(context.fresh.log(), "\tReading  in.gen ...\n\tdone.\n");
}

TEST(ImpExp, TheHeadNamesEveryFormatAndTheYearOfThisCenturyInTheLast) {
    std::pair<int, char const*> const formats[] = {
        {1, "\"GenePop\" "}, {2, "\"Phylip\" "}, {3, "\"Mega\" "}, {4, "\"Biosys\" "}, {5, "\"Zentara\" "}};
    std::string const year = local_time_text("%d/%m/19%y at ");
    for (auto const& [format, name] : formats) {
        Export context;
        imp_exp translator;
        translator.import_data(format, "none", "mid.tvp", file("mid.tvp"));
        std::string const project = context.directory.read("mid.tvp");
        EXPECT_TRUE(project.starts_with("#File created by Tovenia translator on " + year)) << project;
        EXPECT_TRUE(holds(project, ")\n#The input file was \"none\"  with format " + std::string(name) + "\n"))
            << project;
    }
}

TEST(ImpExp, ANameOf400CharactersLeavesTheOneBefore) {
    Export context;
    context.directory.write("in.gen", genepop);
    imp_exp translator;
    translator.import_data(imp_exp::genepop, "in.gen", "a", file("a"));
    translator.import_data(imp_exp::genepop, std::string(400, 'x').c_str(), "b", file("b"));
    EXPECT_TRUE(holds(context.directory.read("b"), "#The input file was \"in.gen\""));
    EXPECT_EQ(count_of(context.fresh.log(), "\tReading  in.gen ...\n"), 2);
    translator.import_data(imp_exp::genepop, std::string(399, 'y').c_str(), "c", file("c"));
    EXPECT_TRUE(holds(context.fresh.log(), "\tReading  " + std::string(399, 'y') + " ...\n"));
}

TEST(ImpExp, AMissingSourceIsToldAndGivesAProjectThatFails) {
    for (int format : {1, 2, 3, 4, 5}) {
        Export context;
        imp_exp translator;
        translator.import_data(format, "none", "mid.tvp", file("mid.tvp"));
        EXPECT_TRUE(holds(context.fresh.log(), "\t\tUnable to open the file none\n"));
        EXPECT_TRUE(fails_when_read(context.directory.read("mid.tvp")));
    }
}

TEST(ImpExp, AProjectIsImportedCleaned) {
    Export context;
    context.directory.write("d.tvp",
                            "# head\n" + profile_text("DNA") + "[[Samples]]\n" + sample_text("S", "1", "h\t 1\tAC\n"));
    Project project;
    imp_exp translator;
    translator.project = &project;
    translator.import_data(imp_exp::tovenia, "d.tvp", "mid.tvp", file("mid.tvp"));
    std::string const copy = context.directory.read("mid.tvp");
    EXPECT_TRUE(copy.starts_with("\n[Profile]\n"));
    EXPECT_TRUE(holds(copy, "\nh 1 AC\n"));
    EXPECT_FALSE(context.directory.has("d.res"));
}

TEST(ImpExp, AMissingProjectIsTold) {
    Export context;
    Project project;
    imp_exp translator;
    translator.project = &project;
    translator.import_data(imp_exp::tovenia, "none.tvp", "mid.tvp", file("mid.tvp"));
    EXPECT_EQ(context.fresh.log(),
              "\tReading  none.tvp ...\n\nAn error has occurred while cleaning-up the project...\nnone.tvp\n\tdone.\n");
}

TEST(ImpExp, ExternalFilesAreFoundFromTheCopy) {
    Export context;
    std::filesystem::create_directory("d");
    context.directory.write(
        "d/p.tvp", profile_text("DNA") + "[[Samples]]\nSampleName=\"S\"\nSampleSize=2\nSampleData= EXTERN \"s.dat\"\n");
    context.directory.write("d/s.dat", "h1 1 ACGT # one\nh2\t1\tACGA\n");
    Project project;
    imp_exp translator;
    translator.project = &project;
    translator.import_data(imp_exp::tovenia, "d/p.tvp", "mid.tvp", file("mid.tvp"));
    translator.export_data(imp_exp::phylip, "mid.tvp", "out", file("out"));
    EXPECT_EQ(context.directory.read("out"), "2 4\nh11       ACGT\nh22       ACGA\n") << context.fresh.log();
}

TEST(ImpExp, ExportToAProjectCopiesItWhateverItHolds) {
    Export context;
    std::string const text = "[Profile]\n# error in definition of allele 01010\nno project";
    EXPECT_EQ(context.write(imp_exp::tovenia, text), text + "\n");
    EXPECT_TRUE(holds(context.fresh.log(), "\t\tTranslator is unable to open the Tovenia File\n"));
    EXPECT_TRUE(holds(context.fresh.log(), "    Writing  out... done.\n"));
}

TEST(ImpExp, AProjectThatCantBeOpenedLeavesForeignFilesEmpty) {
    std::string const text = profile_text("DNA", 2) + "[[Samples]]\n" + sample_text("S", "1", "h 1 AC\n") +
                             "SampleName=\"T\"\nSampleData={\nx";
    for (int format : {1, 2, 3, 4, 5}) {
        Export context;
        EXPECT_EQ(context.write(format, text), "");
        EXPECT_TRUE(holds(context.fresh.log(), "\t\tTranslator is unable to open the Tovenia File\n"));
        EXPECT_FALSE(holds(context.fresh.log(), "done."));
    }
}

TEST(ImpExp, SamplesWithoutAnyEntryAreNotWritten) {
    Export context;
    EXPECT_EQ(context.write(imp_exp::phylip, profile_text("DNA") + "[[Samples]]\n" + sample_text("S", "0", "")), "");
    EXPECT_TRUE(holds(context.fresh.log(), "\t\tThe file holds no data, nothing is written\n"));
}

TEST(ImpExp, ExportRestoresTheSettingsAndEmptiesTheProject) {
    Export context;
    context.directory.write(
        "p.tvp", genotypic_profile_text("STANDARD", 1) + "[[Samples]]\n" + sample_text("S", "1", "i 1 a b\na c\n"));
    Project project;
    project.p_set().TaskNumber = 3;
    project.p_set().InitialConditionsEM = 17;
    project.p_set().NumBootstrapReplicatesEM = 19;
    imp_exp translator;
    translator.project = &project;
    translator.export_data(imp_exp::biosys, "p.tvp", "out", file("out"));
    EXPECT_EQ(project.p_set().TaskNumber, 3);
    EXPECT_EQ(project.p_set().InitialConditionsEM, 17);
    EXPECT_EQ(project.p_set().NumBootstrapReplicatesEM, 19);
    EXPECT_TRUE(project.p_sam().IsEmpty());
    EXPECT_FALSE(context.directory.has("trans_out.txt"));
    EXPECT_TRUE(context.directory.has("p.tvp"));
    EXPECT_TRUE(holds(context.directory.read("out"), "i          aa bc\n"));
}

TEST(ImpExp, ATargetThatCantBeWrittenIsTold) {
    Export context;
    context.directory.write("p.tvp", profile_text("DNA") + "[[Samples]]\n" + sample_text("S", "1", "h 1 AC\n"));
    Project project;
    imp_exp translator;
    translator.project = &project;
    translator.export_data(imp_exp::phylip, "p.tvp", "none/out", file("none/out"));
    EXPECT_TRUE(holds(context.fresh.log(), "\t\tUnable to write the file none/out\n"));
}

TEST(ImpExp, ItsWorkingFilesAreKnownByAnyName) {
    Export context;
    EXPECT_TRUE(is_working_file("dum_tov.tvp", ""));
    EXPECT_TRUE(is_working_file("./x/../dum_tov.tvp", ""));
    EXPECT_TRUE(is_working_file("d/dum_tov.tvp", "d/"));
    EXPECT_TRUE(is_working_file("trans_out.txt", "d/"));
    EXPECT_FALSE(is_working_file("d/dum_tov.tvp", "e/"));
    EXPECT_FALSE(is_working_file("p.tvp", ""));
}
