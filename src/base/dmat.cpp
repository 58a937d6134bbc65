// DistMat: sizes, copies and the project file form of a labelled distance matrix.
#include "base/dmat.h"

#include <new>
#include <ostream>
#include <stdexcept>

#include "output/xml.h"
#include "run/errors.h"

namespace tov {

DistMat::DistMat(DistMat const& other) : TriMat() { *this = other; }

DistMat& DistMat::operator=(DistMat const& other) {
    reset();  // kept on purpose: before any test, so that a self-assignment loses the labels
    profile = other.profile;
    name = other.name;
    nb_labels = other.nb_labels;
    project = other.project;
    labels = other.labels;
    TriMat::operator=(other);
    return *this;
}

void DistMat::reset() {
    nb_labels = 0;
    name = "";
    labels.clear();
    initialize();
    set_conventional_fst(0);
}

int DistMat::initializeMatrixAndArrays(int const& n) {
    int const size = n > 0 ? n : 0;
    try {
        create(size);
        labels.assign(static_cast<std::size_t>(size), my_string());
        nb_labels = size;
        return 1;
    } catch (std::bad_alloc const&) {
    } catch (std::length_error const&) {
    } catch (ExceptionType const&) {
    }
    destroy();
    labels.clear();
    nb_labels = 0;
    return 0;
}

std::ostream& operator<<(std::ostream& os, DistMat& matrix) {
    if (matrix.nb_labels == 0) return os;
    os << "\t[[DistanceMatrix]]\n\n"
       << "\t\tMatrixName= \"" << matrix.name << "\"\n"
       << "\t\tMatrixSize= " << matrix.nb_labels << '\n'
       << "\t\tLabelPosition=LINE\n"
       << "\t\tMatrixData={\n";
    if (matrix.labels.empty()) E.error(ErrorType::Information, "operator <<(ostream& os, DistMat& DM)", 11);
    for (my_string const& label : matrix.labels) os << label << ' ';
    os << '\n';
    TXmlTag const tag("hapDistMatrix");
    if (matrix.conventional_fst()) {
        os << "\nConventional FST Matrix: Dij=1 if i!=j and O else:\n";
    } else {
        if (xmlOutput) os << tag.open();
        matrix.print_data(os);
        if (xmlOutput) os << tag.close();
    }
    return os << "\n\t\t}" << std::endl;
}

}  // namespace tov
