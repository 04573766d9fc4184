#include <cubes/matrix/TRkMatrix.h>

#include "host/matrix/Body.h"
#include "host/matrix/Failure.h"
#include "host/matrix/SelectedLinkBody.h"
#include "host/matrix/WriteLock.h"
#include "host/platform/NarrowText.h"

#include <algorithm>
#include <numeric>
#include <optional>
#include <utility>

using cubes::matrix::describingFailure;
using cubes::matrix::FileBody;
using cubes::matrix::FileHeader;
using cubes::matrix::MemoryBody;
using cubes::matrix::NewFileBody;
using cubes::matrix::OpenedFile;
using cubes::matrix::SelectedLinkBody;
using cubes::matrix::WriteLock;

struct TRkMatrix::State {
    TRkMatrixHeader header;
    std::string file;
    RkLockState lock = lsNone;
    std::string reason;
    // Released last: the body writes its file on destruction, under the lock.
    std::optional<WriteLock> writeLock;
    std::unique_ptr<cubes::matrix::Body> body;
    // The positions in the order of their zone numbers; made by the first search.
    mutable std::vector<int> byZone;

    void takeLock(WriteLock::Purpose purpose) {
        if (lock & lsWrite) writeLock.emplace(file, purpose);
    }
    void fail(std::string why) {
        reason = std::move(why);
        body.reset();
        writeLock.reset();
    }
    void open(char const* name, RkMatrixKind kind) {
        takeLock(WriteLock::Purpose::open);
        OpenedFile opened = cubes::matrix::openMatrixFile(file);
        take(opened.header, kind);
        if (name && *name) header.name_ = TRkString(name);
        if (opened.header.selectedLink)
            body = std::make_unique<SelectedLinkBody>(file, header, std::move(opened));
        else
            body = std::make_unique<FileBody>(file, std::move(opened));
    }
    void take(FileHeader const& stored, RkMatrixKind kind) {
        header = TRkMatrixHeader(
            stored.rows, stored.columns, stored.type.value_or(mtMatrixCube), stored.kind.value_or(kind));
        header.name_ = TRkString(cubes::platform::fromUtf8(stored.name));
        header.zones_ = stored.zones;
    }
    cubes::matrix::Body& usableBody() const {
        if (!body) throw TRkMatrixException("cannot use a matrix that is not valid: " + reason, file);
        return *body;
    }
    cubes::matrix::Body& bodyWithRow(int row) const {
        cubes::matrix::Body& usable = usableBody();
        if (row < 0 || row >= header.Rows())
            throw TRkMatrixException("cannot read row " + std::to_string(row) + (file.empty() ? "" : " of " + file) +
                                         ": the matrix has " + std::to_string(header.Rows()) + " rows",
                file);
        return usable;
    }
    std::size_t rowSize() const { return static_cast<std::size_t>(header.Columns()); }
    std::size_t size() const { return static_cast<std::size_t>(header.Rows()) * rowSize(); }
    void setZones(std::vector<std::int32_t> zones) {
        header.zones_ = std::move(zones);
        byZone.clear();
    }
    int positionOf(int zone, int count) const;
    void sortZones() const;
};

void TRkMatrix::State::sortZones() const {
    byZone.resize(header.Zones().size());
    std::iota(byZone.begin(), byZone.end(), 0);
    std::ranges::stable_sort(
        byZone, {}, [&](int position) { return header.Zones()[static_cast<std::size_t>(position)]; });
}

// The first row or column of `count` that has a zone number, or -1; without zone numbers they count from 1.
int TRkMatrix::State::positionOf(int zone, int count) const {
    auto const& zones = header.Zones();
    if (zones.empty()) return zone >= 1 && zone <= count ? zone - 1 : -1;
    if (byZone.empty()) sortZones();
    auto const numberAt = [&](int position) { return zones[static_cast<std::size_t>(position)]; };
    auto const found = std::ranges::lower_bound(byZone, zone, {}, numberAt);
    return found != byZone.end() && numberAt(*found) == zone ? *found : -1;
}

namespace {

std::string const noMatrix = "the object is not bound to a matrix";

template <typename State>
State& required(std::unique_ptr<State> const& state) {
    if (!state) throw TRkMatrixException("cannot use a matrix that is not valid: " + noMatrix, {});
    return *state;
}

std::string whyNoZone(TRkMatrixHeader const& header, int zone, int count) {
    std::string const missing = "there is no zone " + std::to_string(zone);
    auto const& zones = header.Zones();
    if (zones.empty())
        return missing + "; the matrix has no zone numbers, so they count from 1 to " + std::to_string(count);
    auto const [lowest, highest] = std::ranges::minmax(zones);
    return missing + "; zone numbers run from " + std::to_string(lowest) + " to " + std::to_string(highest);
}

}

TRkBaseMatrix::~TRkBaseMatrix() = default;

TRkVLSelectedLinkMatrix::~TRkVLSelectedLinkMatrix() = default;

TRkMatrixException::TRkMatrixException(std::string const& message, std::string file, std::error_code code)
    : TRkException(message.c_str(), 0), file_(std::move(file)), code_(code) {}

TRkMatrixException::TRkMatrixException(TRkMatrixException const&) = default;
TRkMatrixException& TRkMatrixException::operator=(TRkMatrixException const&) = default;
TRkMatrixException::~TRkMatrixException() = default;

TRkMatrixHeader::TRkMatrixHeader(int rows, int columns, RkMatrixType type, RkMatrixKind kind)
    : rows_(rows), columns_(columns), type_(type), kind_(kind) {}

TRkMatrix::TRkMatrix() = default;

TRkMatrix::TRkMatrix(char const* fileName, int, char const* name, bool, RkMatrixKind kind, RkLockState lock, int)
    : state_(std::make_unique<State>()) {
    state_->file = fileName ? fileName : "";
    state_->lock = lock;
    try {
        describingFailure("cannot open matrix file", state_->file, [&] { state_->open(name, kind); });
    } catch (TRkMatrixException const& error) {
        state_->fail(error.what());
    }
}

TRkMatrix::TRkMatrix(int rows, int columns, RkMatrixType type, char const* fileName, int, char const* name, char const*,
    bool, RkMatrixKind kind, RkLockState lock)
    : state_(std::make_unique<State>()) {
    state_->file = fileName ? fileName : "";
    state_->lock = lock;
    state_->header = TRkMatrixHeader(rows, columns, type, kind);
    state_->header.name_ = TRkString(name);
    try {
        describingFailure("cannot create matrix file", state_->file, [&] {
            state_->takeLock(WriteLock::Purpose::create);
            state_->body = std::make_unique<NewFileBody>(state_->file, rows, columns);
        });
    } catch (TRkMatrixException const& error) {
        state_->fail(error.what());
    }
}

TRkMatrix::TRkMatrix(TRkMatrix&&) noexcept = default;

TRkMatrix& TRkMatrix::operator=(TRkMatrix&& other) noexcept {
    if (this == &other) return *this;
    // What this object held is finished as by its destructor.
    TRkMatrix const former(std::move(*this));
    state_ = std::move(other.state_);
    return *this;
}

TRkMatrix TRkMatrix::inMemory(int rows, int columns) {
    TRkMatrix matrix;
    matrix.state_ = std::make_unique<State>();
    matrix.state_->header = TRkMatrixHeader(rows, columns, mtMatrixCube, mkDefault);
    std::string const size = std::to_string(rows) + " x " + std::to_string(columns);
    describingFailure("cannot create a matrix of " + size + " elements", {},
        [&] { matrix.state_->body = std::make_unique<MemoryBody>(rows, columns); });
    return matrix;
}

TRkMatrix TRkMatrix::selectedLink(int rows, int columns, char const* file) {
    TRkMatrix matrix = inMemory(rows, columns);
    State& state = *matrix.state_;
    state.file = file ? file : "";
    state.header = TRkMatrixHeader(rows, columns, mtSelectedLink, mkSelectedLink);
    try {
        describingFailure("cannot create matrix file", state.file,
            [&] { state.body = std::make_unique<SelectedLinkBody>(state.file, state.header); });
    } catch (TRkMatrixException const& error) {
        state.fail(error.what());
    }
    return matrix;
}

TRkMatrix::~TRkMatrix() {
    if (!state_ || !state_->body) return;
    try {
        state_->body->finish(state_->header);
    } catch (std::exception const&) {
        // A destructor cannot report the failure; the old file is kept.
    }
}

bool TRkMatrix::IsValid() const {
    return Body() != nullptr;
}

int TRkMatrix::StateCode() const {
    return state_ ? state_->lock : lsNone;
}

char const* TRkMatrix::FileName() const {
    return state_ ? state_->file.c_str() : "";
}

void TRkMatrix::AssignFrom(TRkMatrix const& source) {
    if (!IsValid()) throw TRkMatrixException("cannot assign to a matrix that is not valid: " + Reason(), FileName());
    if (!source.IsValid())
        throw TRkMatrixException("cannot assign a matrix that is not valid: " + source.Reason(), FileName());
    if (source.Rows() != Rows() || source.Columns() != Columns())
        throw TRkMatrixException("cannot assign a matrix of " + std::to_string(source.Rows()) + " x " +
                                     std::to_string(source.Columns()) + " elements to one of " +
                                     std::to_string(Rows()) + " x " + std::to_string(Columns()) +
                                     (state_->file.empty() ? "" : ", " + state_->file),
            FileName());
    try {
        if (!source.IsIntact())
            throw std::runtime_error("cannot assign a matrix: " + cubes::matrix::reasonOfDamage(source.FileName()));
        state_->setZones(source.Zones());
        state_->body->assign(state_->header, source.Elements().data());
    } catch (std::exception const& error) {
        state_->fail(error.what());
    }
}

int TRkMatrix::Columns() const {
    return Header().Columns();
}

int TRkMatrix::Rows() const {
    return Header().Rows();
}

float* TRkMatrix::RowAt(int row, int) {
    return required(state_).bodyWithRow(row).writableRow(row);
}

float const* TRkMatrix::RowAt(int row, int) const {
    return required(state_).bodyWithRow(row).row(row);
}

std::span<float const> TRkMatrix::Elements() const {
    State const& state = required(state_);
    return {state.usableBody().all(), state.size()};
}

std::span<float> TRkMatrix::WritableElements() {
    State const& state = required(state_);
    return {state.usableBody().writableAll(), state.size()};
}

std::span<float const> TRkMatrix::Row(int row) const {
    State const& state = required(state_);
    return {state.bodyWithRow(row).row(row), state.rowSize()};
}

std::span<float> TRkMatrix::WritableRow(int row) {
    State const& state = required(state_);
    return {state.bodyWithRow(row).writableRow(row), state.rowSize()};
}

float TRkMatrix::At(int originZone, int destinationZone) const {
    State const& state = required(state_);
    state.usableBody();
    int const row = state.positionOf(originZone, Rows());
    int const column = state.positionOf(destinationZone, Columns());
    if (row >= 0 && column >= 0) return Row(row)[static_cast<std::size_t>(column)];
    std::string const why =
        row < 0 ? whyNoZone(Header(), originZone, Rows()) : whyNoZone(Header(), destinationZone, Columns());
    std::string const file = state.file.empty() ? "" : " in " + state.file;
    throw TRkMatrixException("cannot read OD pair " + std::to_string(originZone) + ", " +
                                 std::to_string(destinationZone) + file + ": " + why,
        state.file);
}

bool TRkMatrix::IsIntact() const {
    State const& state = required(state_);
    return describingFailure("cannot read matrix file", state.file, [&] { return state.usableBody().isIntact(); });
}

void TRkMatrix::Release() {
    if (!IsValid()) return;
    if (state_->body->release()) state_->writeLock.reset();
}

void cubes::matrix::dropZones(TRkMatrix& matrix) {
    if (matrix.state_) matrix.state_->setZones({});
}

void TRkMatrix::Prepare() const {}

TRkMatrixHeader const* TRkMatrix::GetHeader(char const* fileName) {
    thread_local TRkMatrixHeader last;
    State read;
    try {
        read.take(cubes::matrix::openMatrixFile(fileName ? fileName : "").header, mkDefault);
    } catch (TRkMatrixException const&) {
        return nullptr;
    }
    last = std::move(read.header);
    return &last;
}

TRkMatrixHeader const& TRkMatrix::Header() const noexcept {
    static TRkMatrixHeader const none;
    return state_ ? state_->header : none;
}

RkMatrixType TRkMatrix::Type() const noexcept {
    return Header().Type();
}

RkMatrixKind TRkMatrix::MatrixKind() const noexcept {
    return Header().kind_;
}

void TRkMatrix::MatrixKind(RkMatrixKind kind) {
    required(state_).header.kind_ = kind;
}

TRkString const& TRkMatrix::Name() const noexcept {
    return Header().Name();
}

std::vector<std::int32_t> const& TRkMatrix::Zones() const noexcept {
    return Header().Zones();
}

void TRkMatrix::SetZones(std::vector<std::int32_t> zones) {
    bool const fits = Rows() == Columns() && zones.size() == static_cast<std::size_t>(Rows());
    if (!zones.empty() && !fits)
        throw TRkMatrixException("cannot give " + std::to_string(zones.size()) + " zone numbers to a matrix of " +
                                     std::to_string(Rows()) + " x " + std::to_string(Columns()) + " elements",
            FileName());
    required(state_).setZones(std::move(zones));
}

TRkBaseMatrix const* TRkMatrix::Body() const noexcept {
    return state_ ? state_->body.get() : nullptr;
}

TRkBaseMatrix* TRkMatrix::Body() noexcept {
    return state_ ? state_->body.get() : nullptr;
}

std::string const& TRkMatrix::Reason() const noexcept {
    return state_ ? state_->reason : noMatrix;
}
