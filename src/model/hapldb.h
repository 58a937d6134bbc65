// The list of named haplotypes of a project.
#pragma once

#include <iosfwd>
#include <string>
#include <unordered_map>

#include "base/arrays.h"
#include "base/cstring.h"
#include "input/profile.h"
#include "model/hapdef.h"

namespace tov {

class DistMat;
class Project;

/// All haplotype definitions of a project; owns them.
///
/// find() and find_id() look up by hash. Whoever changes the id or the content of a definition in place calls
/// reindex() afterwards.
class Haplo_DB : public ProfileSettings {
public:
    Haplo_DB();
    Haplo_DB(Haplo_DB const&) = delete;
    Haplo_DB& operator=(Haplo_DB const&) = delete;

    [[nodiscard]] int size() const { return static_cast<int>(list_.GetItemsInContainer()); }
    [[nodiscard]] bool is_null() const { return size() == 0; }
    /// Definition at an index in [0, size()).
    [[nodiscard]] HaploDef& operator[](int index) const;
    /// Appends a definition, which becomes owned. @return the new count.
    int Add(HaploDef* haplotype);
    [[nodiscard]] MY_TIArrayAsVector<HaploDef>& list() noexcept { return list_; }
    [[nodiscard]] MY_TIArrayAsVector<HaploDef> const& list() const noexcept { return list_; }

    /// First definition whose content equals the argument, or null.
    [[nodiscard]] HaploDef* find(my_string const& content) const;
    /// First definition of that label, or null.
    [[nodiscard]] HaploDef* find_id(my_string const& id) const;
    /// Forgets the look-up tables; they are built anew by the next look-up.
    void reindex() const;

    /// Reads a haplotype list; defined with the readers. @return 1, or 0 after its report.
    ///
    /// @param external  the list is a file of its own, which needs no braces.
    /// @param opening   line of the key, with the opening brace and what stands behind it.
    int NewReadHaplotypeList(std::istream& is, ProfileSettings& profile, bool external, int& line,
                             my_string const& opening = my_string());

    /// Gives each definition the row of the label that equals its id. Reports 29, 28, 173. @return 1 or 0.
    int associate_with1(DistMat const& matrix);
    /// Gives each definition its list position as row. Reports 30 on a size mismatch. @return 1 or 0.
    int associate_with2(DistMat const& matrix);

    /// Empties the list and names it "no_name".
    void reset();
    /// Removes a character from every content; each content is read only as far as the first one is long.
    void rm_separators(char separator);

    my_string name;              ///< name of the list
    Project* project = nullptr;  ///< borrowed: the owner

private:
    void index_new_entries() const;
    [[nodiscard]] HaploDef* first_match(std::unordered_multimap<std::size_t, int> const& index,
                                        my_string HaploDef::*field, my_string const& text) const;

    MY_TIArrayAsVector<HaploDef> list_;
    mutable int indexed_ = 0;
    mutable std::unordered_multimap<std::size_t, int> by_content_;
    mutable std::unordered_multimap<std::size_t, int> by_id_;
};

/// The section [[HaplotypeDefinition]] in project file form; nothing for an empty list.
std::ostream& operator<<(std::ostream& os, Haplo_DB const& list);

}  // namespace tov
