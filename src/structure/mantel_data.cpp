// The data of a Mantel analysis: life of the object and the words for Y.
#include "structure/mantel.h"

namespace tov {

Mantel::Mantel() { init_YTypes(); }

void Mantel::init_YTypes() {
    Y_types = {my_string("fst"), my_string("log_fst"), my_string("slatkinlinearfst"), my_string("log_slatkinlinearfst"),
               my_string("nm"),  my_string("custom")};
}

void Mantel::reset() { *this = Mantel(); }

}  // namespace tov
