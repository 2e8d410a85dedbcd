#pragma once

#include <string>

namespace zelvan {

// The kinds of things that have attributes; the numbers are those that ZVNgetattrinfo tells.
enum class Kind : int { kModel = 0, kColumn = 1, kRow = 2, kSos = 3, kQuadRow = 4, kGeneral = 5 };
inline constexpr int kNumKinds = 6;

struct KindSpec {
    const char* singular;
    const char* plural;
    const char* prefix;  // of default names, in front of the index
};
inline constexpr KindSpec kKinds[kNumKinds] = {
    {"the model", "models", ""},
    {"variable", "variables", "C"},
    {"constraint", "constraints", "R"},
    {"SOS constraint", "SOS constraints", "SOS"},
    {"quadratic constraint", "quadratic constraints", "QC"},
    {"general constraint", "general constraints", "GC"},
};

constexpr const KindSpec& spec_of(Kind kind) { return kKinds[static_cast<int>(kind)]; }

// The noun for one of the kind, to begin a sentence with.
inline std::string capitalized(Kind kind) {
    std::string noun = spec_of(kind).singular;
    if (noun[0] >= 'a') noun[0] = static_cast<char>(noun[0] - 'a' + 'A');
    return noun;
}

}  // namespace zelvan
