// Working pools of haplotypes: haplotypes, look-up, and the arithmetic on their frequencies.
#include "model/hpopdb.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <unordered_map>

#include "base/random.h"
#include "base/special.h"
#include "inference/formula/em_terms.h"
#include "run/errors.h"

namespace tov {

// --- TPopHaplotype ---

bool TPopHaplotype::operator<(TPopHaplotype const& other) const {
    for (int p = 0; p < other.nb_loci(); ++p) {
        if (alleles_.same_at(p, other.alleles_)) continue;
        TAllele const* const mine = alleles_[p];
        TAllele const* const theirs = other.alleles_[p];
        if (!mine) return true;
        if (!theirs) return false;
        if (*mine < *theirs) return true;
        if (*theirs < *mine) return false;
    }
    return false;
}

void TPopHaplotype::copy_frame(TPopHaplotype const& source) {
    name_ = source.name_;
    freq_ = source.freq_;
    old_freq_ = source.old_freq_;
    sd_ = source.sd_;
    sum_freq_ = source.sum_freq_;
    separator_ = source.separator_;
    lk_deseq_ = 0.0;
    st_deseq_ = 0.0;
    alleles_.Flush();
}

void TPopHaplotype::copy_restricted_hapl(int const* loci, TPopHaplotype const& source) {
    copy_frame(source);
    alleles_.Reallocate(loci[0]);
    for (int i = 1; i <= loci[0]; ++i) alleles_.Add(source[loci[i]]);
}

void TPopHaplotype::build_sub_haplotype(int const* flags, TPopHaplotype const& source) {
    copy_frame(source);
    for (int p = 0; p < source.nb_loci(); ++p) {
        TAllele* const allele = source[p];
        if (!allele || allele->is_in_loci() < 0 || !flags[allele->is_in_loci()]) continue;
        allele->set_temp_locus_position(p);
        alleles_.Add(allele);
    }
}

void TPopHaplotype::build_sampled_haplo(int id, TAllele* a, TAllele* b) {
    name_ = my_string(id);
    freq_ = old_freq_ = sd_ = sum_freq_ = 0.0;
    separator_ = ' ';
    alleles_.Flush();
    alleles_.Add(a);
    alleles_.Add(b);
}

// --- TPopHaploDB: storage and look-up ---

TPopHaploDB::TPopHaploDB() : MY_TIArrayAsVector<TPopHaplotype>(9, 100) {}

TPopHaploDB::TPopHaploDB(TPopHaploDB const& other) : MY_TIArrayAsVector<TPopHaplotype>(-1, 100) { *this = other; }

TPopHaploDB& TPopHaploDB::operator=(TPopHaploDB const& other) {
    if (this == &other) return *this;
    MY_TIArrayAsVector<TPopHaplotype>::operator=(other);
    reindex();
    pol_flags_ = other.pol_flags_;
    reference_.reset();
    reference_allele_.reset();
    if (other.reference_) {
        reference_ = std::make_unique<TPopHaplotype>(*other.reference_);
        if (other.reference_allele_) {
            reference_allele_ = std::make_unique<TAllele>(*other.reference_allele_);
            for (int p = 0; p < reference_->nb_loci(); ++p)
                reference_->alleles().set_allele(p, reference_allele_.get());
        }
    }
    return *this;
}

TPopHaplotype& TPopHaploDB::haplotype(int index) const { return *view()[static_cast<std::size_t>(index)]; }

int TPopHaploDB::pol_flag(int const& locus) const {
    if (locus < 0 || locus >= static_cast<int>(pol_flags_.size())) return 0;
    return pol_flags_[static_cast<std::size_t>(locus)];
}

void TPopHaploDB::reindex() const noexcept { indexed_ = -1; }

void TPopHaploDB::reserve(std::size_t n) {
    hashes_.reserve(n);
    std::size_t size = 64;
    while (size < 2 * n) size *= 2;
    if (size > table_.size()) {
        table_.assign(size, 0);
        indexed_ = -1;
    }
}

void TPopHaploDB::index_entry(std::size_t hash, int position) const {
    std::size_t const mask = table_.size() - 1;
    std::size_t slot = hash & mask;
    while (table_[slot] != 0) slot = (slot + 1) & mask;
    table_[slot] = static_cast<std::uint32_t>(position) + 1;
}

void TPopHaploDB::index_all() const {
    int const count = nb_haplotypes();
    if (indexed_ == count && !table_.empty()) return;
    std::size_t size = std::max<std::size_t>(64, table_.size());
    while (size < 2 * (static_cast<std::size_t>(count) + 1)) size *= 2;
    bool const anew = indexed_ < 0 || indexed_ > count;
    if (anew || size != table_.size()) {
        if (anew) hashes_.clear();
        table_.assign(size, 0);
        for (std::size_t i = 0; i < hashes_.size(); ++i) index_entry(hashes_[i], static_cast<int>(i));
    }
    for (int i = static_cast<int>(hashes_.size()); i < count; ++i) {
        hashes_.push_back(haplotype(i).alleles().hash());
        index_entry(hashes_.back(), i);
    }
    indexed_ = count;
}

TPopHaplotype* TPopHaploDB::find_hashed(AlleleRow const& alleles, std::size_t hash) const {
    std::size_t const mask = table_.size() - 1;
    for (std::size_t slot = hash & mask; table_[slot] != 0; slot = (slot + 1) & mask) {
        std::size_t const position = table_[slot] - 1;
        if (hashes_[position] != hash) continue;
        TPopHaplotype* const candidate = view()[position];
        if (candidate->alleles() == alleles) return candidate;
    }
    return nullptr;
}

TPopHaplotype* TPopHaploDB::find(TPopHaplotype const& h) const {
    index_all();
    return find_hashed(h.alleles(), h.alleles().hash());
}

TPopHaplotype* TPopHaploDB::insert(TPopHaplotype const& h, double const& f) {
    index_all();
    std::size_t const hash = h.alleles().hash();
    if (TPopHaplotype* const known = find_hashed(h.alleles(), hash)) {
        known->inc_freq(f);
        return known;
    }
    auto copy = std::make_unique<TPopHaplotype>(h);
    copy->set_freq(f);
    TPopHaplotype* const stored = copy.get();
    MY_TIArrayAsVector<TPopHaplotype>::Add(copy.release());
    if (2 * (hashes_.size() + 2) > table_.size()) {
        index_all();
    } else {
        hashes_.push_back(hash);
        index_entry(hash, static_cast<int>(hashes_.size()) - 1);
        ++indexed_;
    }
    return stored;
}

int TPopHaploDB::Add(TPopHaplotype* h) { return MY_TIArrayAsVector<TPopHaplotype>::Add(h); }

void TPopHaploDB::Detach(int const& i) {
    MY_TIArrayAsVector<TPopHaplotype>::Detach(i);
    reindex();
}

void TPopHaploDB::Destroy(int const& i) {
    MY_TIArrayAsVector<TPopHaplotype>::Destroy(i);
    reindex();
}

void TPopHaploDB::Flush() {
    MY_TIArrayAsVector<TPopHaplotype>::Flush();
    std::fill(table_.begin(), table_.end(), 0U);
    hashes_.clear();
    indexed_ = 0;
}

void TPopHaploDB::flush_haplotypes() { Flush(); }

void TPopHaploDB::empty() {
    Flush();
    table_ = std::vector<std::uint32_t>();
    hashes_ = std::vector<std::size_t>();
    pol_flags_.clear();
    reference_.reset();
    reference_allele_.reset();
}

void TPopHaploDB::keep_only(std::vector<char> const& kept) {
    std::vector<TPopHaplotype*> survivors;
    for (std::size_t i = 0; i < kept.size(); ++i) {
        if (kept[i]) {
            survivors.push_back(view()[i]);
        } else {
            delete view()[i];
        }
    }
    owns(0);
    MY_TIArrayAsVector<TPopHaplotype>::Flush();
    owns(1);
    for (TPopHaplotype* const h : survivors) MY_TIArrayAsVector<TPopHaplotype>::Add(h);
    reindex();
}

void TPopHaploDB::cleanDB(double const& limit) {
    std::vector<char> kept;
    for (TPopHaplotype const* const h : view()) kept.push_back(!(h->freq() < limit));
    keep_only(kept);
}

void TPopHaploDB::reset_freq() {
    for (TPopHaplotype* const h : view()) h->set_freq(0.0);
}

void TPopHaploDB::reset_homo_count() {
    for (TPopHaplotype* const h : view()) h->set_homo_freq(0);
}

// --- Frequencies of the EM ---

double TPopHaploDB::assign_rand_init_freq(int const& range) {
    std::vector<char> blank;
    for (TPopHaplotype const* const h : view()) blank.push_back(h->has_blank() ? 1 : 0);
    std::vector<double> freq(blank.size());
    double const smallest = random_frequencies(freq, blank, range);
    for (std::size_t i = 0; i < freq.size(); ++i) {
        view()[i]->set_freq(freq[i]);
        view()[i]->set_old_freq(freq[i]);
    }
    return smallest;
}

bool TPopHaploDB::convergence(double const& epsilon) {
    double change = 0.0;
    for (TPopHaplotype* const h : view()) {
        change += std::abs(h->freq() - h->old_freq());
        h->set_old_freq(h->freq());
    }
    return change < epsilon;
}

TPopHaplotype* TPopHaploDB::select_haplotype(double const& u) const {
    double sum = 0.0;
    for (TPopHaplotype* const h : view()) {
        sum += h->freq();
        if (sum > u) return h;
    }
    return nullptr;
}

double TPopHaploDB::sum_homoz_inbreeding(double const& F) const {
    double sum = 0.0;
    for (TPopHaplotype const* const h : view()) {
        if (h->homo_count()) sum += h->homo_count() / ((1.0 - h->freq()) * F + h->freq());
    }
    return sum;
}

void TPopHaploDB::sums_hapl_frequencies(TPopHaploDB& other, double threshold) {
    for (TPopHaplotype* const h : view()) {
        if (!(h->freq() > threshold)) continue;
        TPopHaplotype const* const twin = other.find(*h);
        if (!twin) continue;
        h->inc_sum_freq(twin->freq());
        h->inc_sd_freq(twin->freq() * twin->freq());
    }
}

// kept on purpose: a haplotype of frequency 0 gets the variance of the one before it.
void TPopHaploDB::calc_sd(int const& n) {
    if (n < 2) return;
    double variance = 0.0;
    for (TPopHaplotype* const h : view()) {
        if (h->freq() > 0.0) variance = (h->sd() - h->sum_freq() * h->sum_freq() / n) / (n - 1);
        h->set_sd(variance > 0.0 ? std::sqrt(variance) : 0.0);
    }
}

int TPopHaploDB::update_lk_equil() {
    int loci = 0;
    for (TPopHaplotype const* const h : view()) loci = std::max(loci, h->nb_loci());
    std::vector<std::unordered_map<TAllele const*, double>> marginal(static_cast<std::size_t>(loci));
    for (TPopHaplotype const* const h : view()) {
        for (int l = 0; l < h->nb_loci(); ++l) marginal[static_cast<std::size_t>(l)][(*h)[l]] += h->freq();
    }
    for (TPopHaplotype* const h : view()) {
        double product = 1.0;
        double p[2] = {1.0, 1.0};
        for (int l = 0; l < h->nb_loci(); ++l) {
            double const sum = marginal[static_cast<std::size_t>(l)][(*h)[l]];
            product *= sum;
            if (l < 2) p[l] = sum;
        }
        double const D = h->freq() - product;
        double const limit = D <= 0.0 ? std::min(p[0] * p[1], (1.0 - p[0]) * (1.0 - p[1]))
                                      : std::min((1.0 - p[0]) * p[1], p[0] * (1.0 - p[1]));
        h->set_lk_deseq(D);
        h->set_st_deseq(std::abs(limit) > 1e-06 ? D / limit : 0.0);
    }
    return 1;
}

double TPopHaploDB::calc_hapl_lk_dis() const {
    double sum = 0.0;
    for (TPopHaplotype const* const h : view()) sum += factln(static_cast<int>(h->freq()));
    return sum;
}

void TPopHaploDB::comp_link_equil_hapl_freq() {
    for (TPopHaplotype* const h : view()) {
        double product = 1.0;
        for (int l = 0; l < h->nb_loci(); ++l) {
            if (TAllele const* const allele = (*h)[l]) product *= allele->exp_freq;
        }
        h->set_freq(product);
    }
}

// --- Changes of the list ---

// Walking down from the end, a haplotype gives its frequency to the nearest equal one below it.
void TPopHaploDB::check_redundancy() {
    int const n = nb_haplotypes();
    std::unordered_multimap<std::size_t, int> last_of_class;
    std::vector<int> below(static_cast<std::size_t>(n), -1);
    for (int i = 0; i < n; ++i) {
        AlleleRow const& alleles = haplotype(i).alleles();
        auto const [from, to] = last_of_class.equal_range(alleles.hash());
        auto twin = from;
        while (twin != to && !(haplotype(twin->second).alleles() == alleles)) ++twin;
        if (twin != to) {
            below[static_cast<std::size_t>(i)] = twin->second;
            twin->second = i;
        } else {
            last_of_class.emplace(alleles.hash(), i);
        }
    }
    std::vector<char> kept(static_cast<std::size_t>(n), 1);
    for (int i = n - 1; i > 0; --i) {
        int const j = below[static_cast<std::size_t>(i)];
        if (j < 0) continue;
        haplotype(j) += haplotype(i);
        kept[static_cast<std::size_t>(i)] = 0;
    }
    keep_only(kept);
}

void TPopHaploDB::explode_base() {
    int const n = nb_haplotypes();
    for (int i = 0; i < n; ++i) {
        TPopHaplotype& h = haplotype(i);
        int const k = static_cast<int>(h.freq() + 0.1);
        if (std::abs(k - h.freq()) > 0.0001) E.error(ErrorType::Warning, "TPopHaploDB::explode_base()", 106);
        if (k <= 1) continue;
        h.set_freq(1.0);
        for (int copy = 1; copy < k; ++copy) Add(new TPopHaplotype(h));
    }
    reindex();
}

void TPopHaploDB::permute(int* loci) {
    long seed = 1;
    int const n = nb_haplotypes();
    for (int l = 0; l < loci[0]; ++l) {
        for (int i = 0; i < n; ++i) {
            int const j = i + static_cast<int>((n - i) * ran3(&seed));
            if (j >= n) {
                E.error(ErrorType::Error, "TPopHaploDB::permute_alleles()", 1);
                reindex();
                return;
            }
            if (j != i) haplotype(i).alleles().swap_allele(l, haplotype(j).alleles());
        }
    }
    reindex();
}

// --- Polymorphic loci only ---

void TPopHaploDB::build_reference_haplotype(TAlleleDB* db, char const& missing) {
    bool const blanks_occur =
        std::any_of(view().begin(), view().end(), [](TPopHaplotype const* h) { return h->has_blank() != 0; });
    // Entries of a locus that haplotypes can hold: the blank counts only where it was seen or put into a haplotype.
    auto const first_entry = [&](TLocus const& locus) { return !blanks_occur && is_unused_blank(locus, 0) ? 1 : 0; };
    auto const& loci = db->view();
    if (std::none_of(loci.begin(), loci.end(), [&](TLocus const* l) { return l->nb_alleles() - first_entry(*l) >= 2; }))
        return;
    reference_ = std::make_unique<TPopHaplotype>();
    reference_allele_.reset();
    reference_->set_separator(nb_haplotypes() > 0 ? haplotype(0).separator() : '\0');
    pol_flags_.assign(loci.size(), 0);
    std::string_view const missing_name(&missing, 1);
    for (std::size_t l = 0; l < loci.size(); ++l) {
        TLocus const& locus = *loci[l];
        int chosen = first_entry(locus);
        if (locus.nb_alleles() - chosen >= 2) {
            pol_flags_[l] = 1;
            if (locus.allele(chosen)->name() == missing_name) ++chosen;
        } else {
            chosen = std::min(chosen, std::max(0, locus.nb_alleles() - 1));
        }
        reference_->alleles().Add(locus.allele(chosen));
    }
}

void TPopHaploDB::compact(TAlleleDB* db, char const& missing) {
    build_reference_haplotype(db, missing);
    if (has_pol_flags()) shrink();
}

void TPopHaploDB::shrink() {
    for (TPopHaplotype* const h : view()) {
        AlleleRow kept;
        for (int p = 0; p < h->nb_loci(); ++p) {
            if (p >= static_cast<int>(pol_flags_.size()) || pol_flags_[static_cast<std::size_t>(p)]) kept.Add((*h)[p]);
        }
        h->alleles() = std::move(kept);
    }
    reindex();
}

void TPopHaploDB::init_ref_hapl(int const* n) {
    reference_allele_ = std::make_unique<TAllele>();
    reference_ = std::make_unique<TPopHaplotype>();
    for (int p = 0; p < n[0]; ++p) reference_->alleles().Add(reference_allele_.get());
}

// --- AHaplFreq ---

AHaplFreq::AHaplFreq(int n) { set_frequencies(n); }

void AHaplFreq::set_frequencies(double x) noexcept {
    frequency = x;
    sq_frequency = x * x;
}

void AHaplFreq::calc_mean_freq(int const& n, int const& k) {
    if (k == 0) {
        *this = AHaplFreq();
        return;
    }
    mean = frequency / n;
    // Of equal frequencies the difference may be rounded to less than 0.
    sd = n < 2 ? 0.0 : std::sqrt(std::max(0.0, (sq_frequency - frequency * frequency / n) / (n - 1)));
    frequency = mean / k;
    sq_frequency = sd / k;
}

AHaplFreq& AHaplFreq::operator+=(AHaplFreq const& other) noexcept {
    frequency += other.frequency;
    sq_frequency += other.sq_frequency;
    return *this;
}

}  // namespace tov
