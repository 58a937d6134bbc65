// AMOVA_1G_P_IH: the table of AMOVA_1G_P_H, with whole individuals permuted.
#include "structure/amova.h"

namespace tov {

int Amova::AMOVA_1G_P_IH() { return one_group_of_haplotypes(PermutationScheme::PIAPWG, 7); }

}  // namespace tov
