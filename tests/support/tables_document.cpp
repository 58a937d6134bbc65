#include "support/tables_document.h"

#include <sstream>

#include "output/sumstat_keywords.h"
#include "output/table_columns.h"

namespace tov::test {

namespace {

constexpr char introduction[] = R"(# Tables for scripts

This file is written from the descriptions in `src/output/table_columns.cpp` and `src/output/sumstat_keywords.h`; a test
holds them together and rewrites it when `TOV_REWRITE_DOCS` is set.

Three kinds of tables are written beside the result document, all separated by tabs, in plain text.

| Kind | Asked for by | Where | Life |
| --- | --- | --- | --- |
| Batch tables | `glbstreams.txt` | its first line is the prefix of their names | each start appends |
| Chosen statistics | `sumstat_def.txt` | `sumstat_out.txt` beside the run list | each start begins anew |
| Side tables of a project | settings | `<project>.res/` | each run begins anew; `ld_dis.xl` goes on when results are kept |

Numbers have 6 significant digits unless a table tells otherwise, in fixed or scientific notation; whole numbers are
written in full; `inf` is an infinite number and `nan` none at all. `-1` stands for what was not computed, unless the
column tells otherwise.

`examples/read_tables.R` reads every table with `read.table`: rows of a batch table begin behind its last banner and its
head, `#` is no comment (`comment.char = ""`), and rows may be ragged (`fill = TRUE` with as many `col.names` as the
longest row has cells).

## Batch tables

`glbstreams.txt` lies in the working directory. Line 1 is a prefix, so a directory ends with a slash; each further line
names a flag. A start writes to every table of a flag a banner (two empty lines, a rule of 67 dashes,
`Tovenia batch run summary file"`), a title and a head, then rows as the projects go on. Rows exist only for analyses
that were run; groups, when they are analysed, have rows of their own in front of those of the samples. A column without
a word in the head follows the one before it.
)";

constexpr char statistics_text[] = R"(
## Chosen statistics

`sumstat_def.txt` lies in the directory that line 1 of the run list names. A keyword counts wherever it stands in a line
and in whatever case; `#` begins a comment. A keyword inside a longer one counts too: `ALLSD_K` asks for `SD_K` as well.
`POP_LEVEL` and `GROUP_LEVEL` choose the levels that are analysed; without either it is that of samples. Each project
that ends writes one line to `sumstat_out.txt`; the first also writes the head. Every title and value is followed by a
tab. Columns of groups come first, titled `gr_...`; behind them the order is that of this list.

Numbers have 8 digits. All lines have the columns of the head: what a project lacks is `-1`, and what it has beyond
them (more samples, more loci) is left out, with a line in its log. A statistic whose analysis was not among the tasks
is `-1`. `MEAN` and `SD` go over the samples with a value; the deviation of one value is 0.

| Keyword | Columns | Meaning |
| --- | --- | --- |
)";

constexpr char side_text[] = R"(
## Side tables of a project

They lie in `<project>.res/`. When groups are analysed, the tables that compare them, and those of their allele
frequencies, begin with `gr_`. The tables `sum...` repeat those of the document, digit for digit.
)";

std::string count_of(ColumnText const& column) {
    if (column.most == ColumnText::any_number) return column.least == 0 ? "any" : "1 or more";
    if (column.least == column.most) return std::to_string(column.most);
    return std::to_string(column.least) + (column.most - column.least == 1 ? " or " : " to ") +
           std::to_string(column.most);
}

/// Text of a cell.
std::string cell(std::string_view text) {
    std::string escaped;
    for (char const c : text) escaped += c == '|' ? "\\|" : std::string(1, c);
    return escaped;
}

std::string code(std::string_view text) { return text.empty() ? "" : "`" + std::string(text) + "`"; }

/// A title without the characters that part it from the head.
std::string_view bare(std::string_view title) {
    while (!title.empty() && (title.back() == '\n' || title.back() == '\t')) title.remove_suffix(1);
    return title;
}

void print_table(std::ostream& out, TableText const& table) {
    out << "\n### `" << table.file << "`\n\n";
    if (!table.flag.empty()) out << "Flag " << code(table.flag) << ". ";
    if (!bare(table.title).empty()) out << "Title " << code(bare(table.title)) << ". ";
    out << "A row: " << table.row << ".";
    if (!table.note.empty()) out << ' ' << table.note;
    out << "\n\n| Head | Columns | Meaning | Unit | Without a value |\n| --- | --- | --- | --- | --- |\n";
    for (ColumnText const& column : table.columns) {
        out << "| " << code(column.head) << " | " << count_of(column) << " | " << cell(column.meaning) << " | "
            << cell(column.unit) << " | " << cell(column.missing) << " |\n";
    }
}

std::string titles_of(SumStatKeyword const& keyword) {
    std::string const title(keyword.title);
    switch (keyword.per) {
        case ColumnsPer::level:
            return "";
        case ColumnsPer::none:
            return "none";
        case ColumnsPer::sample:
            return "`" + title + "1`, ... a sample";
        case ColumnsPer::project:
            return "`" + title + "`";
        case ColumnsPer::locus_pair:
            return "`" + title + "1_1`, ... a pair, then its sample; loci less 1 a sample";
        case ColumnsPer::index:
            return "one an index";
        case ColumnsPer::sample_pair:
            return "`" + title + "2_1`, ... a pair, by rows of the lower triangle";
    }
    return "";
}

}  // namespace

std::string tables_document() {
    std::ostringstream out;
    out << introduction;
    for (TableText const& table : batch_table_texts()) print_table(out, table);
    out << statistics_text;
    for (SumStatKeyword const& keyword : sum_stat_keywords) {
        out << "| " << code(keyword.word) << " | " << titles_of(keyword) << " | " << cell(keyword.meaning) << " |\n";
    }
    out << side_text;
    for (TableText const& table : side_table_texts()) print_table(out, table);
    return out.str();
}

}  // namespace tov::test
