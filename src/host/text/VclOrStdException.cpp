#include <cubes/text/VclOrStdException.h>

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
