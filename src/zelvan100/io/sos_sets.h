#pragma once

#include <string_view>
#include <vector>

#include "core/model_data.h"
#include "io/name_table.h"
#include "io/source.h"

namespace zelvan {

// Takes the special ordered sets of a file one by one, each begun and then given its members.
class SosReader {
public:
    SosReader(const Source& source, SosSets& sets) : source_(source), sets_(sets) {}
    // `type` is the word before or behind the name, S1 or S2; false when it is neither. A set may have no name.
    bool begin(int line, std::string_view type, std::string_view name);
    bool begun() const { return sets_.size() > 0; }
    void add(int line, int col, std::string_view name, double weight);

private:
    const Source& source_;
    SosSets& sets_;
    NameTable names_;
    std::vector<int> latest_set_;  // by column: the latest set that holds it, counted from 1
};

// 1 or 2 for "S1" or "S2" in any letter case, 0 for another word.
int sos_type(std::string_view word);

}  // namespace zelvan
