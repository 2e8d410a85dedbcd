#pragma once
// LP files: the tokens, the reader and the writer.

#include <string>
#include <string_view>

#include "core/model_data.h"
#include "io/io.h"
#include "io/source.h"

namespace zelvan {

ModelData read_lp(const Source& source, const Warn& warn);
std::string write_lp(const ModelData& data, const Warn& warn);

enum class LpToken { kEnd, kSection, kLabel, kName, kNumber, kPlus, kMinus, kTimes, kLess, kGreater, kEqual, kOther };
enum class LpSection {
    kNone,
    kMinimize,
    kMaximize,
    kSubjectTo,
    kObjective,
    kPwlObjective,
    kBounds,
    kGenerals,
    kBinaries,
    kSemiContinuous,
    kSos,
    kEnd,
    kUnsupported,
};

// Cuts an LP file into tokens. The members tell of the token at the cursor.
class LpLexer {
public:
    explicit LpLexer(std::string_view text) : rest_(text) { next(); }
    void next();
    // Cuts the name at the cursor and goes on behind the first bytes of it.
    void shorten(std::size_t length);
    bool at_sign(std::string_view sign) const { return kind == LpToken::kOther && text == sign; }

    LpToken kind = LpToken::kEnd;
    LpSection section = LpSection::kNone;
    std::string_view text;  // as it stands in the file; of a label without its colon
    double number = 0.0;
    int line = 1;
    bool starts_line = true;

private:
    void skip_blanks();
    bool read_section();
    void read_name();
    void read_operator();
    void take(std::size_t length);

    std::string_view rest_;
};

// Whether the token is a spelling of infinity.
bool is_lp_infinity(std::string_view name);
// Whether a name can stand in an LP file without being taken for something else.
bool lp_holds_name(std::string_view name);
// The same for a name with a colon behind it.
bool lp_holds_label(std::string_view name);

}  // namespace zelvan
