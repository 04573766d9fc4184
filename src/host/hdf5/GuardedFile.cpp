#include "host/hdf5/GuardedFile.h"

#include "host/platform/Files.h"
#include "host/platform/Paths.h"
#include "host/platform/SharedLibrary.h"
#include "host/platform/System.h"

#include <algorithm>
#include <memory>
#include <new>
#include <system_error>

namespace cubes::hdf5 {

namespace {

// No description of an object is larger.
constexpr std::uint64_t largestAnswer = std::uint64_t{64} << 20;
constexpr std::uint64_t longestError = 4096;
// Numbers are read in blocks of about this size.
constexpr std::uint64_t blockBytes = std::uint64_t{4} << 20;

constexpr char readerName[] = "cubes-reader" CUBES_EXECUTABLE_SUFFIX;
constexpr char failed[] = "HDF5 failed on it";

// Never in the working directory, which an unknown directory of our own would be.
std::vector<std::string> possibleReaders() {
    if (auto const& chosen = readerSettings().program; !chosen.empty()) return {chosen};
    std::string const own = platform::ownDirectory();
    if (own.empty()) return {};
    return {own + "cubes" + platform::pathDelimiter() + readerName, own + readerName};
}

std::string readerProgram() {
    std::string places;
    for (std::string const& program : possibleReaders()) {
        if (platform::isRegularFile(program)) return program;
        places += (places.empty() ? " at " : " or ") + program;
    }
    throw NoReader("the program that reads HDF5 files was not found" + places + "; install Cubes again");
}

// Before it can say a word about the file.
std::string faultOfGreeting(platform::ChildProcess& reader) {
    AnswerHead greeting{};
    std::int32_t code = 0;
    auto const receives = [&](auto& value) {
        return reader.read(std::as_writable_bytes(std::span(&value, 1)), readerSettings().patience) ==
               platform::Transfer::done;
    };
    if (!receives(greeting)) return "it does not run; it needs the HDF5 library, and memory for another process";
    if (greeting.kind == AnswerKind::systemError && receives(code)) return std::system_category().message(code);
    bool const isExpected = greeting.kind == AnswerKind::content && greeting.size == 0;
    return isExpected ? "" : "it is not the reader of this version; install Cubes again";
}

std::unique_ptr<platform::ChildProcess> startReader(platform::File const& file) {
    try {
        std::string const program = readerProgram();
        auto reader = std::make_unique<platform::ChildProcess>(program, file);
        std::string const fault = faultOfGreeting(*reader);
        if (!fault.empty()) throw NoReader("cannot start " + program + ": " + fault);
        return reader;
    } catch (std::system_error const& error) {
        throw NoReader(error.what());
    }
}

Message question(Ask what, std::string const& path = {}) {
    Message message;
    message.put(what);
    message.putText(path);
    return message;
}

bool isControl(char letter) {
    return static_cast<unsigned char>(letter) < ' ' || letter == '\x7f';
}

// Whole chunks, so that none is read twice.
std::uint64_t rowsOfBlock(Dataset const& dataset, std::uint64_t rowBytes) {
    std::uint64_t const unit = dataset.layout == DatasetLayout::chunked
                                   ? std::clamp<std::uint64_t>(dataset.chunk[0], 1, dataset.dimensions[0])
                                   : 1;
    return unit * std::max<std::uint64_t>(1, blockBytes / rowBytes / unit);
}

std::uint64_t rowBytesOf(Dataset const& dataset, NumberType type) {
    std::uint64_t bytes = sizeOf(type);
    for (std::size_t i = 1; i < dataset.dimensions.size(); ++i) bytes *= dataset.dimensions[i];
    return bytes;
}

}

ReaderSettings& readerSettings() {
    static ReaderSettings settings;
    return settings;
}

template <typename Take>
auto GuardedFile::ask(Message const& question, Take take) const {
    auto const lock = turn();
    AnswerHead const head = answerTo(question);
    if (head.size > largestAnswer) fail(failed);
    try {
        std::vector<std::byte> bytes(static_cast<std::size_t>(head.size));
        receive(bytes);
        Message answer(std::move(bytes));
        return take(answer);
    } catch (MessageError const&) {
        fail(failed);
    } catch (std::bad_alloc const&) {
        // The answer may not have been received, so that no other can be.
        failure_ = "not enough memory";
        throw;
    }
}

GuardedFile::GuardedFile(platform::File file)
    : file_(std::move(file)), size_(file_.size()), forks_(platform::forkCount()), reader_(startReader(file_)) {
    ask(question(Ask::open), [](Message&) { return true; });
}

bool GuardedFile::exists(std::string const& path) const {
    return ask(question(Ask::exists, path), [](Message& answer) { return answer.takeFlag(); });
}

std::vector<Link> GuardedFile::links(std::string const& group) const {
    return ask(question(Ask::links, group), [](Message& answer) { return answer.takeLinks(); });
}

Dataset GuardedFile::dataset(std::string const& path) const {
    return ask(question(Ask::dataset, path), [](Message& answer) { return answer.takeDataset(); });
}

std::optional<Attribute> GuardedFile::attribute(std::string const& object, std::string const& name) const {
    Message asked = question(Ask::attribute, object);
    asked.putText(name);
    return ask(asked,
        [](Message& answer) { return answer.takeFlag() ? std::optional(answer.takeAttribute()) : std::nullopt; });
}

std::vector<ChunkPlace> GuardedFile::chunks(std::string const& path, std::size_t count) const {
    std::vector<ChunkPlace> places(count);
    receiveExactly(question(Ask::chunks, path), std::as_writable_bytes(std::span(places)));
    return places;
}

void GuardedFile::read(std::string const& path, Dataset const& dataset, NumberType type, std::uint64_t first,
    std::span<std::byte> to) const {
    if (to.empty()) return;
    std::uint64_t const rowBytes = rowBytesOf(dataset, type);
    std::uint64_t const most = rowsOfBlock(dataset, rowBytes);
    while (!to.empty()) {
        std::uint64_t const rows = std::min<std::uint64_t>(most - first % most, to.size() / rowBytes);
        Message asked = question(Ask::numbers, path);
        asked.put(type);
        asked.put(first);
        asked.put(rows);
        receiveExactly(asked, to.first(static_cast<std::size_t>(rows * rowBytes)));
        to = to.subspan(static_cast<std::size_t>(rows * rowBytes));
        first += rows;
    }
}

void GuardedFile::receiveExactly(Message const& question, std::span<std::byte> bytes) const {
    auto const lock = turn();
    if (answerTo(question, bytes.size()).size != bytes.size()) fail(failed);
    receive(bytes);
}

// In a forked process, no thread would ever release the mutex that another one had locked.
std::unique_lock<std::mutex> GuardedFile::turn() const {
    if (platform::forkCount() != forks_)
        throw std::runtime_error("it was opened before this process was forked; open it again");
    return std::unique_lock(mutex_);
}

// The head of an answer that is not an error, for a question about so many bytes.
AnswerHead GuardedFile::answerTo(Message const& question, std::uint64_t bytes) const {
    if (!failure_.empty()) throw std::runtime_error(failure_);
    auto const size = static_cast<std::uint32_t>(question.bytes().size());
    require(reader_->write(std::as_bytes(std::span(&size, 1)), settings_.patience), settings_.patience);
    require(reader_->write(question.bytes(), settings_.patience), settings_.patience);
    AnswerHead head{};
    receive(std::as_writable_bytes(std::span(&head, 1)), settings_.patienceFor(bytes));
    if (head.kind == AnswerKind::tooLittleMemory && head.size == 0) throw std::bad_alloc();
    if (head.kind == AnswerKind::tooLittleMemory) fail(failed);
    if (head.kind == AnswerKind::systemError) throwSystemError(head.size);
    if (head.kind != AnswerKind::content) throwError(head.size);
    return head;
}

void GuardedFile::receive(std::span<std::byte> bytes, std::chrono::milliseconds patience) const {
    require(reader_->read(bytes, patience), patience);
}

void GuardedFile::require(platform::Transfer transfer, std::chrono::milliseconds patience) const {
    auto const seconds = std::chrono::ceil<std::chrono::seconds>(patience).count();
    if (transfer == platform::Transfer::ended) fail(failed);
    if (transfer == platform::Transfer::silent)
        fail("HDF5 did not finish reading it within " + std::to_string(seconds) + " s");
}

void GuardedFile::fail(std::string const& reason) const {
    failure_ = "it is damaged (" + reason + ")";
    throw std::runtime_error(failure_);
}

void GuardedFile::throwError(std::uint64_t size) const {
    if (size > longestError) fail(failed);
    std::string text(static_cast<std::size_t>(size), '\0');
    receive(std::as_writable_bytes(std::span(text)));
    std::ranges::replace_if(text, isControl, '?');
    throw std::runtime_error(text);
}

void GuardedFile::throwSystemError(std::uint64_t size) const {
    std::int32_t code = 0;
    if (size != sizeof code) fail(failed);
    receive(std::as_writable_bytes(std::span(&code, 1)));
    throw std::system_error(code, std::system_category());
}

std::optional<std::string> findText(GuardedFile const& file, std::string const& object, std::string const& name) {
    auto const attribute = file.attribute(object, name);
    if (!attribute || attribute->type.kind != TypeClass::text || attribute->value.empty()) return std::nullopt;
    std::string const text(reinterpret_cast<char const*>(attribute->value.data()), attribute->value.size());
    return text.substr(0, text.find('\0'));
}

std::string readText(GuardedFile const& file, std::string const& object, std::string const& name) {
    return findText(file, object, name).value_or("");
}

}
