// Text of the zipper EM.
#include <ostream>

#include "inference/beyond_em.h"
#include "inference/em_report.h"
#include "output/style.h"

namespace tov {

void print_zipper_head(std::ostream& out, EmSummary const& summary, ZipperResult const& result) {
    out << "\n----------------------------------\n"
        << "Zipper version of the EM algorithm\n"
        << "----------------------------------\n";
    print_em_summary(out, summary);
    out << "\nWindow size for zipper EM                   : " << result.window << '\n'
        << "Number or loci order                        : " << result.orders << '\n'
        << "Loci within window                          : ";
    for (int const locus : result.order) {
        if (result.in_window[static_cast<std::size_t>(locus)]) out << locus + 1 << ' ';
    }
    out << "\nLogLhood  : " << num{summary.ln_likelihood, 0, 5} << '\n';
}

}  // namespace tov
