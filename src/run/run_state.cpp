// Process-wide state of a run: definitions.
#include "run/run_state.h"

namespace tov {

std::string proj_file;
std::string set_file;
std::string run_file;
std::string ToveniaExeDirectory;
bool silentTovenia = false;
int numSamplesAnalysed = 0;

}  // namespace tov
