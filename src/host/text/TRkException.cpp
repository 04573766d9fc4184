#include <cubes/text/TRkException.h>

TRkException::TRkException(char const* text, unsigned long /*code*/) : VclOrStdException(AnsiString(text)) {}

TRkException::TRkException(AnsiString message, char const* file, char const* function, int line)
    : VclOrStdException(message) {
    Add(std::move(message), file, function, line);
}

TRkException::TRkException(TRkException const&) = default;
TRkException& TRkException::operator=(TRkException const&) = default;
TRkException::~TRkException() = default;

void TRkException::Add(AnsiString message, char const* file, char const* function, int line) {
    context_.push_back({std::move(message), AnsiString(file), AnsiString(function), line});
}
