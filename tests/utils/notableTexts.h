// Texts that names are told apart by: of every length that is treated in a way of its own, with units of every kind.
#pragma once

#include <cstddef>
#include <random>
#include <string>
#include <vector>

#include "zovString.h"

namespace zov::tests {

// Where a text has a unit that is none of the small letters: nowhere, at its start, in its middle, at its end.
inline std::vector<std::size_t> placesIn(std::size_t length) {
    if (length == 0) return {};
    return {0, length / 2, length - 1};
}

// Pieces that the looked-up text and its lower-case form treat differently.
inline std::vector<string> const& notablePieces() {
    static std::vector<string> const pieces{
        L"Q",                                        // a capital
        L"@",                                        // in front of the capitals
        L"[",                                        // behind them
        string(1, L'\0'),                            // a null
        L"\u007F",                                   // the last unit of ASCII
        L"\u0080",                                   // the first one behind
        L"\u00C4",                                   // Latin-1 with a lower case
        L"\u00DF",                                   // without
        L"\u00FF",                                   // the last unit of Latin-1
        L"\u0100",                                   // the first one behind
        L"\u0130",                                   // folds into ASCII
        L"\u0178",                                   // folds into Latin-1
        L"\u212A",                                   // folds into ASCII
        L"\u4E2D",                                   // without a lower case
        L"\U00010400",                               // beyond 16 bits, with one
        L"\U0001F600",                               // without
        string(1, wchar_t{0xD801}),                  // half of a pair
        string(1, wchar_t{0xDC00}),                  // the other half
        string(1, static_cast<wchar_t>(0x80000041U)) // no code point, or one beyond the unit
    };
    return pieces;
}

// Texts of up to 70 units: of the given small letter alone, and with each notable piece in each of the places.
inline std::vector<string> textsOfEveryLength(wchar_t letter) {
    std::vector<string> texts;
    for (std::size_t length = 0; length <= 70; ++length) {
        string const plain(length, letter);
        texts.push_back(plain);
        for (std::size_t const at : placesIn(length)) {
            for (string const& piece : notablePieces())
                texts.push_back(string(std::wstring(plain).replace(at, 1, piece)));
        }
    }
    return texts;
}

// A text of the letter in both cases, some with few notable pieces, some with many.
inline string randomNotableText(std::mt19937& random, wchar_t small, wchar_t capital) {
    auto const below = [&random](std::size_t limit) { return static_cast<std::size_t>(random() % limit); };
    string text;
    std::size_t const pieces = below(40);
    std::size_t const odds = 1 + below(30);
    for (std::size_t piece = 0; piece < pieces; ++piece) {
        bool const isNotable = below(odds) == 0;
        text += isNotable ? notablePieces()[below(notablePieces().size())] : string(1, below(2) ? small : capital);
    }
    return text;
}

} // namespace zov::tests
