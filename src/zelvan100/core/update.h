#pragma once
// The update of a model in two steps. The plan takes all memory and makes all checks, and may fail with the model as it
// was; the commit can't fail.

#include <array>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "core/model.h"

namespace zelvan {

class Update {
public:
    // Plans. Throws Error or std::bad_alloc.
    explicit Update(Model& model);
    void commit() noexcept;

private:
    // What happens to the objects of one kind.
    struct Deletion {
        std::vector<char> keep;     // empty when none is deleted, otherwise one for each object, additions included
        std::vector<int> number;    // the new numbers, negative for deleted objects
        std::vector<int> followed;  // ListChange::deleted afterwards
    };
    struct NewOption {
        Kind kind;
        Option option;
        std::vector<double> values;
    };
    // Coefficients of an objective behind the first, as the writes leave them.
    struct Coefficients {
        const SparseVector* base = nullptr;
        std::vector<std::pair<int, double>> writes;
        SparseVector result;
    };

    void plan_entries();
    void plan_room();
    void plan_helpers();
    void plan_texts();
    void plan_options();
    void plan_option(Kind kind, Option option);
    void plan_objectives();
    void plan_deletion(Kind kind);
    template <class Family>
    void check_sides(const Family& rows, const Family& queued, const WriteRule& sense, const WriteRule& right) const;

    void append_additions() noexcept;
    void append_helpers() noexcept;
    void apply_writes() noexcept;
    void apply_text(TextWrite& write) noexcept;
    void apply_objective(ObjectiveWrite& write) noexcept;
    void apply_pwl(PwlWrite& write) noexcept;
    void delete_objects() noexcept;
    void renumber_columns() noexcept;
    void note_changes() noexcept;

    int total(Kind kind) const;
    Deletion& deletion(Kind kind) { return deletions_[static_cast<int>(kind)]; }
    const Deletion& deletion(Kind kind) const { return deletions_[static_cast<int>(kind)]; }
    bool changes_problem() const;

    Model& model_;
    ModelData& data_;
    Queue& queue_;
    Queue fresh_;  // made beforehand, as even an empty queue takes memory
    bool changed_;
    bool merges_old_ = false, merges_added_ = false;
    SparseRows old_rows_, added_rows_;  // with the entries of new columns
    std::vector<std::string> helper_names_;
    std::map<const Names*, std::size_t> text_bytes_;
    std::vector<NewOption> options_;
    bool drops_starts_ = false;
    std::map<int, Coefficients> coefficients_;
    std::array<Deletion, kNumKinds> deletions_;
};

}  // namespace zelvan
