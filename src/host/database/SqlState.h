#pragma once

/// The SQLSTATE codes that this library distinguishes or reports, by name. SQLite's own codes
/// are given as these.
namespace cubes::database::sqlstate {

inline constexpr char const* noData = "02000";
inline constexpr char const* cannotConnect = "08001";
inline constexpr char const* notConnected = "08003";
inline constexpr char const* connectionLost = "08006";
inline constexpr char const* transactionLost = "08007";
inline constexpr char const* numberOutOfRange = "22003";
inline constexpr char const* notANumber = "22P02";
inline constexpr char const* missingValue = "23502";
inline constexpr char const* missingForeignKey = "23503";
inline constexpr char const* duplicateKey = "23505";
inline constexpr char const* failedCheck = "23514";
inline constexpr char const* wrongCursorState = "24000";
inline constexpr char const* readOnly = "25006";
inline constexpr char const* failedTransaction = "25P02";
inline constexpr char const* deadlock = "40P01";
inline constexpr char const* missingRight = "42501";
inline constexpr char const* missingColumn = "42703";
inline constexpr char const* missingTable = "42P01";
inline constexpr char const* diskFull = "53100";
inline constexpr char const* rowNotDeleted = "55000";
inline constexpr char const* locked = "55P03";
inline constexpr char const* fileChanged = "55006";
inline constexpr char const* inputOutput = "58030";
inline constexpr char const* general = "HY000";
inline constexpr char const* raisedByTrigger = "P0001";
inline constexpr char const* damaged = "XX001";

}
