// Zentara files: reader and writer.
#include "translate/zentara.h"

#include <charconv>
#include <fstream>
#include <istream>
#include <ostream>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

#include "base/dmat.h"
#include "input/block_lines.h"
#include "input/line_text.h"
#include "input/settings.h"
#include "model/hapldb.h"
#include "model/sample.h"
#include "model/struct.h"
#include "run/errors.h"
#include "run/project.h"
#include "translate/export_walk.h"
#include "translate/project_text.h"

namespace tov {
namespace {

/// The shortest text that reads as the same number.
std::string exact_text(double value) {
    char text[32];
    return {text, std::to_chars(text, text + sizeof text, value).ptr};
}

constexpr std::string_view part_marker = "+++";
constexpr char matrix_name[] = "dist_mat.dis";

using Part = std::vector<std::string>;

/// The lines of each part, without blanks at their ends and without blank lines. At least one part.
std::vector<Part> read_parts(std::istream& in) {
    std::vector<Part> parts(1);
    for (std::string line; read_content_line(in, line);) {
        std::string_view const text = trimmed(line);
        if (text == part_marker)
            parts.emplace_back();
        else
            parts.back().emplace_back(text);
    }
    return parts;
}

/// The three parts of the main file.
struct ZentaraFile {
    Part populations;
    std::string matrix;
    std::vector<Part> groups;
    bool structure_lost = false;  ///< the file that should complete the structure can't be opened
};

void keep_groups(std::vector<Part>& groups, std::vector<Part>& parts, std::size_t first) {
    for (std::size_t i = first; i < parts.size(); ++i)
        if (!parts[i].empty()) groups.push_back(std::move(parts[i]));
}

ZentaraFile read_file(std::istream& in, ZentaraSource const& source) {
    std::vector<Part> parts = read_parts(in);
    ZentaraFile file;
    file.populations = std::move(parts[0]);
    if (parts.size() > 1 && !parts[1].empty())
        file.matrix = parts[1].front();
    else
        file.matrix = source.matrix_file;
    keep_groups(file.groups, parts, 2);
    if (file.groups.empty() && !source.structure_file.empty()) {
        if (auto const structure = source.open(source.directory + source.structure_file)) {
            parts = read_parts(*structure);
            keep_groups(file.groups, parts, 0);
        } else {
            file.structure_lost = true;
        }
    }
    return file;
}

bool has_directory(std::string const& name) { return name.find_first_of("/\\") != std::string::npos; }

/// Labels in the first line of the matrix; 0 without a matrix.
std::size_t matrix_size(std::string const& path, ZentaraSource const& source) {
    auto const in = source.open(path);
    std::string line;
    if (!in || !read_content_line(*in, line)) return 0;
    std::string_view rest = line;
    std::size_t size = 0;
    for (std::string_view label; !(rest = trimmed(rest)).empty() && next_label(rest, label);) ++size;
    return size;
}

void write_matrix_section(std::ostream& project, ZentaraFile const& file, ZentaraSource const& source) {
    if (file.matrix.empty()) return;
    std::string path = has_directory(file.matrix) ? file.matrix : source.directory + file.matrix;
    if (source.directory_in_names && !has_directory(path)) path.insert(0, "./");
    project << "\n\t\t[[DistanceMatrix]] \n"
            << "\t\t     MatrixName=\"Generic Distmat\"\n"
            << "\t\t     MatrixSize=" << matrix_size(path, source) << '\n'
            << "\t\t     LabelPosition=LINE \n"
            << "\t\t     MatrixData=EXTERN \"" << quoted_text(path) << "\"\n";
}

/// Entries of one population, and the sum of their frequencies.
void read_population(std::istream& in, std::string& data, double& sum) {
    for (std::string line; read_content_line(in, line);) {
        std::string_view rest = without_comment(line);
        std::string_view const id = next_token(rest);
        if (id.empty()) continue;
        std::string_view const frequency = next_token(rest);
        double value = 0.0;
        if (!parse_number(frequency, value) || value < 0.0 || breaks_data(id) || !trimmed(rest).empty()) {
            data += "# error: no identifier and frequency\n";
            data += unreadable_entry;
            continue;
        }
        sum += value;
        data += "\t\t\t";
        data += id;
        data += ' ';
        data += frequency;
        data += '\n';
    }
}

void write_sample(std::ostream& project, std::string const& name, ZentaraSource const& source) {
    std::string data;
    double sum = 0.0;
    if (auto const in = source.open(source.directory + name + ".pop"))
        read_population(*in, data, sum);
    else
        data = "****ERROR**** Population " + name + " not found\n";
    project << "\t\t SampleName=\"" << quoted_text(name) << "\"\n\t\t SampleSize=" << exact_text(sum)
            << "\n\t\t SampleData={\n"
            << data << "\t\t }\n";
}

void write_structure_section(std::ostream& project, ZentaraFile const& file, ZentaraSource const& source) {
    if (file.structure_lost) {
        project << "     [[Structure]]\n     \tNbGroups=1\n\t\tGroup={\n****ERROR**** Structure "
                << source.structure_file << " not found\n}\n";
        return;
    }
    if (file.groups.empty()) return;
    project << "     [[Structure]]\n     \tStructureName=\"Generic structure\"\n     \tNbGroups=" << file.groups.size()
            << "\n     \tIndividualLevel=0\n\t\tGroup={\n";
    for (std::size_t g = 0; g < file.groups.size(); ++g) {
        if (g > 0) project << "}\n \t\tGroup={\n";
        for (std::string const& name : file.groups[g]) project << "\t\t\t\"" << quoted_text(name) << "\"\n";
    }
    project << "}\n";
}

}  // namespace

void zentara_to_project(std::istream& in, ZentaraSource const& source, std::ostream& project) {
    ZentaraFile const file = read_file(in, source);
    project << "[Profile]\n"
            << "\t Title=\"File translated from Zentara\"\n"
            << "\t NbSamples=" << file.populations.size() << '\n'
            << "\t GenotypicData=0\n"
            << "\t DataType=FREQUENCY\n"
            << "\t LocusSeparator=NONE\n\n"
            << "[Data]\n";
    write_matrix_section(project, file, source);
    project << "\n\t [[Samples]]\n";
    for (std::string const& name : file.populations) write_sample(project, name, source);
    write_structure_section(project, file, source);
}

// --- Writing ---

namespace {

/// Name of a population that is a file name too: no directory, different from all others.
class FileNames {
public:
    std::string next(std::string_view name) {
        std::string file(trimmed(name));
        for (char& c : file)
            if (c == '/' || c == '\\' || static_cast<unsigned char>(c) < ' ') c = '_';
        if (file.empty() || file == part_marker) file = "noName";
        std::string candidate = file;
        for (int number = 2; !used_.insert(candidate).second; ++number) candidate = file + '_' + std::to_string(number);
        return candidate;
    }

private:
    std::set<std::string> used_;
};

bool write_population(Population const& sample, std::string const& path) {
    std::ofstream out(path, std::ios::trunc);
    for_each_entry(sample, [&](ExportEntry const& entry) { out << entry.name << ' ' << entry.copies << '\n'; });
    out.flush();
    return out.good();
}

/// The project's matrix, or the one computed from the haplotypes; without loci every two haplotypes are 1 apart.
bool write_matrix(Project& project, std::string const& path) {
    DistMat& distances = project.p_dmt();
    Haplo_DB const& haplotypes = project.p_hdb();
    bool const given = distances.dimension() > 0;
    if (!given && project.DataType != FREQUENCY) {
        settings const& set = project.p_set();
        project.calc_dist_matrix(set.DistanceMethodAMOVA, set.GammaAValueAMOVA);
    }
    bool const labelled = given && static_cast<int>(distances.labels.size()) >= distances.dimension();
    int const n = distances.dimension() > 0 ? distances.dimension() : haplotypes.size();
    std::ofstream out(path, std::ios::trunc);
    for (int i = 0; i < n; ++i)
        out << (labelled ? distances.labels[static_cast<std::size_t>(i)] : haplotypes[i].id)
            << (i + 1 < n ? ' ' : '\n');
    for (int i = 0; i < n; ++i)
        for (int j = 0; j <= i; ++j) {
            double const distance = distances.dimension() > 0 ? distances(i, j) : (i == j ? 0.0 : 1.0);
            out << exact_text(distance) << (j < i ? ' ' : '\n');
        }
    out.flush();
    return out.good();
}

bool write_failed(std::string const& path) {
    log_text("\tUnable to write the file ", path);
    return false;
}

}  // namespace

bool write_zentara(Project& project, std::string const& directory, std::ostream& out) {
    Structure const& structure = project.get_struct();
    if (structure.nb_groups() == 0) {
        log_text("\tNo genetic structure has been defined, it makes therefore no sense to\n build a Zentara file.");
        return false;
    }
    if (project.GenotypicData) {
        log_text(
            "    Zentara accepts only Haplotypic data format, the\n"
            "    source data file contained Genoytypic data");
        return false;
    }
    FileNames names;
    std::vector<std::string> files;
    for (Population const* const sample : project.p_sam().populations.view()) {
        files.push_back(names.next(sample->pop_name()));
        std::string const path = directory + files.back() + ".pop";
        if (!write_population(*sample, path)) return write_failed(path);
    }
    if (!write_matrix(project, directory + matrix_name)) return write_failed(directory + matrix_name);
    for (std::string const& file : files) out << file << '\n';
    out << part_marker << '\n' << matrix_name << '\n';
    for (StructureGroup const& group : structure.groups) {
        out << part_marker << '\n';
        for (int const index : group.sample_indexes)
            if (index >= 0 && static_cast<std::size_t>(index) < files.size())
                out << files[static_cast<std::size_t>(index)] << '\n';
    }
    return true;
}

}  // namespace tov
