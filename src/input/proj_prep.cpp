// Project: reading the project file into its parts.
#include <fstream>

#include "base/dmat.h"
#include "input/project_reader.h"
#include "input/settings.h"
#include "model/hapldb.h"
#include "model/sample.h"
#include "model/struct.h"
#include "run/errors.h"
#include "run/project.h"
#include "structure/mantel.h"

namespace tov {

int Project::newOpen() {
    distance_computed = 0;
    std::ifstream in(settings::input_file);
    if (!in.is_open()) {
        E.error(ErrorType::Error, "Project::newOpen()", 126);
        return 0;
    }
    return tov::read_project(in, {*this, p_hdb(), p_dmt(), p_sam(), p_str(), p_mantel()});
}

int Project::open() {
    initialize();
    return newOpen();
}

}  // namespace tov
