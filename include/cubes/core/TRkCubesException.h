#pragma once

#include <cubes/Export.h>
#include <cubes/text/TRkException.h>

/// An error of the cube library itself. Thrown by value. Each error has a message of its own, by which callers
/// distinguish them.
class CUBES_API TRkCubesException : public TRkException {
public:
    /// Codes of the library's own, distinguished from operating-system errors by bit 29.
    enum ErrorCodes : unsigned int {
        ecCubeExists = 0x20000001,       ///< "Cube already exists"
        ecFromCubeMissing = 0x20000002,  ///< "From cube doesn't exist"
        ecToCubeMissing = 0x20000003,    ///< "To cube doesn't exist"
        ecCubeNrOutOfRange = 0x20000004, ///< "IntTo40T> Only 2 positions reserved! Maximum value is 1599"
        ecEntryExists = 0x20000005,      ///< "Entry already exists in the cube"
        ecMatrixExists = 0x20000006,     ///< "Matrix already exists in the cube"
    };

    explicit TRkCubesException(ErrorCodes code);
    TRkCubesException(char const* text, unsigned long code);
    /// The message and the place where the error occurred.
    TRkCubesException(AnsiString message, char const* file, char const* function, int line);
    TRkCubesException(TRkCubesException const&);
    TRkCubesException& operator=(TRkCubesException const&);
    ~TRkCubesException() override;

    /// Appends a context entry.
    void Add(AnsiString message, char const* file, char const* function, int line);

    /// Sets the message from a code. The code 0xFFFFFFFF means the calling thread's last operating-system error. Code
    /// 0: the message becomes `text` (null: unchanged). A code with bit 29: the library's own text, "Unknown error" for
    /// an unknown code. Any other code: the system's text (errno off Windows); the message is unchanged when the system
    /// has none. A text that is not null is put in front, separated by one blank.
    void FormatMessageA(char const* text, unsigned long code);
};
