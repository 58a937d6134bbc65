// Project files that simulations and the estimation of gametic phases write: heads and sample frames.
#pragma once

#include <iosfwd>
#include <string_view>

namespace tov {

enum TDataType : int;

/// Profile of a project of `n` simulated samples of genotypes with unknown phase, up to "[[Samples]]".
void write_Tovenia_header(int n, TDataType type, std::ostream& out);
/// The same with a title of its own and known phase.
void write_Tovenia_header_gibbs(std::string_view title, int n, TDataType type, std::ostream& out);
/// Head of a sample: name "Sample " and the number, size, and the opening of its data.
void write_Tovenia_sample_header(int number, int size, std::ostream& out);
/// The same with the sample's name.
void write_Tovenia_sample_header_gibbs(std::string_view name, int size, std::ostream& out);
/// End of a sample's data.
void write_Tovenia_sample_footer(std::ostream& out);
void write_Tovenia_sample_footer_gibbs(std::ostream& out);

}  // namespace tov
