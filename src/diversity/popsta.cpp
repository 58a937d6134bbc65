// PopulStandard: life, checks and loci.
#include "diversity/popsta.h"

namespace tov {

PopulStandard::PopulStandard() = default;
PopulStandard::~PopulStandard() = default;

int PopulStandard::check_data() { return check_counts("PopulStandard::check_data()") ? 1 : 0; }

int PopulStandard::evaluate_polymorphism(settings const& s) { return evaluate_loci(s); }

}  // namespace tov
