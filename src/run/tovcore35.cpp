// Entry of the program: command line, checks before the start, closing marker.
#include "run/tovcore35.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>

#include "run/errors.h"
#include "run/paths.h"
#include "run/run_list.h"
#include "run/run_state.h"
#include "run/tovstart.h"

namespace tov {
namespace {

constexpr char run_list_name[] = "tov_run.txt";
constexpr char default_settings_name[] = "tov_run.tvs";
constexpr char marker_name[] = "compfinished_final";

/// What the arguments ask for.
struct CommandLine {
    bool help = false;
    std::string project;   // empty: obey the existing run list
    std::string settings;  // empty: the default settings stay
};

std::string lower_case(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

bool holds(std::string const& text, char const* part) { return text.find(part) != std::string::npos; }

/// Each argument is used for the first of its four meanings that fits; others are ignored.
CommandLine read_arguments(int argc, char const* const* argv) {
    CommandLine wanted;
    for (int i = 1; i < argc; ++i) {
        std::string const argument = argv[i];
        std::string const lower = lower_case(argument);
        if (holds(lower, "run_silent")) {
            silentTovenia = true;
            std::cout << "Running tovcore in silent mode ...\n";
        } else if (holds(lower, "-help")) {
            wanted.help = true;
        } else if (holds(lower, ".tvp")) {
            wanted.project = argument;
        } else if (holds(lower, ".tvs")) {
            wanted.settings = argument;
        }
    }
    return wanted;
}

/// First project of the run list as it will be opened, or empty when no line of the project part holds ".tvp" or the
/// list asks for a translation, whose files need not exist yet.
std::string first_project_of_run_list() {
    std::ifstream in(run_list_name);
    std::string line;
    read_run_list_line(in, line, std::string::npos);
    if (!read_run_list_line(in, line, std::string::npos)) return {};
    RunDirective const directive = run_directive(line);
    if (directive == RunDirective::translate) return {};
    if (directive == RunDirective::special_settings) read_run_list_line(in, line, std::string::npos);
    while (read_run_list_line(in, line, std::string::npos))
        if (holds(line, ".tvp")) return without_extension(line) + ".tvp";
    return {};
}

/// The run list is there and its first project opens; tells on standard output what is missing.
bool run_list_is_usable(bool project_on_command_line) {
    if (!file_opens(run_list_name)) {
        std::cout << "The necessary file 'tov_run.txt' does not exist, aborting tovcore\n\n";
        return false;
    }
    std::string const project = first_project_of_run_list();
    if (project.empty() || file_opens(project)) return true;
    std::cout << "Project file '" << project << '\''
              << (project_on_command_line ? " does not exist" : " listed in tov_run.txt does not exist")
              << ", aborting tovcore\n\n";
    return false;
}

/// Copies the named settings over the default ones. @return false when they can't be opened.
bool take_settings(std::string const& name) {
    if (!file_opens(name)) {
        std::cout << "The setting file '" << name << "' does not exist, aborting tovcore\n\n";
        return false;
    }
    if (name == default_settings_name) return true;
    std::ifstream in(name, std::ios::binary);
    // The whole source is read before the target is truncated: both may be one file under two names.
    std::string const text{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    in.close();
    std::ofstream(default_settings_name, std::ios::binary | std::ios::trunc) << text;
    return true;
}

/// Runs the list. @return false when memory ran out, or another exception came through, which the log tells: this ends
/// the program without its marker.
bool run_the_list() {
    try {
        tovstart("");
        return true;
    } catch (ExceptionType const&) {
        return false;
    } catch (std::exception const& failure) {
        *_AOS_ << "\nThe run ended early: " << failure.what() << std::endl;
        return false;
    }
}

}  // namespace

void showHelp() {
    std::string const indent(29, ' ');
    std::cout << "\n"
              << indent << "TOVCORE (24.02.10)\n"
              << indent << "========\n\n"
              << "TOVCORE is the console version of Tovenia\n\n"
              << "Usage:\n\n"
              << "   tovcore <project file name (*.tvp)> | <settings file (*.tvs)>\n"
              << "           | run_silent\n\n"
              << "The three arguments are optional. If no project file is given, the program looks\n"
              << "for the file tov_run.txt in the working directory, which lists the projects to\n"
              << "analyse. A project file name that contains whitepaces must be put in quotes.\n"
              << "If a settings file is given, it selects the analyses and their settings.\n"
              << "Otherwise, the settings in the file tov_run.tvs of the working directory are used.\n"
              << "With run_silent, no progress messages are shown on the console.\n\n"
              << "Examples:\n\n"
              << "   tovcore test.tvp test.tvs\n"
              << "   tovcore\n\n";
}

void make_tov_run_txt(std::string const& project) {
    std::ofstream(run_list_name, std::ios::trunc) << forward_slashes(current_directory()) << "\nuse_interf_settings\n"
                                                  << project << "\n0\n0\nend\n";
}

void make_tovenia_ini(std::string const& program_path) {
    std::ofstream out("tovenia.ini", std::ios::trunc);
    out << "false\ntrue\nfalse\nfalse\nWeb browser\nText editor\n"
        << program_path << "\nRcmd\n"
        << forward_slashes(current_directory()) << '\n';
    for (int i = 0; i < 13; ++i) out << "false\n";
    out << '\n';
}

int _main(int argc, char const* const* argv) {
    proj_file.clear();
    set_file.clear();
    run_file.clear();
    CommandLine const wanted = read_arguments(argc, argv);
    if (wanted.help) {
        showHelp();
        return 0;
    }
    // A marker of an earlier run would tell the front end that this one is over.
    std::remove(marker_name);
    if (!wanted.project.empty()) make_tov_run_txt(wanted.project);
    if (!run_list_is_usable(!wanted.project.empty()) || (!wanted.settings.empty() && !take_settings(wanted.settings))) {
        showHelp();
        return 0;
    }
    make_tovenia_ini(forward_slashes(argc > 0 ? argv[0] : ""));
    if (!run_the_list()) return 0;
    std::cout << "Tovcore terminated gracefully\n";
    std::ofstream(marker_name, std::ios::trunc) << "true\n";
    release_project();
    return 0;
}

}  // namespace tov
