#include <cubes/core/TRkCubesException.h>

#include "host/platform/System.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string>

namespace {

constexpr std::uint32_t lastErrorWanted = 0xFFFFFFFF;
constexpr std::uint32_t ownErrorBit = 0x20000000;
constexpr std::uint32_t codeMask = 0x3FFFFFFF;

struct OwnError {
    TRkCubesException::ErrorCodes code;
    char const* text;
};

constexpr OwnError ownErrors[] = {
    {TRkCubesException::ecCubeExists, "Cube already exists"},
    {TRkCubesException::ecFromCubeMissing, "From cube doesn't exist"},
    {TRkCubesException::ecToCubeMissing, "To cube doesn't exist"},
    {TRkCubesException::ecCubeNrOutOfRange, "IntTo40T> Only 2 positions reserved! Maximum value is 1599"},
    {TRkCubesException::ecEntryExists, "Entry already exists in the cube"},
    {TRkCubesException::ecMatrixExists, "Matrix already exists in the cube"},
};

std::string ownErrorText(std::uint32_t code) {
    auto const known = std::find_if(std::begin(ownErrors), std::end(ownErrors),
        [code](OwnError const& error) { return error.code == (code & codeMask); });
    return known == std::end(ownErrors) ? "Unknown error" : known->text;
}

std::optional<std::string> textOf(std::uint32_t code) {
    if (code & ownErrorBit) return ownErrorText(code);
    return cubes::platform::errorText(code);
}

}

TRkCubesException::TRkCubesException(ErrorCodes code) : TRkException(nullptr, lastErrorWanted) {
    FormatMessageA(nullptr, code);
}

TRkCubesException::TRkCubesException(char const* text, unsigned long code) : TRkException(nullptr, lastErrorWanted) {
    FormatMessageA(text, code);
}

TRkCubesException::TRkCubesException(AnsiString message, char const* file, char const* function, int line)
    : TRkException(std::move(message), file, function, line) {}

TRkCubesException::TRkCubesException(TRkCubesException const&) = default;
TRkCubesException& TRkCubesException::operator=(TRkCubesException const&) = default;
TRkCubesException::~TRkCubesException() = default;

void TRkCubesException::Add(AnsiString message, char const* file, char const* function, int line) {
    TRkException::Add(std::move(message), file, function, line);
}

void TRkCubesException::FormatMessageA(char const* text, unsigned long code) {
    // Codes have 32 bits; a long has more on some platforms.
    auto error = static_cast<std::uint32_t>(code);
    if (error == lastErrorWanted) error = cubes::platform::lastError();
    if (error == 0) {
        if (text) SetMessage(text);
        return;
    }
    std::optional<std::string> const message = textOf(error);
    if (!message) return;
    SetMessage(text ? (std::string(text) + " " + *message).c_str() : message->c_str());
}
