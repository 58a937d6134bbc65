// Scheduling: obeys the run list, one project after the other.
#include "run/tovstart.h"

#include <cstdio>
#include <fstream>
#include <iostream>
#include <memory>
#include <new>
#include <string>

#include "base/numtext.h"
#include "base/random.h"
#include "input/settings.h"
#include "output/glbobj.h"
#include "output/sumstat.h"
#include "run/errors.h"
#include "run/paths.h"
#include "run/project.h"
#include "run/run_list.h"
#include "run/run_state.h"
#include "translate/imp_exp.h"

namespace tov {

Project* PPP = nullptr;

namespace {

std::unique_ptr<Project> project_owner;

/// Whether the list goes on behind a project.
enum class Turn { go_on, leave };

/// Opens the log of a project or a translation and writes its two head lines.
void begin_log(std::string const& path) {
    E.init_log_file(path.c_str(), false);
    *_AOS_ << "Log file path: " << path << "\nCore Routine Directory: " << ToveniaExeDirectory << std::endl;
}

/// Log, settings file and random numbers of one project.
///
/// @return  leave when the project can't be opened or no settings are there. Without a results directory there is no
/// log.
Turn set_up_project(RunDirective directive) {
    my_string log_directory;
    if (!create_log_dir(ToveniaExeDirectory.c_str(), proj_file.c_str(), log_directory)) return Turn::leave;
    begin_log(buildToveniaLogFileName(my_string(proj_file)).str());
    // With associated settings the file in force is the project's own, looked for later.
    if (directive != RunDirective::explore && directive != RunDirective::associated_settings && !file_opens(set_file)) {
        *_AOS_ << "Core Routine did not find its settings in:\n    " << set_file << std::endl;
        return Turn::leave;
    }
    initialize_ran3(1);
    return Turn::go_on;
}

/// Takes the settings fields that mirror the profile from the project's profile as it stands.
void take_profile_fields() {
    std::ifstream in(settings::input_file);
    *_AOS_ << "Reading project profile section...";
    if (in.good()) {
        settings& set = PPP->p_set();
        set.ComputeDistanceMatrixAMOVA = PPP->GivenDistMat == 0;
        set.EpsilonValue = PPP->EpsilonValue;
        set.FrequencyThreshold = PPP->FrequencyThreshold;
    }
    *_AOS_ << "done !" << std::endl;
}

/// The settings file that lies beside the project becomes the one in force.
Turn take_associated_settings() {
    set_file = without_extension(proj_file) + ".tvs";
    PPP->p_set().settings_file = set_file;
    if (file_opens(set_file)) return Turn::go_on;
    *_AOS_ << "The Core Routine did not find the associated settings:\n    " << set_file << std::endl;
    return Turn::leave;
}

/// The two integers behind a project; one that isn't there leaves its field as it was.
void read_project_flags(RunList& list) {
    settings& set = PPP->p_set();
    std::string text;
    if (list.read(text, RunList::integer_length)) set.keepProjectResults = my_atoi(text.c_str());
    if (list.read(text, RunList::integer_length)) set.KeepNullDistrib = my_atoi(text.c_str());
}

void name_project() {
    settings::input_file = proj_file;
    PPP->build_res_bac_names();
}

void explore_or_run(RunDirective directive) {
    if (directive == RunDirective::explore) {
        *_AOS_ << "Exploring  " << proj_file << " ..." << std::endl;
        if (!PPP->explore(ToveniaExeDirectory)) PPP->print_error_message();
        *_AOS_ << "done!" << std::endl;
        return;
    }
    PPP->projectValid = 1;
    *_AOS_ << "Opening next project..." << std::endl << proj_file << std::endl;
    int const done = PPP->run();
    *_AOS_ << (done ? "Successful run of " : "Error during run of ") << proj_file << std::endl;
}

/// One project of the list, from its log to its last line.
Turn process_project(RunList& list) {
    name_project();
    if (set_up_project(list.directive) == Turn::leave) return Turn::leave;
    take_profile_fields();
    if (list.directive == RunDirective::associated_settings && take_associated_settings() == Turn::leave)
        return Turn::leave;
    PPP->p_set().read_settings(set_file);
    read_project_flags(list);
    name_project();
    explore_or_run(list.directive);
    list.read(proj_file, RunList::path_length);
    E.CloseLog_file();
    if (*PPP->p_set().is_stop()) proj_file = "end";
    ++settings::num_proj_done;
    return Turn::go_on;
}

/// @return  leave when the list ended before its time, in which case the batch tables stay open.
Turn run_projects(RunList& list) {
    if (list.directive == RunDirective::special_settings)
        list.read(set_file, RunList::path_length);
    else
        set_file = ToveniaExeDirectory + "tov_run.tvs";
    PPP->p_set().settings_file = set_file;
    list.read(proj_file, RunList::path_length);
    while (proj_file != "end" && proj_file != "END" && list.good())
        if (process_project(list) == Turn::leave) return Turn::leave;
    return Turn::go_on;
}

/// What a run list says about its translation.
struct TranslationRequest {
    std::string source_format, target_format, source, target;
};

/// The lines that some formats add to the request.
void read_format_lines(RunList& list, std::string const& source_format, imp_exp& translator) {
    std::string text;
    if (source_format == "Genepop") {
        if (list.read(text, RunList::path_length)) translator.diploid = my_atoi(text.c_str());
    } else if (source_format == "Zentara") {
        if (list.read(text, RunList::path_length)) translator.zentara_matrix = text;
        if (list.read(text, RunList::path_length)) translator.zentara_structure = text;
    }
}

std::unique_ptr<std::ofstream> new_file(std::string const& path) {
    return std::make_unique<std::ofstream>(path, std::ios::trunc);
}

/// Source into intermediate project, intermediate project into target.
void convert(TranslationRequest const& request, int from, int to, imp_exp& translator) {
    std::string const intermediate = ToveniaExeDirectory + intermediate_project;
    translator.import_data(from, request.source.c_str(), intermediate.c_str(), new_file(intermediate));
    translator.export_data(to, intermediate.c_str(), request.target.c_str(), new_file(request.target));
    std::remove(intermediate.c_str());
}

/// The translation that the list asks for; its log lies beside the source.
void translate(RunList& list) {
    TranslationRequest request;
    for (std::string* line : {&request.source_format, &request.target_format, &request.source, &request.target})
        list.read(*line, RunList::path_length);
    imp_exp translator;
    translator.project = PPP;
    begin_log(directory_of(request.source) + log_file_name);
    initialize_ran3(1);
    read_format_lines(list, request.source_format, translator);
    translator.set_export_dir(ToveniaExeDirectory.c_str());
    int from = imp_exp::format_number(request.source_format);
    int const to = imp_exp::format_number(request.target_format);
    if (from == imp_exp::unknown) {
        *_AOS_ << "\tUnknown source format: " << request.source_format << ", taken as Genepop\n";
        from = imp_exp::genepop;
    }
    if (to == imp_exp::unknown) {
        *_AOS_ << "\tUnknown target format: " << request.target_format << std::endl;
    } else if (from == to) {
        *_AOS_ << "\tThe two formats are the same, nothing to translate" << std::endl;
    } else if (is_working_file(request.source, ToveniaExeDirectory) ||
               is_working_file(request.target, ToveniaExeDirectory)) {
        *_AOS_ << "\tThe translation makes and removes files of this name itself, nothing is translated" << std::endl;
    } else {
        convert(request, from, to, translator);
    }
    E.CloseLog_file();
}

/// Obeys the list. @return  leave when the batch tables are to stay open.
Turn obey_run_list() {
    run_file = ToveniaExeDirectory + "tov_run.txt";
    RunList list(run_file);
    if (!list.good()) return Turn::go_on;
    list.read_head(ToveniaExeDirectory);
    sum_stat().set_output(ToveniaExeDirectory + "sumstat_out.txt");
    sum_stat().readDefSSFile(my_string((ToveniaExeDirectory + "sumstat_def.txt").c_str()));
    settings::num_proj_done = 0;
    if (list.directive == RunDirective::translate) {
        translate(list);
        return Turn::go_on;
    }
    return run_projects(list);
}

/// The project object and the batch tables. @return  false when memory ran out.
bool begin_process(char const* directory) {
    try {
        numSamplesAnalysed = 0;
        project_owner = std::make_unique<Project>();
        PPP = project_owner.get();
        ToveniaExeDirectory = directory;
        read_global_flags(directory);
        initialize_tovenia_global_objects();
    } catch (std::bad_alloc const&) {
        std::cout << "Out of memory... EXIT\n";
        return false;
    }
    return true;
}

}  // namespace

int tovstart(char const* directory) {
    if (!begin_process(directory)) return 0;
    // kept on purpose: a list that ends before its time leaves the batch tables open (each row was flushed).
    if (obey_run_list() == Turn::go_on) close_all_global_streams();
    return PPP->p_set().DataType;
}

void release_project() {
    PPP = nullptr;
    project_owner.reset();
    proj_file.clear();
    set_file.clear();
    run_file.clear();
}

}  // namespace tov
