#pragma once

#include <cubes/Export.h>
#include <cubes/database/TRkDBBaseDataDictionary.h>
#include <cubes/text/TRkBase.h>

/// The data dictionary that the project's settings hold under "RkLib.DataDictionary". An
/// application with table definitions of its own derives from it and sets it in the settings.
class CUBES_API TRkDBDataDictionary : public TRkDBBaseDataDictionary, public TRkObject {
public:
    ~TRkDBDataDictionary() override;
};
