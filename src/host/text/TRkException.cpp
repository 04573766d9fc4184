#include <cubes/text/TRkException.h>

VclOrStdException::VclOrStdException(AnsiString message) : message_(std::move(message)) {}
VclOrStdException::VclOrStdException(VclOrStdException const&) = default;
VclOrStdException& VclOrStdException::operator=(VclOrStdException const&) = default;
VclOrStdException::~VclOrStdException() = default;

AnsiString VclOrStdException::GetMessageA() const {
    return message_;
}

void VclOrStdException::SetMessage(char const* message) {
    message_ = AnsiString(message);
}

char const* VclOrStdException::what() const noexcept {
    return message_.c_str();
}

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
