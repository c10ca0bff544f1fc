// The words of SQL texts, as SQLite divides them.
//
//     for (sqlToken const& each : tokensOf("width * /* mm */ 2"))   // width, *, 2
//
// Blanks and comments are no tokens. Nothing is refused: a quote or a comment that does not end reaches to the end of
// the text.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zovModel {

enum class tokenKind {
    word,       // a keyword or a plain name
    quotedName, // "..." `...` [...]
    text,       // '...'
    blob,       // x'...'
    number,     // 12 1.5 .5e-3 0x1F
    sign        // any other character, each by itself
};

struct sqlToken {
    tokenKind mKind;
    std::string_view mText; // as it is written, quotes included; a part of the text that was divided
};

// Stays valid while the text does.
std::vector<sqlToken> tokensOf(std::string_view sql);

// Whether the token is this keyword, which is given in capitals. A quoted name is no keyword.
bool isKeyword(sqlToken const& token, std::string_view keyword);
bool isSign(sqlToken const& token, char sign);

// What stands between the quotes, doubled ones counted once; other tokens as they are written.
std::string unquotedText(sqlToken const& token);

// The place of the parenthesis that closes the one at `open`, or the number of tokens when none does.
std::size_t closingPlace(std::vector<sqlToken> const& tokens, std::size_t open);

// The name with the letters A to Z in lower case: names that SQLite takes for the same have the same one.
std::string foldedName(std::string_view name);

} // namespace zovModel
