#include "io/basis_file.h"

#include <algorithm>

#include "io/io.h"
#include "io/letters.h"
#include "io/lines.h"
#include "io/source.h"

namespace zelvan {

namespace {

std::vector<std::string_view> words(std::string_view line) {
    constexpr std::string_view kBlank = " \t\r";
    std::vector<std::string_view> found;
    for (std::size_t at = line.find_first_not_of(kBlank); at != line.npos; at = line.find_first_not_of(kBlank, at)) {
        const std::size_t end = std::min(line.find_first_of(kBlank, at), line.size());
        found.push_back(line.substr(at, end - at));
        at = end;
    }
    return found;
}

const std::string& one_word(const std::string& name) {
    if (!is_clean_name(name) || name.find(' ') != name.npos)
        throw Error(ZVN_ERROR_FILE_WRITE, "Name " + quoted(name) + " can't stand in a basis file");
    return name;
}

// A nonbasic row of one side is at that side; of a two-sided row the status tells, as that of its slack.
bool at_upper_side(char sense, int status) {
    return sense == '<' || (sense == ZVN_RANGE && status == ZVN_NONBASIC_LOWER);
}

struct Statuses {
    std::vector<int> cols, rows;
};

class Reader {
public:
    Reader(Model& model, const std::string& path) : model_(model), file_(Source::read(path)) {
        statuses_.cols.assign(model.num_cols(), ZVN_NONBASIC_LOWER);
        statuses_.rows.assign(model.num_rows(), ZVN_BASIC);
    }

    Statuses read() {
        Lines lines(file_.text);
        for (std::string_view line; !ended_ && lines.next(line);) {
            line_ = lines.number();
            read_line(line);
        }
        if (!ended_) file_.fail(line_, "the file ends without ENDATA");
        return std::move(statuses_);
    }

private:
    void read_line(std::string_view text) {
        const auto line = words(text);
        if (line.empty() || line[0][0] == '*') return;
        const std::string key = upper_case(line[0]);
        if (key == "NAME") return;
        if (key == "ENDATA") {
            ended_ = true;
            return;
        }
        const bool pair = key == "XL" || key == "XU";
        if (!pair && key != "UL" && key != "LL")
            file_.fail(line_, "found " + quoted(line[0]) + " where XL, XU, UL, LL or ENDATA was expected");
        if (line.size() != (pair ? 3u : 2u))
            file_.fail(line_, pair ? "a column and a row were expected" : "a column was expected");
        statuses_.cols[column(line[1])] = pair ? ZVN_BASIC : key == "UL" ? ZVN_NONBASIC_UPPER : ZVN_NONBASIC_LOWER;
        if (!pair) return;
        const int i = row(line[2]);
        const bool two_sided = model_.data.rows.sense[i] == ZVN_RANGE;
        statuses_.rows[i] = two_sided && key == "XL" ? ZVN_NONBASIC_UPPER : ZVN_NONBASIC_LOWER;
    }

    int column(std::string_view name) {
        const int j = model_.find_col(name);
        if (j < 0) file_.fail(line_, "the model has no variable " + quoted(name));
        return j;
    }

    int row(std::string_view name) {
        const int i = model_.find_row(name);
        if (i < 0) file_.fail(line_, "the model has no constraint " + quoted(name));
        return i;
    }

    Model& model_;
    const Source file_;
    Statuses statuses_;
    int line_ = 0;
    bool ended_ = false;
};

std::vector<int> statuses_of(const Model& model, Kind kind) {
    const Model::BasisStatuses statuses = model.basis_statuses(kind);
    if (statuses.set) return {statuses.set->begin(), statuses.set->end()};
    if (statuses.solved) return *statuses.solved;
    throw Error(ZVN_ERROR_DATA_NOT_AVAILABLE, "There is no basis to write");
}

}  // namespace

void write_basis(Model& model, const std::string& path) {
    const std::vector<int> cols = statuses_of(model, Kind::kColumn);
    const std::vector<int> rows = statuses_of(model, Kind::kRow);
    const ModelData& data = model.data;
    std::string text = "NAME\n";
    int i = 0;  // the next row to stand beside a basic column
    for (int j = 0; j < data.cols.size(); ++j) {
        if (cols[j] == ZVN_NONBASIC_UPPER) text += " UL " + one_word(data.col_name(j)) + "\n";
        if (cols[j] != ZVN_BASIC) continue;
        while (i < data.rows.size() && rows[i] == ZVN_BASIC) ++i;
        if (i == data.rows.size()) throw Error(ZVN_ERROR_FILE_WRITE, "The basis has more basic variables than rows");
        text += at_upper_side(data.rows.sense[i], rows[i]) ? " XU " : " XL ";
        text += one_word(data.col_name(j)) + " " + one_word(data.row_name(i)) + "\n";
        ++i;
    }
    write_file(path, text + "ENDATA\n");
}

void read_basis(Model& model, const std::string& path) {
    const Statuses statuses = Reader(model, path).read();
    model.reserve_writes(static_cast<int>(statuses.cols.size() + statuses.rows.size()));
    model.write_numbers(rules::kOption<Kind::kColumn, Option::kColumnBasis>, statuses.cols);
    model.write_numbers(rules::kOption<Kind::kRow, Option::kRowBasis>, statuses.rows);
}

}  // namespace zelvan
