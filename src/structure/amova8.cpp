// AMOVA_G_P_IH: groups, populations within groups, gene copies within populations; for genotypes of unknown phase
// without the level of individuals, or with conventional distances. The table is that of AMOVA_G_P_H; the tests move
// whole individuals.
#include "structure/amova.h"

namespace tov {

int Amova::AMOVA_G_P_IH() { return groups_of_haplotypes(PermutationScheme::PIAPAG, PermutationScheme::PIAPWG); }

}  // namespace tov
