// A reader of HDF5 files that fails in the way that the environment variable CUBES_TEST_FAILURE names.

#include "host/hdf5/ReaderProtocol.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#endif

using cubes::hdf5::AnswerHead;
using cubes::hdf5::AnswerKind;

namespace {

void passQuestion() {
    std::uint32_t size = 0;
    if (std::fread(&size, sizeof size, 1, stdin) != 1) std::exit(0);
    for (; size > 0; --size) std::getchar();
}

void send(AnswerHead const& head, std::string const& bytes = {}) {
    std::fwrite(&head, sizeof head, 1, stdout);
    std::fwrite(bytes.data(), 1, bytes.size(), stdout);
    std::fflush(stdout);
}

// Until the other end is closed.
void waitForever() {
    while (std::getchar() != EOF) {
    }
}

}

int main() {
#ifdef _WIN32
    _setmode(0, _O_BINARY);
    _setmode(1, _O_BINARY);
#endif
    char const* const variable = std::getenv("CUBES_TEST_FAILURE");
    std::string const failure = variable ? variable : "";
    if (failure == "ends at the start") return 0;
    if (failure == "hangs at the start") waitForever();
    if (failure == "is another program") send({AnswerKind::content, 7});
    if (failure == "gets no thread") send({AnswerKind::systemError, 4}, std::string("\13\0\0\0", 4));
    send({AnswerKind::content, 0});
    passQuestion();
    if (failure == "ends") return 0;
    if (failure == "crashes") std::abort();
    if (failure == "hangs") waitForever();
    send({AnswerKind::content, 0});
    passQuestion();
    if (failure == "crashes later") std::abort();
    if (failure == "hangs later") waitForever();
    if (failure == "says nonsense") send({static_cast<AnswerKind>(77), 3}, "abc");
    if (failure == "claims gigabytes") send({AnswerKind::content, std::uint64_t{1} << 60});
    if (failure == "claims a long error") send({AnswerKind::error, std::uint64_t{1} << 60});
    if (failure == "ends in an answer") send({AnswerKind::content, 1000}, "abc");
    if (failure == "counts wrongly") send({AnswerKind::content, 8}, std::string(8, '\xFF'));
    if (failure == "has too little memory") send({AnswerKind::tooLittleMemory, 0});
    if (failure == "has too little memory and more to say") send({AnswerKind::tooLittleMemory, 3}, "abc");
    if (failure == "sends a long error number") send({AnswerKind::systemError, 8}, std::string(8, 1));
    if (failure == "cannot read") {
        std::string const number("\5\0\0\0", 4);
        send({AnswerKind::systemError, 4}, number);
        passQuestion();
        send({AnswerKind::systemError, 4}, number);
    }
    if (failure == "sends control characters") send({AnswerKind::error, 3}, "a\x1b!");
    return 0;
}
