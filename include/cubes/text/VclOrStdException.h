#pragma once

#include <cubes/Export.h>
#include <cubes/text/AnsiString.h>

#include <exception>

/// The root of the library's exceptions: one message text.
///
/// GetMessageA keeps its literal name on all platforms. Code that includes the Windows header
/// with UNICODE defined and writes GetMessage is given GetMessageW by that header's macro, and
/// does not compile: write GetMessageA.
class CUBES_API VclOrStdException : public std::exception {
public:
    explicit VclOrStdException(AnsiString message = {});
    VclOrStdException(VclOrStdException const&);
    VclOrStdException& operator=(VclOrStdException const&);
    ~VclOrStdException() override;

    AnsiString GetMessageA() const;
    /// A null pointer gives the empty message.
    void SetMessage(char const* message);
    /// The message alone, without context. Valid until the message changes.
    char const* what() const noexcept override;

private:
    AnsiString message_;
};
