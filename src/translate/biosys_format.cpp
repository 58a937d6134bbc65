// The format statement of Biosys files.
#include <algorithm>
#include <limits>

#include "input/line_text.h"
#include "translate/biosys.h"

namespace tov {
namespace {

constexpr std::size_t most_columns = 1000000;  // of a line; a statement beyond is no format
constexpr std::size_t most_fields = 100000;    // of an individual
constexpr int deepest_group = 20;
constexpr std::size_t most_characters = 2000000;  // of groups, as often as they are repeated

/// Reads a statement and walks the columns that it describes.
class StatementReader {
public:
    explicit StatementReader(std::string_view text) : text_(text) { lines_.emplace_back(); }

    /// Fields and X runs of each line. @return false for a statement of another form.
    bool read() {
        std::size_t const open = text_.find('(');
        if (open == std::string_view::npos) return false;
        at_ = open + 1;
        return read_items(0) && !lines_.front().fields.empty();
    }

    struct Line {
        std::vector<BiosysField> fields;
        std::size_t columns = 0;
    };
    [[nodiscard]] std::vector<Line> const& lines() const { return lines_; }

private:
    char peek() {
        while (at_ < text_.size() && (is_blank(text_[at_]) || text_[at_] == ',')) ++at_;
        return at_ < text_.size() ? text_[at_] : '\0';
    }

    /// A number, or 1 where none stands; the limit of columns for a larger one.
    std::size_t read_number() {
        std::size_t number = 0;
        bool found = false;
        for (; at_ < text_.size() && text_[at_] >= '0' && text_[at_] <= '9'; ++at_) {
            number = std::min(most_columns, number * 10 + static_cast<std::size_t>(text_[at_] - '0'));
            found = true;
        }
        return found ? number : 1;
    }

    /// Items up to the closing parenthesis, which is taken.
    bool read_items(int depth) {
        for (;;) {
            char const next = peek();
            if (next == '\0') return false;
            if (next == ')') {
                ++at_;
                return true;
            }
            if (!read_item(depth)) return false;
        }
    }

    bool read_item(int depth) {
        std::size_t const count = read_number();
        char const kind = peek();
        ++at_;
        switch (kind) {
            case '(':
                return read_group(count, depth);
            case 'X':
            case 'x':
                return skip(count);
            case 'A':
            case 'a':
                return add_fields(count, read_number());
            case '/':
                lines_.emplace_back();
                return lines_.size() <= 3;
            default:
                return false;
        }
    }

    bool read_group(std::size_t count, int depth) {
        if (depth >= deepest_group || count == 0) return false;
        std::size_t const begin = at_;
        for (std::size_t i = 0; i < count; ++i) {
            at_ = begin;
            std::size_t const before = size_;
            if (!read_items(depth + 1)) return false;
            if (size_ == before) break;  // nothing to repeat
            walked_ += at_ - begin;
            if (walked_ > most_characters) return false;
        }
        return true;
    }

    bool skip(std::size_t columns) {
        ++size_;
        lines_.back().columns += columns;
        return lines_.back().columns <= most_columns;
    }

    bool add_fields(std::size_t count, std::size_t width) {
        if (width == 0) return false;
        Line& line = lines_.back();
        for (std::size_t i = 0; i < count; ++i) {
            if (++size_ > most_fields || line.columns + width > most_columns) return false;
            line.fields.push_back({line.columns, width});
            line.columns += width;
        }
        return true;
    }

    std::string_view text_;
    std::size_t at_ = 0;
    std::size_t size_ = 0;    // items walked so far
    std::size_t walked_ = 0;  // characters of groups
    std::vector<Line> lines_;
};

std::optional<BiosysFormat> read_format(std::string_view statement, std::size_t lines) {
    StatementReader reader(statement);
    if (!reader.read() || reader.lines().size() != lines) return {};
    BiosysFormat format;
    format.name = reader.lines().front().fields.front();
    for (StatementReader::Line const& line : reader.lines()) {
        bool const with_name = format.lines.empty();
        BiosysLine& kept = format.lines.emplace_back();
        kept.alleles.assign(line.fields.begin() + (with_name ? 1 : 0), line.fields.end());
        if (kept.alleles.empty()) continue;
        std::size_t const before = with_name ? format.name.begin + format.name.width : 0;
        kept.blanks = kept.alleles.front().begin - before;
    }
    format.blanks_behind_name = format.lines.front().blanks;
    if (format.allele_fields() == 0) return {};
    return format;
}

}  // namespace

std::size_t BiosysFormat::allele_fields() const {
    std::size_t sum = 0;
    for (BiosysLine const& line : lines) sum += line.alleles.size();
    return sum;
}

std::optional<BiosysFormat> read_format1(std::string_view statement) { return read_format(statement, 1); }
std::optional<BiosysFormat> read_format2(std::string_view statement) { return read_format(statement, 2); }
std::optional<BiosysFormat> read_format3(std::string_view statement) { return read_format(statement, 3); }

}  // namespace tov
