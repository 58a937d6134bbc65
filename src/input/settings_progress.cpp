// Progress of a run on the console, and the counters behind it.
#include <iostream>

#include "input/settings.h"
#include "run/run_state.h"

namespace tov {

std::string settings::input_file;
int settings::num_proj_done = 0;
double settings::global_work_to_do = 0.0;
double settings::global_work_done = 0.0;
std::string settings::message;
std::string settings::old_message;

namespace {

/// Percentage of work done, cut to a whole number between 0 and 100.
int percentage(double done, double to_do) {
    double const percent = 100.0 * done / to_do;
    if (percent >= 100.0) return 100;
    return percent > 0.0 ? static_cast<int>(percent) : 0;
}

}  // namespace

void settings::print_message() {
    if (silentTovenia) return;
    std::string text;
    if (global_work_to_do > 0.0) text = std::to_string(percentage(global_work_done, global_work_to_do)) + "% : ";
    text += message;
    if (text == old_message) return;
    std::cout << text << std::endl;
    old_message = text;
}

}  // namespace tov
