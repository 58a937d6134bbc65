// Allelic definitions of haplotypes and genotypes.
#include "input/definition.h"

#include <algorithm>

#include "input/line_text.h"
#include "run/errors.h"

namespace tov {
namespace {

constexpr unsigned char byte(char c) noexcept { return static_cast<unsigned char>(c); }

}  // namespace

DefinitionScanner::DefinitionScanner(ProfileSettings const& profile)
    : type_(profile.DataType),
      sites_(type_ == DNA || type_ == RFLP || (type_ == STANDARD && profile.LocusSeparator == 0)),
      missing_(profile.MissingData),
      recessive_(profile.RecessiveAllele.str()) {
    if (type_ == DNA || type_ == RFLP) {
        kind_.fill(bad);
        if (type_ == DNA) {
            for (char c = 'A'; c <= 'Z'; ++c) kind_[byte(c)] = site;
            for (char c = 'a'; c <= 'z'; ++c) kind_[byte(c)] = site;
        } else {
            kind_['0'] = kind_['1'] = site;
        }
        kind_['-'] = site;
        kind_[byte(missing_)] = site;
    } else {
        kind_.fill(site);
        // No character that can't be seen may stand for an allele.
        std::fill_n(kind_.begin(), static_cast<int>(' '), static_cast<unsigned char>(bad));
    }
    for (char const c : {' ', '\t', '\n', '\v', '\f', '\r'}) kind_[byte(c)] = blank;
    if (profile.LocusSeparator != 0) kind_[byte(profile.LocusSeparator)] = blank;
}

DefinitionFault DefinitionScanner::scan(std::string_view text, std::string& content, int& loci) const {
    content.clear();
    loci = 0;
    if (type_ == FREQUENCY) return DefinitionFault::none;
    text = trimmed(without_comment(text));
    if (text.empty()) return DefinitionFault::empty;
    if (!sites_) return scan_words(text, content, loci);
    DefinitionFault const fault = scan_sites(text, content);
    loci = static_cast<int>(content.size());
    return fault;
}

DefinitionFault DefinitionScanner::scan_sites(std::string_view text, std::string& content) const {
    auto const kind_of = [this](char c) { return kind_[byte(c)]; };
    auto const stop = std::find_if(text.begin(), text.end(), [&](char c) { return kind_of(c) != site; });
    content.reserve(text.size());
    content.assign(text.begin(), stop);
    for (auto at = stop; at != text.end(); ++at) {
        if (kind_of(*at) == bad) return DefinitionFault::character;
        if (kind_of(*at) == site) content += *at;
    }
    return content.empty() ? DefinitionFault::empty : DefinitionFault::none;
}

DefinitionFault DefinitionScanner::scan_words(std::string_view text, std::string& content, int& loci) const {
    content.reserve(text.size());
    std::size_t at = 0;
    while (at < text.size()) {
        if (kind_[byte(text[at])] == blank) {
            ++at;
            continue;
        }
        std::size_t const begin = at;
        while (at < text.size() && kind_[byte(text[at])] == site) ++at;
        if (at < text.size() && kind_[byte(text[at])] == bad) return DefinitionFault::character;
        std::string_view const word = text.substr(begin, at - begin);
        if (type_ == MICROSAT && !valid_integer(word)) return DefinitionFault::no_integer;
        if (loci++ > 0) content += ' ';
        content += word;
    }
    return loci == 0 ? DefinitionFault::empty : DefinitionFault::none;
}

bool DefinitionScanner::valid_integer(std::string_view word) const noexcept {
    if ((word.size() == 1 && word[0] == missing_) || word == recessive_) return true;
    if (word.front() == '-') word.remove_prefix(1);
    return !word.empty() && std::all_of(word.begin(), word.end(), [](char c) { return c >= '0' && c <= '9'; });
}

int DefinitionScanner::nb_loci(std::string_view content) const noexcept {
    if (sites_ || content.empty()) return static_cast<int>(content.size());
    return static_cast<int>(std::count(content.begin(), content.end(), ' ')) + 1;
}

bool DefinitionScanner::same(std::string_view a, std::string_view b) const noexcept {
    return type_ == DNA ? same_without_case(a, b) : a == b;
}

void report_definition_fault(DefinitionFault fault, char const* function) {
    if (fault == DefinitionFault::character) E.error(ErrorType::Error, function, 112);
    if (fault == DefinitionFault::no_integer) E.error(ErrorType::Error, function, 121);
}

void normalise_separator(ProfileSettings& profile) noexcept {
    if (profile.DataType == MICROSAT || (profile.DataType == STANDARD && profile.LocusSeparator != 0))
        profile.LocusSeparator = ' ';
}

}  // namespace tov
