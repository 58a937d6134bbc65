// Project: the steps of one run, one function each, in the order of their calls.
#include <cstdio>
#include <ctime>
#include <fstream>
#include <ios>
#include <iterator>
#include <string>

#include "base/dmat.h"
#include "base/scoped_swap.h"
#include "base/timing.h"
#include "diversity/popgen.h"
#include "input/cleaner.h"
#include "input/settings.h"
#include "model/alldb.h"
#include "model/hapldb.h"
#include "model/sample.h"
#include "model/struct.h"
#include "output/html_out.h"
#include "output/references.h"
#include "output/style.h"
#include "output/sumstat.h"
#include "output/table.h"
#include "output/xml.h"
#include "run/errors.h"
#include "run/paths.h"
#include "run/project.h"
#include "structure/amova_results.h"
#include "structure/pairdist.h"

namespace tov {
namespace {

std::string without_blanks(std::string text) {
    std::erase(text, ' ');
    return text;
}

/// Hours, minutes, seconds and milliseconds of a span.
void print_span(std::ostream& out, int ms) {
    out << ms / 3600000 << "h " << ms / 60000 % 60 << "m " << ms / 1000 % 60 << "s " << ms % 1000 << " ms\n";
}

std::string const slashes(68, '/');

}  // namespace

/// What one run keeps from its first to its last step.
struct Project::RunFrame {
    explicit RunFrame(settings& s) : set(s) {}
    /// Whatever way a run ends, no dangling document and no cleaned copy stays behind. A document that is still open
    /// belongs to a run that ran out of memory.
    ~RunFrame() {
        if (document.is_open()) print_results_footer(document, set.XMLOutput != 0);
        cleaned.rm_clean_files();
        set.set_ofs(nullptr);
        E.results = nullptr;
    }
    RunFrame(RunFrame const&) = delete;
    RunFrame& operator=(RunFrame const&) = delete;

    settings& set;  // borrowed
    cleaner cleaned;
    std::string project_file;  ///< as the run list names it
    std::fstream document;
    bool document_existed = false;
    bool appended = false;  ///< the document goes on behind an earlier run
    std::string start_time;
    char locus_separator = 0;  ///< of the profile, before the checks
};

int Project::run() {
    xmlOutput = settings_->XMLOutput != 0;
    if (!projectValid) {
        *_AOS_ << "\n No valid project is opened....\n";
        return 0;
    }
    RunFrame frame(*settings_);
    sum_stat().drop_line();
    if (!clean_input(frame)) return 0;
    open_result_document(frame);
    begin_document(frame);
    print_run_banner(frame);
    if (!read_project()) return abandon_run(frame);
    prepare_data();
    print_project_information();
    if (!check_tasks(frame)) return abandon_run(frame);
    clear_impossible_individual_level();
    run_group_level();
    run_sample_level();
    detect_selection();
    write_chosen_statistics();
    end_run(frame);
    return 1;
}

bool Project::clean_input(RunFrame& frame) {
    frame.project_file = settings::input_file;
    if (!file_opens(settings::input_file)) {
        E.error(ErrorType::Error, "Project::explore()", 126);
        return false;
    }
    // The profile of an earlier project must not rule how this one is cleaned.
    initialize();
    frame.cleaned.execute(LocusSeparator, settings::input_file.c_str());
    if (my_string const* copy = frame.cleaned.get_clean_proj(); copy && file_opens(copy->str())) {
        settings::input_file = copy->str();
        settings_->project_dir = frame.cleaned.get_proj_dir().str();
        settings_->result_file = settings::input_file;
    } else {
        *_AOS_ << "\nAn error has occurred while cleaning-up the project...\n";
        settings_->project_dir = without_extension(settings::input_file) + ".res/";
    }
    settings_->ld_output_file = settings_->project_dir + "ld_dis.xl";
    settings_->result_file = without_extension(settings_->result_file) + (xmlOutput ? ".xml" : ".htm");
    for (std::string* path : {&settings::input_file, &settings_->result_file, &settings_->backup_file,
                              &settings_->project_dir, &settings_->ld_output_file})
        *path = forward_slashes(*path);
    if (!settings_->keepProjectResults) std::remove(settings_->ld_output_file.c_str());
    start_clock = std::clock();
    distance_computed = 0;
    return true;
}

void Project::open_result_document(RunFrame& frame) {
    std::string const& path = settings_->result_file;
    frame.document_existed = file_opens(path);
    if (settings_->keepProjectResults && xmlOutput && frame.document_existed) {
        std::ifstream earlier(path, std::ios::binary);
        frame.appended = xml_document_is_complete(earlier);
        if (!frame.appended) *_AOS_ << "\nResults file was incomplete and is replaced\n";
    }
    if (frame.appended) {
        frame.document.open(path, std::ios::in | std::ios::out | std::ios::binary);
        frame.document.seekp(-static_cast<std::streamoff>(xml_append_step_back()), std::ios::end);
    } else {
        frame.document.open(path, std::ios::out | std::ios::trunc | std::ios::binary);
    }
    if (!settings_->keepProjectResults) {
        std::string const base = without_extension(path);
        std::remove((base + ".js").c_str());
        std::remove((base + "_tree.htm").c_str());
    }
    set_document_style(frame.document);
    settings_->set_ofs(&frame.document);
    E.results = &frame.document;
    vectorsBuilt = 0;
    phenToGamDone = 0;
    third_run_flag = 0;
    ++runNumber;
}

void Project::name_run_files() {
    std::string directory = forward_slashes(current_directory());
    if (!directory.empty() && directory.back() != '/') directory += '/';
    settings_->set_tovenia_directory(directory);
    settings_->name_pages();
}

void Project::New_print_html_frames_output(bool /*existed*/) const {
    PageNames names;
    names.project = file_name_of(settings::input_file);
    names.tree_page = file_name_of(settings_->tree_page);
    names.result_file = file_name_of(settings_->result_file);
    names.working_directory = settings_->working_directory;
    names.style_sheet = settings_->style_sheet;
    names.tree_code = settings_->tree_code;
    names.tree_script = settings_->tree_script;
    std::ofstream main_page(settings_->main_page, std::ios::trunc);
    print_html_frames(main_page, names);
    std::ofstream tree_page(settings_->tree_page, std::ios::trunc);
    print_html_tree_page(tree_page, names);
}

void Project::begin_document(RunFrame& frame) {
    frame.start_time = local_time_text(time_format);
    TXmlTag::time = frame.start_time;
    name_run_files();
    New_print_html_frames_output(false);
    bool const script_goes_on = settings_->keepProjectResults && file_opens(settings_->tree_script);
    std::ifstream script(script_goes_on ? settings_->tree_script : std::string());
    settings_->set_run_id(new_run_id(script, without_blanks(frame.start_time)));
    if (!script_goes_on)
        begin_tree_script(settings_->tree_script, !settings_->keepProjectResults, settings_->working_directory,
                          file_name_of(settings::input_file), file_name_of(settings_->result_file));
    bool const document_goes_on = xmlOutput ? frame.appended : script_goes_on;
    if (document_goes_on)
        print_results_continuation(frame.document, xmlOutput);
    else
        New_print_html_results_header(xmlOutput);
}

void Project::New_print_html_results_header(bool xml) {
    print_results_header(document(), xml, settings_->working_directory);
}

void Project::New_print_html_results_footer(bool /*existed*/, bool xml) { print_results_footer(document(), xml); }

void Project::print_run_banner(RunFrame& frame) {
    std::ostream& out = frame.document;
    out << THeader{"Tovenia results"};
    print_js_aux_entry(*settings_, 1, "", "Run of " + frame.start_time);
    std::string const banner =
        slashes + "\nRUN NUMBER " + std::to_string(runNumber) + " (" + frame.start_time + ")\n" + slashes;
    XmlSection run_element(out, "run");
    out << '\n' << banner;
    run_element.close();
    *_AOS_ << banner << std::flush;
}

bool Project::read_project() {
    *_AOS_ << "\nReading Project: " << settings::input_file << std::endl;
    initialize();
    run_settings = settings_.get();
    settings::set_message("Opening Project...");
    settings::print_message();
    if (newOpen()) {
        settings_->DataType = DataType;
        settings_->GenotypicData = GenotypicData;
        settings_->GameticPhase = GameticPhase;
        settings_->alleles = alleles_.get();
        return true;
    }
    *_AOS_ << "Error opening project... " << settings::input_file << std::endl;
    print_error_message();
    return false;
}

int Project::abandon_run(RunFrame& frame) {
    clean();
    New_print_html_results_footer(frame.document_existed, xmlOutput);
    frame.document.close();
    frame.cleaned.rm_clean_files();
    return 0;
}

void Project::set_locus_separator(char separator) {
    LocusSeparator = separator;
    haplotypes_->LocusSeparator = separator;
    distances_->profile.LocusSeparator = separator;
    structure_->LocusSeparator = separator;
    samples_->LocusSeparator = separator;
    for (int i = 0; i < samples_->NbPopulations(); ++i) (*samples_)[i]->profile.LocusSeparator = separator;
}

bool Project::unify_definitions() {
    samples_->convert_dna_upper(*haplotypes_);
    bool const one_character_alleles = DataType == DNA || DataType == RFLP;
    if (one_character_alleles && LocusSeparator != 0) {
        samples_->rm_separators(*haplotypes_);
        set_locus_separator(0);
        return true;
    }
    // The readers joined the loci of a definition by single blanks.
    if (DataType == MICROSAT || (DataType == STANDARD && LocusSeparator != 0)) set_locus_separator(' ');
    return false;
}

void Project::prepare_data() {
    print_js_doc_entry(*settings_, 2, "_run_information", "Settings");
    if (unify_definitions()) {
        document() << "\nWarning: The locus separator has been removed\n-------\n\n";
        *_AOS_ << "\nWarning: The locus separator has been removed\n\n";
    }
}

void Project::print_project_information() {
    std::ostream& out = document();
    out << "\nProject information:\n--------------------\n"
        << "\tNbSamples      =  " << NbSamples << '\n'
        << "\tDataType       =  " << data_type_name(DataType) << '\n'
        << "\tGenotypicData  =  " << (GenotypicData ? 1 : 0) << '\n';
    if (GenotypicData)
        out << "\tGameticPhase   =  " << (GameticPhase ? 1 : 0) << '\n'
            << "\tRecessiveData  =  " << (RecessiveData ? 1 : 0) << '\n';
    settings_->print_pretty_settings(out);
    *_AOS_ << '\n' << std::string(72, '-') << std::endl;
}

bool Project::check_tasks(RunFrame& frame) {
    frame.locus_separator = LocusSeparator;
    projectValid = 0;
    if (!make_run_possible()) {
        document() << "\nOne of the scheduled task is not possible with these data,"
                   << "\nfor more details look into 'Tovenia_log.txt'\n";
        return false;
    }
    projectValid = 1;
    samples_->evaluate_work(*settings_);
    return true;
}

void Project::clear_impossible_individual_level() {
    bool const haplotypic = !GenotypicData;
    if (haplotypic || (!GameticPhase && settings_->ComputeConventionalFST)) settings_->IncludeIndividualLevel = 0;
}

/// The words that tell the two levels of a run apart.
struct Project::LevelWords {
    char const* banner;  ///< title of the within-sample analyses
    char const* tree_entry;
    char const* anchor;
    bool pooled;  ///< the structure of the pooled samples is printed
};

void Project::run_group_level() {
    TSumStat const& chosen = sum_stat();
    if (chosen.in_force() ? !chosen.wants_groups() : !settings_->ComputeSumStatsWithinGroups) return;
    // The checks have adapted the settings to the data: the sample level needs them as they are now.
    ScopedSwap<settings> const keep_settings(*settings_);
    ScopedSwap<ProfileSettings> const keep_profile(p_pro());
    ScopedSwap<int> const keep_flag(phenToGamDone);
    auto pooled_samples = std::make_unique<Samples>();
    auto pooled_structure = std::make_unique<Structure>();
    pooled_samples->set_profile(*samples_);
    static_cast<ProfileSettings&>(*pooled_structure) = *structure_;
    poolSamplesInGroups(*samples_, *structure_, *pooled_samples, *pooled_structure);
    pooled_samples->pooled = 1;
    ScopedSwap<std::unique_ptr<Structure>> const swap_structure(structure_, std::move(pooled_structure));
    ScopedSwap<std::unique_ptr<Samples>> const swap_samples(samples_, std::move(pooled_samples));
    analyse_level({"\n== ANALYSES AT THE INTRA-GROUP LEVEL", "Groups", "_gr_analyses", true});
    add_chosen_statistics(true);
}

void Project::run_sample_level() {
    if (sum_stat().in_force() && !sum_stat().wants_samples()) return;
    samples_->pooled = 0;
    vectorsBuilt = 0;
    analyse_level({"\n== ANALYSES AT THE INTRA-POPULATION LEVEL", "Samples", "_samp_analyses", false});
}

void Project::add_chosen_statistics(bool groups) {
    TSumStat& chosen = sum_stat();
    chosen.collect({*settings_, *samples_, amova_.get(), last_pairwise_results()}, groups);
    if (chosen.lines() == 0) chosen.outputHeader(settings_->DataType);
    chosen.outputStats(settings_->DataType);
}

void Project::write_chosen_statistics() {
    TSumStat& chosen = sum_stat();
    if (!chosen.in_force()) return;
    if (chosen.wants_samples()) add_chosen_statistics(false);
    // A project that fails writes no line: the table begins with the first that ends.
    chosen.writeToFile(chosen.lines() == 0);
}

void Project::analyse_level(LevelWords const& words) {
    *amova_ = amova_results();
    forget_pairwise_results();
    if (projectValid) {
        if (settings_->wants(task::genotype_assignment)) assign_genotypes();
        analyse_samples(words);
    }
    if (settings_->wants(task::amova | task::pairwise_fst | task::exact_test | task::mantel)) GenStructCalculations();
}

void Project::analyse_samples(LevelWords const& words) {
    std::ostream& out = document();
    if (settings_->check_intrap_pop_task()) {
        print_js_aux_entry(*settings_, 1, words.anchor, words.tree_entry);
        level_banner(out, words.banner);
        if (words.pooled) structure_->print_structure(out);
    }
    PopGenetics::globalSubstPolymSites.Flush();
    samples_->compute_stuff(*settings_);
}

void Project::detect_selection() {
    if (!settings_->DetectSelectedLoci) return;
    std::ostream& out = document();
    level_banner(out, "\n== DETECTION OF LOCI UNDER SELECTION FROM GENOME SCANS BASED ON F-STATISTICS");
    print_references(out, {"beaumont_nichols1996", "slatkin_voelm1991"});
    print_js_aux_entry(*settings_, 1, "_fdist2_", "Loci under selection");
    *_AOS_ << "Detecting loci under selection based on F-statistics\n";
    std::clock_t const start = std::clock();
    detectSelectedLociFromFSTHetComparison(settings_->UseHierarchicalIslandModel != 0);
    *_AOS_ << "done with detection of loci under selection! (" << milliseconds_since(start) << " ms)\n";
}

void Project::end_run(RunFrame& frame) {
    // kept on purpose: two parentheses close after the time, this one and that of the line.
    std::string const end_time = local_time_text(time_format) + ')';
    LocusSeparator = frame.locus_separator;
    clean();
    frame.cleaned.rm_clean_files();
    settings::set_work_done(0.0);
    settings::set_to_do_work(0.0);
    if (*settings_->is_stop()) {
        constexpr char text[] = " WARNING !!! Process stopped by user. The results may be incorrect";
        settings::set_message(text);
        *_AOS_ << text << std::endl;
    } else {
        settings::set_message(" Computations are over");
    }
    settings::print_message();
    elapsed = milliseconds_since(start_clock);
    for (std::ostream* out : {static_cast<std::ostream*>(&frame.document), _AOS_}) {
        *out << '\n'
             << slashes << "\nEND OF RUN NUMBER " << runNumber << " (" << end_time << ")"
             << "\nTotal computing time for this run : ";
        print_span(*out, elapsed);
        *out << slashes;
    }
    *_AOS_ << std::endl;
    New_print_html_results_footer(frame.document_existed, xmlOutput);
    frame.document.close();
}

}  // namespace tov
