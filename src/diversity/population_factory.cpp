// The sample class of a data type.
#include <memory>

#include "diversity/popdna.h"
#include "diversity/popmic.h"
#include "diversity/poprflp.h"
#include "diversity/popsta.h"

namespace tov {

std::unique_ptr<Population> new_population(TDataType type) {
    switch (type) {
        case DNA:
            return std::make_unique<PopulDNA>();
        case RFLP:
            return std::make_unique<PopulRFLP>();
        case MICROSAT:
            return std::make_unique<PopulMicrosat>();
        case STANDARD:
        case FREQUENCY:
            break;
    }
    return std::make_unique<PopulStandard>();
}

}  // namespace tov
