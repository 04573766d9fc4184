#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <span>

namespace cubes {

/// The key of an entry: the number of its cube, then purpose, mode, time period and user class; of a
/// result also result and iteration. All but the last two count from 1.
///
/// A value that holds whatever a row of the database holds: any 16-bit numbers. Storing asks for
/// valid parts (1 to 32767; result and iteration from 0); finding, listing and removing do not.
/// EntryStore converts keys to and from text.
class EntryKey {
public:
    /// An entry of a cube of the register (number from 1) or of the fares (-8).
    constexpr EntryKey(short cube, short purpose, short mode, short time, short user)
        : isResult_(false), numbers_{cube, purpose, mode, time, user, notSet, notSet} {}
    /// A result; `kind` is the number of a kind of results: -1 skim, -2 selected link, -3 cordon,
    /// -4 screen line, -5 transit, -6 path, -7 stop to stop, -9 routes, -10 data of routes.
    constexpr EntryKey(short kind, short purpose, short mode, short time, short user, short result, short iteration)
        : isResult_(true), numbers_{kind, purpose, mode, time, user, result, iteration} {}

    constexpr short cube() const noexcept { return numbers_[0]; }
    constexpr short purpose() const noexcept { return numbers_[1]; }
    constexpr short mode() const noexcept { return numbers_[2]; }
    constexpr short time() const noexcept { return numbers_[3]; }
    constexpr short user() const noexcept { return numbers_[4]; }
    /// -1 for an entry of a cube.
    constexpr short result() const noexcept { return numbers_[5]; }
    constexpr short iteration() const noexcept { return numbers_[6]; }
    /// Whether the key has six parts beside the cube.
    constexpr bool isResult() const noexcept { return isResult_; }

    /// The number of the cube and the four or six parts. Valid as long as the key.
    constexpr std::span<short const> numbers() const noexcept {
        return std::span(numbers_).first(isResult_ ? resultNumbers : cubeNumbers);
    }
    /// The parts without the cube.
    constexpr std::span<short const> parts() const noexcept { return numbers().subspan(1); }

    /// Entries of cubes before results, then number by number.
    friend constexpr auto operator<=>(EntryKey const&, EntryKey const&) = default;

private:
    static constexpr short notSet = -1;
    static constexpr std::size_t cubeNumbers = 5;
    static constexpr std::size_t resultNumbers = 7;

    bool isResult_;
    std::array<short, resultNumbers> numbers_;
};

}
