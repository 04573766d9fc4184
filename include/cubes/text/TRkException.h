#pragma once

#include <cubes/Export.h>
#include <cubes/text/AnsiString.h>

#include <exception>
#include <vector>

/// The base of the library's exceptions: one message text.
///
/// Call GetMessageA by its full name on all platforms: the Windows header defines GetMessage as a
/// macro, which becomes GetMessageW when UNICODE is defined.
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

/// One place where an error occurred or through which it passed.
struct TRkExceptionContext {
    AnsiString message;
    AnsiString file;
    AnsiString function;
    int line = 0;
};

/// An exception that collects context on its way up through callers. The context is separate from the message: what()
/// returns the message alone.
class CUBES_API TRkException : public VclOrStdException {
public:
    /// The code is for derived classes and not used here.
    TRkException(char const* text, unsigned long code);
    /// The message and the place where the error occurred, which becomes the first context entry.
    TRkException(AnsiString message, char const* file, char const* function, int line);
    TRkException(TRkException const&);
    TRkException& operator=(TRkException const&);
    ~TRkException() override;

    /// Appends a context entry. Null texts count as empty.
    void Add(AnsiString message, char const* file, char const* function, int line);
    /// The context entries, oldest first.
    std::vector<TRkExceptionContext> const& Context() const noexcept { return context_; }

private:
    std::vector<TRkExceptionContext> context_;
};
