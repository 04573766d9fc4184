// cubes-reader: reads one HDF5 file for the library, which asks over standard input. It may fail in any way.

#include "host/hdf5/Hdf5.h"
#include "host/hdf5/ReaderProtocol.h"
#include "host/platform/ChildProcess.h"
#include "host/platform/System.h"
#include "reader/StoredObjects.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <new>
#include <optional>
#include <stdexcept>
#include <system_error>
#include <utility>

using cubes::hdf5::AnswerHead;
using cubes::hdf5::AnswerKind;
using cubes::hdf5::Ask;
using cubes::hdf5::Message;
using cubes::hdf5::NumberType;
using cubes::reader::InputFile;
using cubes::reader::StoredObjects;

namespace {

// A chunk has up to 4 GiB, stored and decoded.
constexpr std::uint64_t mostMemory = std::uint64_t{10} << 30;
constexpr std::size_t longestError = 1000;

template <typename Value>
Message messageOf(Value const& value) {
    Message message;
    message.put(value);
    return message;
}

Message flag(bool value) {
    Message message;
    message.putFlag(value);
    return message;
}

Message answerAttribute(StoredObjects& file, std::string const& object, std::string const& name) {
    auto const found = file.attribute(object, name);
    Message answer = flag(found.has_value());
    if (found) answer.put(*found);
    return answer;
}

Message answerChunks(StoredObjects& file, std::string const& path) {
    auto const places = file.chunks(path);
    auto const bytes = std::as_bytes(std::span(places));
    return Message({bytes.begin(), bytes.end()});
}

Message answerNumbers(StoredObjects& file, std::string const& path, Message& question) {
    auto const type = question.take<NumberType>();
    auto const first = question.take<std::uint64_t>();
    return Message(file.numbers(path, type, first, question.take<std::uint64_t>()));
}

Message answerTo(StoredObjects& file, Message& question) {
    auto const ask = question.take<Ask>();
    std::string const path = question.takeText();
    switch (ask) {
    case Ask::open:
        return {};
    case Ask::exists:
        return flag(file.exists(path));
    case Ask::links:
        return messageOf(file.links(path));
    case Ask::dataset:
        return messageOf(file.dataset(path));
    case Ask::attribute:
        return answerAttribute(file, path, question.takeText());
    case Ask::chunks:
        return answerChunks(file, path);
    case Ask::numbers:
        return answerNumbers(file, path, question);
    }
    throw cubes::hdf5::MessageError();
}

bool receive(std::span<std::byte> bytes) {
    return std::fread(bytes.data(), 1, bytes.size(), stdin) == bytes.size();
}

bool send(AnswerKind kind, std::span<std::byte const> bytes) {
    AnswerHead const head{kind, bytes.size()};
    return std::fwrite(&head, sizeof head, 1, stdout) == 1 &&
           std::fwrite(bytes.data(), 1, bytes.size(), stdout) == bytes.size() && std::fflush(stdout) == 0;
}

bool sendError(std::string const& text) {
    return send(AnswerKind::error, std::as_bytes(std::span(text)).first(std::min(text.size(), longestError)));
}

bool sendFailure(std::error_code failure) {
    return send(AnswerKind::systemError, messageOf(std::int32_t{failure.value()}).bytes());
}

std::optional<Message> nextQuestion() {
    std::uint32_t size = 0;
    if (!receive(std::as_writable_bytes(std::span(&size, 1)))) return std::nullopt;
    std::vector<std::byte> bytes(size);
    if (!receive(bytes)) return std::nullopt;
    return Message(std::move(bytes));
}

// The library's first question opens the file; when that fails, it asks no other.
class Answers {
public:
    explicit Answers(cubes::platform::File file) : file_(std::move(file)) {}

    bool answer(Message& question) {
        try {
            if (!objects_) objects_.emplace(file_);
            Message const answer = answerTo(*objects_, question);
            if (!file_.failure()) return send(AnswerKind::content, answer.bytes());
        } catch (std::bad_alloc const&) {
            return send(AnswerKind::tooLittleMemory, {});
        } catch (std::length_error const&) {
            return send(AnswerKind::tooLittleMemory, {});
        } catch (std::exception const& error) {
            if (!file_.failure()) return sendError(error.what());
        }
        return sendFailure(file_.failure());
    }

private:
    InputFile file_;
    std::optional<StoredObjects> objects_;
};

bool begin() {
    try {
        cubes::platform::prepareAsChild(std::min(mostMemory, cubes::platform::availableMemory().value_or(mostMemory)));
    } catch (std::system_error const& error) {
        sendFailure(error.code());
        return false;
    }
    return send(AnswerKind::content, {});
}

}

int main(int count, char** arguments) {
    if (count != 2) {
        std::fputs("cubes-reader is a part of the Cubes library, which starts it to read HDF5 files\n", stderr);
        return 2;
    }
    if (!begin()) return 1;
    cubes::hdf5::Session const session;
    Answers answers(cubes::platform::inheritedFile(arguments[1]));
    while (auto question = nextQuestion())
        if (!answers.answer(*question)) return 1;
    return 0;
}
