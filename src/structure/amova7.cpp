// AMOVA_1G_P_IH: populations of one group, gene copies within populations; for genotypes of unknown phase without the
// level of individuals, or with conventional distances. The table is that of AMOVA_1G_P_H; the test moves whole
// individuals.
#include "structure/amova.h"

namespace tov {

int Amova::AMOVA_1G_P_IH() { return one_group_of_haplotypes(PermutationScheme::PIAPWG); }

}  // namespace tov
