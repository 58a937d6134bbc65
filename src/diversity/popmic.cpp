// PopulMicrosat: life, checks and loci.
#include "diversity/popmic.h"

namespace tov {

PopulMicrosat::PopulMicrosat() = default;
PopulMicrosat::~PopulMicrosat() = default;

int PopulMicrosat::check_data() { return check_counts("PopulMicrosat::check_data()") ? 1 : 0; }

int PopulMicrosat::evaluate_polymorphism(settings const& s) { return evaluate_loci(s); }

void PopulMicrosat::set_distance(DistanceChoice const& choice) { distance_method_ = choice.method; }

}  // namespace tov
