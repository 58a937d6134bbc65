// Alleles, loci and the store that holds every allele of a project once.
#include "model/alldb.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <ostream>

#include "base/random.h"
#include "run/errors.h"

namespace tov {

namespace {

// From this number of alleles on, names are looked up by hash: long names, and short ones, which a scan of words finds.
constexpr int long_names_for_hash = 12;
constexpr int short_names_for_hash = 64;

// A name of up to eight characters as a word, never 0; 0 for any other name.
std::uint64_t packed(std::string_view name) noexcept {
    std::uint64_t key = 0;
    if (name.size() > sizeof key || name.empty() || name.back() == '\0') return 0;
    for (std::size_t i = 0; i < name.size(); ++i) {
        key |= std::uint64_t{static_cast<unsigned char>(name[i])} << (8 * i);
    }
    return key;
}

}  // namespace

int TAllele::numPop = 0;
int TAllele::numGroup = 0;

TAllele::TAllele() : name_("UNDEF") {}

TAllele::TAllele(my_string const& name, double freq, int locus)
    : name_(name), freq_(freq), locus_(locus), observed_(freq > 0.0) {}

TAllele::TAllele(char name) : name_(name) {}

TAllele::TAllele(TAllele const& other) { *this = other; }

TAllele& TAllele::operator=(TAllele const& other) {
    if (this == &other) return *this;
    name_ = other.name_;
    freq_ = other.freq_;
    locus_ = other.locus_;
    temp_position_ = other.temp_position_;
    selected = other.selected;
    exp_freq = other.exp_freq;
    ibd_sum = other.ibd_sum;
    observed_ = other.observed_;
    pop_freq_ = other.pop_freq_;
    if (!pop_freq_.empty()) pop_freq_.resize(static_cast<std::size_t>(std::max(0, numPop)));
    group_freq_ = other.group_freq_;
    if (!group_freq_.empty()) group_freq_.resize(static_cast<std::size_t>(std::max(0, numGroup)));
    return *this;
}

void TAllele::create_pop_freq(int n) { pop_freq_.assign(static_cast<std::size_t>(std::max(0, n)), 0.0); }

void TAllele::create_group_freq(int n) { group_freq_.assign(static_cast<std::size_t>(std::max(0, n)), 0.0); }

std::ostream& operator<<(std::ostream& os, TAllele const& allele) { return os << allele.name(); }

// --- TLocus ---

TLocus::TLocus(my_string const& name) : MY_TIArrayAsVector<TAllele>(3, 10), name_(name) {}

TLocus::TLocus(TLocus const& other) : MY_TIArrayAsVector<TAllele>(-1, 10) { *this = other; }

TLocus& TLocus::operator=(TLocus const& other) {
    if (this == &other) return *this;
    Flush();
    static_cast<LocusStatistics&>(*this) = other;
    name_ = other.name_;
    print_width = other.print_width;
    for (int i = 0; i < other.nb_alleles(); ++i) {
        TAllele const* const source = other.allele(i);
        Add(source ? new TAllele(*source) : nullptr);
    }
    return *this;
}

TAllele* TLocus::allele(int index) const {
    if (index < 0 || index >= nb_alleles()) return nullptr;
    return MY_TIArrayAsVector<TAllele>::operator[](index);
}

int TLocus::Add(TAllele* allele) {
    int const count = MY_TIArrayAsVector<TAllele>::Add(allele);
    if (allele) {
        allele->home_ = this;
        allele->rank_ = count - 1;
    }
    return count;
}

void TLocus::Flush() {
    MY_TIArrayAsVector<TAllele>::Flush();
    indexed_ = 0;
    keys_.clear();
    by_name_.clear();
}

void TLocus::index_names() const {
    int const count = nb_alleles();
    if (indexed_ > count) {
        indexed_ = 0;
        keys_.clear();
        by_name_.clear();
    }
    for (; indexed_ < count; ++indexed_) {
        TAllele const* const a = allele(indexed_);
        keys_.push_back(a ? packed(a->name().str()) : 0);
    }
    if (count < long_names_for_hash) return;
    for (int i = static_cast<int>(by_name_.size()); i < count; ++i) {
        if (TAllele const* const a = allele(i)) by_name_.emplace(a->name().str(), i);
    }
}

int TLocus::find_long(std::string_view name) const {
    if (nb_alleles() >= long_names_for_hash) {
        auto const hit = by_name_.find(std::string(name));
        return hit == by_name_.end() ? -1 : hit->second;
    }
    for (int i = 0; i < nb_alleles(); ++i) {
        TAllele const* const a = allele(i);
        if (a && a->name() == name) return i;
    }
    return -1;
}

int TLocus::find_index(std::string_view name) const {
    int const count = nb_alleles();
    if (indexed_ != count) index_names();
    std::uint64_t const key = packed(name);
    if (key == 0 || count >= short_names_for_hash) return find_long(name);
    for (std::size_t i = 0; i < keys_.size(); ++i) {
        if (keys_[i] == key) return static_cast<int>(i);
    }
    return -1;
}

TAllele* TLocus::find_allele_by_name(my_string const& name) const { return allele(find_index(name.str())); }

TAllele* TLocus::find_allele_by_name(std::string_view name) const { return allele(find_index(name)); }

int TLocus::get_allele_index(TAllele const* allele) const {
    if (!allele) return -1;
    if (allele->home_ == this && this->allele(allele->rank_) == allele) return allele->rank_;
    auto const all = view();
    auto const hit = std::find(all.begin(), all.end(), allele);
    return hit == all.end() ? -1 : static_cast<int>(hit - all.begin());
}

// kept on purpose: the blank allele that stands first at each locus of a project makes these thresholds right for real
// data (blank + two alleles is polymorphic, blank + one allele + missing data is not); on a bare locus they look odd.
bool TLocus::is_polymorph(char missing) const {
    if (nb_alleles() <= 2) return false;
    if (nb_alleles() > 3) return true;
    return find_index(std::string_view(&missing, 1)) < 0;
}

int TLocus::insert(std::string_view name, double freq, int locus_field) {
    int index = find_index(name);
    if (index < 0) {
        index = Add(new TAllele(my_string(name), freq, locus_field)) - 1;
    } else {
        allele(index)->count(freq);
    }
    return index;
}

// --- TAlleleDB ---

TAlleleDB::TAlleleDB() : MY_TIArrayAsVector<TLocus>(-1, 100), not_found(my_string("Allele not found")) {}

TAlleleDB::TAlleleDB(TAlleleDB const& other) : TAlleleDB() { *this = other; }

TAlleleDB& TAlleleDB::operator=(TAlleleDB const& other) {
    if (this == &other) return *this;
    destroy();
    counter = other.counter;
    not_found = other.not_found;
    blank_name_ = other.blank_name_;
    for (int l = 0; l < other.nb_loci(); ++l) {
        TLocus const* const source = other.locus(l);
        Add(source ? new TLocus(*source) : nullptr);
    }
    return *this;
}

TLocus* TAlleleDB::locus(int index) const {
    if (index < 0 || index >= nb_loci()) return nullptr;
    return MY_TIArrayAsVector<TLocus>::operator[](index);
}

int TAlleleDB::Add(TLocus* locus) {
    int const count = MY_TIArrayAsVector<TLocus>::Add(locus);
    if (locus) {
        locus->database_ = this;
        locus->position_ = count - 1;
    }
    return count;
}

int TAlleleDB::find_locus(my_string const& name) const {
    if (indexed_ > nb_loci()) {
        indexed_ = 0;
        by_name_.clear();
    }
    for (; indexed_ < nb_loci(); ++indexed_) {
        if (TLocus const* const l = locus(indexed_)) by_name_.emplace(l->name().str(), indexed_);
    }
    auto const hit = by_name_.find(name.str());
    return hit == by_name_.end() ? -1 : hit->second;
}

TAllele* TAlleleDB::operator()(my_string const& locus_name, my_string const& allele) const {
    return (*this)(find_locus(locus_name), allele);
}

TAllele* TAlleleDB::operator()(int const& index, my_string const& allele) const {
    TLocus const* const l = locus(index);
    return l ? l->find_allele_by_name(allele) : nullptr;
}

TAllele* TAlleleDB::operator()(my_string const& locus_name, int const& allele) const {
    return (*this)(find_locus(locus_name), allele);
}

TAllele* TAlleleDB::operator()(int const& index, int const& allele) const {
    TLocus const* const l = locus(index);
    return l ? l->allele(allele) : nullptr;
}

TAllele* TAlleleDB::insert_allele(int index, std::string_view allele, double freq) {
    TLocus* target = locus(index);
    if (!target) {
        my_string name("Locus ");
        name += std::to_string(index);
        target = new TLocus(name);
        Add(target);
    }
    return target->allele(target->insert(allele, freq, index));
}

int TAlleleDB::InsertAllPos(int const& index, my_string const& allele, double freq) {
    return insert_allele(index, allele.str(), freq)->rank();
}

int TAlleleDB::InsertAllPos(int const& index, my_string const& allele, double& freq, int const& /*ignored*/) {
    return insert_allele(index, allele.str(), freq)->rank();
}

int TAlleleDB::InsertAllPos(my_string const& locus_name, my_string const& allele, double freq) {
    int index = find_locus(locus_name);
    if (index < 0) index = Add(new TLocus(locus_name)) - 1;
    return locus(index)->insert(allele.str(), freq, index);
}

void TAlleleDB::create_pop_freq_vector(int const& n) {
    try {
        for (TLocus const* const l : view()) {
            for (TAllele* const a : l->view()) a->create_pop_freq(n);
        }
        TAllele::numPop = n;
    } catch (std::bad_alloc const&) {
        E.error(ErrorType::Memory, "TAlleleDB::create_pop_freq_vector", 0);
    }
}

void TAlleleDB::create_group_freq_vector(int const& n) {
    try {
        for (TLocus const* const l : view()) {
            for (TAllele* const a : l->view()) a->create_group_freq(n);
        }
        TAllele::numGroup = n;
    } catch (std::bad_alloc const&) {
        // kept on purpose: the report names the population vectors here too.
        E.error(ErrorType::Memory, "TAlleleDB::create_pop_freq_vector", 0);
    }
}

void TAlleleDB::flush_pop_freq_vector() {
    for (TLocus const* const l : view()) {
        for (TAllele* const a : l->view()) a->release_pop_freq();
    }
}

void TAlleleDB::flush_group_freq_vector() {
    for (TLocus const* const l : view()) {
        for (TAllele* const a : l->view()) a->release_group_freq();
    }
}

// kept on purpose: releases the vectors, though the name speaks of a reset.
void TAlleleDB::reset_all_pop_freqs() { flush_pop_freq_vector(); }

void TAlleleDB::assign_rand_exp_freq() {
    long seed = 1;
    for (TLocus const* const l : view()) {
        double sum = 0.0;
        for (TAllele* const a : l->view()) {
            a->exp_freq = ran3(&seed);
            sum += a->exp_freq;
        }
        for (TAllele* const a : l->view()) a->exp_freq /= sum;
    }
}

void TAlleleDB::reset_exp_freq() {
    for (TLocus const* const l : view()) {
        for (TAllele* const a : l->view()) {
            a->exp_freq = 0.0;
            a->ibd_sum = 0.0;
        }
    }
}

double TAlleleDB::update_all_freq_with_inbreeding(double const& F) {
    if (!(F > 0.0)) return -1.0;
    double change = 0.0;
    for (TLocus const* const l : view()) {
        for (TAllele* const a : l->view()) {
            double* const slots = a->pop_freq();
            if (!slots || a->pop_freq_slots() < 2) continue;
            a->exp_freq = (slots[0] - a->ibd_sum) / F;
            change += std::abs(a->exp_freq - slots[1]);
            slots[1] = a->exp_freq;
            a->ibd_sum = 0.0;
        }
    }
    return change;
}

void TAlleleDB::destroy() {
    Flush();
    indexed_ = 0;
    by_name_.clear();
    blank_name_ = my_string();
    counter = 0;
}

void TAlleleDB::resize(int const& n) {
    Reallocate(n);
    indexed_ = 0;
    by_name_.clear();
}

bool TAlleleDB::is_unused_blank(int index, int a) const {
    TLocus const* const l = locus(index);
    return l && tov::is_unused_blank(*l, a);
}

bool is_unused_blank(TLocus const& locus, int a) {
    if (a != 0 || !locus.database()) return false;
    my_string const& blank = locus.database()->blank_name();
    TAllele const* const first = locus.allele(0);
    return first && !blank.is_null() && !first->was_observed() && first->name() == blank;
}

// --- Printing ---

namespace {

// Entries of a locus that listings show.
std::vector<TAllele const*> listed_alleles(TLocus const& locus) {
    std::vector<TAllele const*> listed;
    for (int i = 0; i < locus.nb_alleles(); ++i) {
        if (locus.allele(i) && !is_unused_blank(locus, i)) listed.push_back(locus.allele(i));
    }
    return listed;
}

void print_blanks(std::ostream& os, int n) {
    for (; n > 0; --n) os << ' ';
}

void print_left(std::ostream& os, std::string const& text, int width) {
    os << text;
    print_blanks(os, width - static_cast<int>(text.size()));
}

}  // namespace

std::ostream& operator<<(std::ostream& os, TAlleleDB& database) {
    constexpr int value_width = 4;
    std::vector<std::vector<TAllele const*>> columns;
    std::size_t rows = 0;
    for (TLocus* const l : database.view()) {
        columns.push_back(listed_alleles(*l));
        rows = std::max(rows, columns.back().size());
        int widest = 0;
        for (TAllele const* const a : columns.back()) widest = std::max(widest, a->name().length());
        l->print_width = widest + 1;
    }
    for (std::size_t row = 0; row < rows; ++row) {
        for (std::size_t c = 0; c < columns.size(); ++c) {
            int const width = database.locus(static_cast<int>(c))->print_width;
            if (row < columns[c].size()) {
                TAllele const& a = *columns[c][row];
                print_left(os, a.name().str(), width);
                print_left(os, std::to_string(static_cast<long long>(100.0 * a.freq())), value_width);
                os << '%';
            } else {
                print_blanks(os, width + value_width + 1);
            }
            os << '|';
        }
        os << '\n';
    }
    return os;
}

}  // namespace tov
