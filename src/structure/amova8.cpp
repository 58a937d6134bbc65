// AMOVA_G_P_IH: the table of AMOVA_G_P_H, with whole individuals permuted.
#include "structure/amova.h"

namespace tov {

int Amova::AMOVA_G_P_IH() { return groups_of_haplotypes(PermutationScheme::PIAPAG, PermutationScheme::PIAPWG, 5); }

}  // namespace tov
