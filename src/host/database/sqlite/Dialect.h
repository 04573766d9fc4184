#pragma once

#include "host/database/Dialect.h"

namespace cubes::database::sqlite {

/// The function that converts to lower case beyond ASCII; every connection of ours defines it.
inline constexpr char const* lowerCaseFunction = "cubes_lower";

class Dialect final : public database::Dialect {
public:
    std::string placeholder(std::size_t number) const override;
    std::string qualifiedName(std::string const& schema, std::string const& table) const override;
    Match ignoringCase(std::string const& text) const override;
    std::string textEquals(std::string const& column, std::string const& place, Match match) const override;
    std::string tableOptions() const override;
    std::string caseIgnoringIndex(
        std::string const& table, std::string const& column, std::string const& key) const override;
    std::string schemasWith(std::string const& table) const override;
    std::string beginWriting() const override;
    std::string lockDefinitions() const override;
    std::string lockTable(std::string const& quotedTable) const override;
    std::string lockRows() const override;
};

}
