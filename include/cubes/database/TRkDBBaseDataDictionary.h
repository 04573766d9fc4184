#pragma once

#include <cubes/Export.h>
#include <cubes/database/TRkTableProxy.h>
#include <cubes/text/AnsiString.h>
#include <cubes/text/CountedPtr.h>

#include <vector>

/// Knows a project's tables and builds cursors on them. Cursors never create tables.
class CUBES_API TRkDBBaseDataDictionary {
public:
    virtual ~TRkDBBaseDataDictionary();

    /// The database in which data tables are searched, so that a project finds its own tables while another project is
    /// current. Null, the default: the current one.
    void SetConnection(Pgaccess::TPgConnection* connection) noexcept { connection_ = connection; }

    /// A cursor on a table, not yet opened and without a connection; empty when the dictionary
    /// knows no such table or the current database has none in that schema. An empty schema
    /// leaves the table name as it is. A null table name gives an empty pointer.
    virtual CountedPtr<Rktable::TRkTableProxy> BuildTable(char const* table, AnsiString const& schema);

    /// Fills `tables` with a cursor for every data table of that object in that schema: for "cube" those aliased
    /// "cube4data1" and "cube5data1". False when there is none. The connection remembers which of them exist once there
    /// is at least one; a table that is dropped later is noticed by the operation that does not find it.
    virtual bool BuildDataTables(
        char const* table, std::vector<CountedPtr<Rktable::TRkTableProxy>>& tables, AnsiString const& schema);

private:
    Pgaccess::TPgConnection* connection_ = nullptr;
};
