#pragma once

#include "tool/formats/FormatError.h"

#include <cstdint>
#include <string>
#include <string_view>

/// Numbers as the text formats write them: with a decimal point, whatever the locale.
namespace cubes::tool {

/// A zone number: a whole number from 1 on.
bool isZoneNumber(std::string_view text);
std::int32_t zoneNumber(std::string_view text, Place const& place);

/// A cell's value: a number, "nan" or "inf". A number too small for a cell is 0; one too large is
/// an error.
float cellValue(std::string_view text, Place const& place);

/// A whole number from 0 to 4294967295.
std::uint32_t wholeNumber(std::string_view text, Place const& place);

/// A finite number.
double finiteNumber(std::string_view text, Place const& place);
/// The same as a float; a number too small for one is 0.
float finiteFloat(std::string_view text, Place const& place);

/// Appends the shortest text that cellValue reads as the same value.
void appendValue(std::string& text, float value);
void appendNumber(std::string& text, std::int32_t number);

/// The text without blanks and tabs at both ends.
std::string_view trimmed(std::string_view text);
/// Whether both texts are equal without regard to the case of ASCII letters.
bool isSameWord(std::string_view first, std::string_view second);

}
