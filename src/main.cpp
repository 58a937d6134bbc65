// The program's entry.
#include "run/tovcore35.h"

int main(int argc, char** argv) { return tov::_main(argc, argv); }
