#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

/// Numbers and words as files and the command line contain them. Numbers have a decimal point,
/// whatever the locale.
namespace cubes::tool {

/// Throws the FormatError for a piece of text that should be something else. Of a long piece only
/// the beginning is shown.
[[noreturn]] void unexpected(std::size_t line, std::string_view found, std::string_view expected);

bool isZoneNumber(std::string_view text);
/// A zone number, an integer from 1. This and the next four throw FormatError for another text.
std::int32_t zoneNumber(std::string_view text, std::size_t line);
/// An integer from 0 to 4294967295.
std::uint32_t wholeNumber(std::string_view text, std::size_t line);
/// The value of a cell: a number, "nan" or "inf". A number too small for a float becomes 0; one too
/// large is an error.
float cellValue(std::string_view text, std::size_t line);
double finiteNumber(std::string_view text, std::size_t line);
/// A number too small for a float becomes 0.
float finiteFloat(std::string_view text, std::size_t line);

/// The numbers of a zone and a link on the command line. Throw Refusal for another text.
std::int32_t parseZone(std::string const& text);
std::uint32_t parseLink(std::string const& text);

/// Appends the shortest text that cellValue reads as the same value.
void appendValue(std::string& text, float value);
void appendNumber(std::string& text, std::int32_t number);

/// A sum of cells as the shortest decimal that its cells justify. A cell is rounded by up to
/// 6e-8 of itself; in a sum of n cells these errors cancel in part, which leaves about a
/// square root of n of it. At most 9 digits are kept. So 1260907.44043807 becomes 1260907.44, and
/// the sum of one cell of 1.1 is 1.1.
double trusted(double sum, std::int64_t cells);
/// The value of a cell as the shortest decimal that stands for it: 0.1 for the float 0.1, not 0.10000000149.
double shortest(float cell);

/// The text without blanks and tabs at both ends.
std::string_view trimmed(std::string_view text);
/// The text with control characters written as in C: "a\n" is printed as a\n, an escape character as \x1b. Terminals
/// would obey them.
std::string escaped(std::string_view text);
/// Whether both texts are equal, ignoring the case of ASCII letters.
bool isSameWord(std::string_view first, std::string_view second);
/// A word quoted for the shell where it needs that.
std::string quotedForShell(std::string const& word);
/// The known word that is nearest to an unknown one, ignoring case; nothing when all are more than `limit` edits away.
/// An edit inserts, deletes or replaces a letter, or swaps two neighbours.
std::optional<std::string> nearestTo(std::string_view unknown, std::span<std::string const> known, std::size_t limit);
/// "; did you mean delta?" with the known word nearest to an unknown one, ignoring case; empty when all are more than
/// two edits away.
std::string suggestion(std::string_view unknown, std::span<std::string const> known);

}
