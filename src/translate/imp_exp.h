// Translation between the project format and foreign data formats.
#pragma once

#include <fstream>
#include <memory>
#include <string>

namespace tov {

class Project;

/// Converts a data file from one format into another, by way of an intermediate project file: import_data() makes it,
/// export_data() reads it as a project and writes the target from what stands in memory.
///
/// No step returns a status. What can't be read leaves a mark in the intermediate project, which then fails when it is
/// opened; what can't be written is told in the log, and the target stays empty.
class imp_exp {
public:
    /// Numbers of the formats.
    enum Format : int { unknown = 0, genepop = 1, phylip = 2, mega = 3, biosys = 4, zentara = 5, tovenia = 7 };
    /// Longest name that is taken; a longer one leaves the name before it in force.
    static constexpr std::size_t longest_name = 399;

    imp_exp() = default;

    /// Number of a format by its name; `unknown` for any other text.
    [[nodiscard]] static int format_number(std::string const& name);
    /// Directory of the further files that a writer makes, with its slash, or empty.
    void set_export_dir(char const* directory);

    /// Turns a foreign file (or a project, cleaned) into the intermediate project.
    ///
    /// @param target  name of the intermediate project, which `out` has opened; closed at the end.
    void import_data(int format, char const* source, char const* target, std::unique_ptr<std::ofstream> out);
    /// Opens the intermediate project and writes it in a format. The project of `project` is empty afterwards, and the
    /// working files of the translation are gone.
    ///
    /// @param out  opened on `target`; closed at the end.
    void export_data(int format, char const* source, char const* target, std::unique_ptr<std::ofstream> out);

    /// Comment with time, source and format at the head of the intermediate project.
    void create_header();
    /// The line holds nothing but blanks.
    [[nodiscard]] static bool is_line_blank(char const* line);
    /// Takes the carriage return and its like off the end of the line. @return true for a line with content.
    static bool is_line_blank_rm(char* line);

    void read_tovenia();
    void read_gen_pop();
    void read_phylip();
    void read_mega();
    void read_biosys();
    void read_zentara();
    void write_tovenia();
    void write_gen_pop();
    void write_phylip();
    void write_mega();
    void write_biosys();
    void write_zentara();

    Project* project = nullptr;     ///< borrowed: the project that the intermediate file is read into
    int diploid = 0;                ///< Genepop: both alleles of a field are read
    std::string zentara_matrix;     ///< completes a Zentara file without a matrix
    std::string zentara_structure;  ///< completes a Zentara file without a structure

private:
    void take_names(char const* source, char const* target);
    bool open_source(std::ifstream& in);
    bool open_project();
    void prepare_vectors();
    bool has_data();
    void read_format();
    void write_format();

    std::string source_;
    std::string target_;
    std::string export_directory_;
    std::unique_ptr<std::ofstream> out_;  // owned
    int format_ = unknown;
    bool opened_ = false;   // the intermediate project could be read
    bool written_ = false;  // the writer has written all
};

/// The intermediate project and the scratch document that a translation makes and removes: no data may bear their
/// names.
[[nodiscard]] bool is_working_file(std::string const& path, std::string const& directory);

/// Name of the intermediate project.
inline constexpr char intermediate_project[] = "dum_tov.tvp";

}  // namespace tov
