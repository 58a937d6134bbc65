// Project files that simulations and the estimation of gametic phases write.
#include "output/tovenia_files.h"

#include <ostream>
#include <string>

#include "input/profile.h"

namespace tov {

namespace {

void write_header(std::string_view title, int n, TDataType type, bool phase_known, std::ostream& out) {
    out << "\n[Profile]\n"
        << "\tTitle=\"" << title << "\"\n"
        << "\tNbSamples=" << std::to_string(n) << "\n"
        << "\tGenotypicData=1\n"
        << "\tGameticPhase=" << (phase_known ? '1' : '0') << "\n"
        << "\tRecessiveData=0\n"
        << "\tDataType=" << data_type_name(type) << "\n";
    if (type == DNA || type == RFLP)
        out << "\tLocusSeparator=NONE\n";
    else if (type == MICROSAT || type == STANDARD)
        out << "\tLocusSeparator=TAB\n";
    out << "\tMissingData='?'\n"
        << "\n[Data]\n"
        << "\t[[Samples]]\n\n";
}

}  // namespace

void write_Tovenia_header(int n, TDataType type, std::ostream& out) {
    write_header("A series of simulated samples", n, type, false, out);
}

void write_Tovenia_header_gibbs(std::string_view title, int n, TDataType type, std::ostream& out) {
    write_header(title, n, type, true, out);
}

void write_Tovenia_sample_header(int number, int size, std::ostream& out) {
    write_Tovenia_sample_header_gibbs("Sample " + std::to_string(number), size, out);
}

void write_Tovenia_sample_header_gibbs(std::string_view name, int size, std::ostream& out) {
    out << "\t\tSampleName=\"" << name << "\"\n"
        << "\t\tSampleSize=" << std::to_string(size) << "\n\t\tSampleData= {\n";
}

void write_Tovenia_sample_footer(std::ostream& out) { out << "\n\t\t}"; }

void write_Tovenia_sample_footer_gibbs(std::ostream& out) { out << "\n\t\t}"; }

}  // namespace tov
