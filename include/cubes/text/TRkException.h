#pragma once

#include <cubes/Export.h>
#include <cubes/text/AnsiString.h>
#include <cubes/text/VclOrStdException.h>

#include <vector>

/// One place that an error came from or passed through.
struct TRkExceptionContext {
    AnsiString message;
    AnsiString file;
    AnsiString function;
    int line = 0;
};

/// An exception that collects context while it passes up through callers. The context is kept
/// apart from the message: what() gives the message alone.
class CUBES_API TRkException : public VclOrStdException {
public:
    /// The code says what derived classes make of it; nothing is done with it here.
    TRkException(char const* text, unsigned long code);
    /// The message with its place of origin, which becomes the first context entry.
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
