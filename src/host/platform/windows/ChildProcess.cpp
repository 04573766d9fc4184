#include "host/platform/ChildProcess.h"

#include "host/platform/Paths.h"
#include "host/platform/System.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdio>
#include <fcntl.h>
#include <io.h>
#include <utility>
#include <vector>

namespace cubes::platform {

namespace {

constexpr DWORD pipeBytes = 1 << 18;
constexpr std::size_t largestTransfer = std::size_t{1} << 20;

class Handle {
public:
    Handle(HANDLE handle, std::string const& program) : handle_(handle) {
        if (handle == nullptr || handle == INVALID_HANDLE_VALUE) throwSystemFailure("cannot start", program);
    }
    Handle(Handle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
    Handle(Handle const&) = delete;
    Handle& operator=(Handle const&) = delete;
    ~Handle() {
        if (handle_) ::CloseHandle(handle_);
    }
    HANDLE get() const noexcept { return handle_; }

private:
    HANDLE handle_;
};

SECURITY_ATTRIBUTES inheritable() {
    return {sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
}

struct Connection {
    Handle own;
    Handle childs;
};

// Waiting for an anonymous pipe cannot be limited, so this one has a name, which nobody else can use.
Connection connect(std::string const& program) {
    static std::atomic<unsigned> connections = 0;
    std::wstring const name = L"\\\\.\\pipe\\cubes-" + std::to_wstring(::GetCurrentProcessId()) + L"-" +
                              std::to_wstring(::GetTickCount64()) + L"-" + std::to_wstring(++connections);
    Handle own(
        ::CreateNamedPipeW(name.c_str(), PIPE_ACCESS_DUPLEX | FILE_FLAG_OVERLAPPED | FILE_FLAG_FIRST_PIPE_INSTANCE,
            PIPE_TYPE_BYTE | PIPE_REJECT_REMOTE_CLIENTS, 1, pipeBytes, pipeBytes, 0, nullptr),
        program);
    SECURITY_ATTRIBUTES security = inheritable();
    Handle childs(
        ::CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE, 0, &security, OPEN_EXISTING, 0, nullptr), program);
    return {std::move(own), std::move(childs)};
}

Handle inheritableCopy(File const& file, std::string const& program) {
    HANDLE copy = nullptr;
    HANDLE const self = ::GetCurrentProcess();
    ::DuplicateHandle(self, reinterpret_cast<HANDLE>(file.native()), self, &copy, 0, TRUE, DUPLICATE_SAME_ACCESS);
    return Handle(copy, program);
}

Handle nowhere(std::string const& program) {
    SECURITY_ATTRIBUTES security = inheritable();
    return Handle(
        ::CreateFileW(L"NUL", GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, &security, OPEN_EXISTING, 0, nullptr),
        program);
}

// The only handles that the child inherits, whatever else is inheritable.
class HandleList {
public:
    HandleList(std::array<HANDLE, 3> handles, std::string const& program) : handles_(handles) {
        SIZE_T size = 0;
        ::InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
        memory_.resize(size);
        bool const isMade = ::InitializeProcThreadAttributeList(get(), 1, 0, &size) &&
                            ::UpdateProcThreadAttribute(get(), 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, handles_.data(),
                                sizeof handles_, nullptr, nullptr);
        if (!isMade) throwSystemFailure("cannot start", program);
    }
    HandleList(HandleList const&) = delete;
    HandleList& operator=(HandleList const&) = delete;
    ~HandleList() { ::DeleteProcThreadAttributeList(get()); }
    LPPROC_THREAD_ATTRIBUTE_LIST get() noexcept {
        return reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(memory_.data());
    }

private:
    std::array<HANDLE, 3> handles_;
    std::vector<std::byte> memory_;
};

// Ends its process when the last handle to it is closed, which happens at the latest when this process ends. A crash
// shows no window.
Handle newJob(std::string const& program) {
    Handle job(::CreateJobObjectW(nullptr, nullptr), program);
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
    limits.BasicLimitInformation.LimitFlags =
        JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE | JOB_OBJECT_LIMIT_DIE_ON_UNHANDLED_EXCEPTION;
    ::SetInformationJobObject(job.get(), JobObjectExtendedLimitInformation, &limits, sizeof limits);
    return job;
}

// INFINITE is the largest number.
DWORD waitOf(std::chrono::milliseconds patience) {
    return static_cast<DWORD>(std::min<std::int64_t>(patience.count(), INFINITE - 1));
}

struct Started {
    Handle process;
    Handle job;
    DWORD id;
};

Started start(std::string const& program, HANDLE pipe, File const& file) {
    Handle const given = inheritableCopy(file, program);
    Handle const errors = nowhere(program);
    HandleList list({pipe, given.get(), errors.get()}, program);
    STARTUPINFOEXW startup{};
    startup.StartupInfo.cb = sizeof startup;
    startup.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
    startup.StartupInfo.hStdInput = pipe;
    startup.StartupInfo.hStdOutput = pipe;
    startup.StartupInfo.hStdError = errors.get();
    startup.lpAttributeList = list.get();
    std::wstring const path = toPath(program).wstring();
    std::wstring command = L"\"" + path + L"\" " + std::to_wstring(reinterpret_cast<std::uintptr_t>(given.get()));
    // Suspended until it belongs to the job.
    constexpr DWORD flags =
        CREATE_SUSPENDED | CREATE_NO_WINDOW | CREATE_NEW_PROCESS_GROUP | EXTENDED_STARTUPINFO_PRESENT;
    Handle job = newJob(program);
    PROCESS_INFORMATION made{};
    if (!::CreateProcessW(
            path.c_str(), command.data(), nullptr, nullptr, TRUE, flags, nullptr, nullptr, &startup.StartupInfo, &made))
        throwSystemFailure("cannot start", program);
    Handle process(made.hProcess, program);
    Handle const thread(made.hThread, program);
    ::AssignProcessToJobObject(job.get(), process.get());
    ::ResumeThread(thread.get());
    return {std::move(process), std::move(job), made.dwProcessId};
}

}

struct ChildProcess::State {
    State(std::string const& program, File const& file) : State(connect(program), program, file) {}
    State(Connection connection, std::string const& program, File const& file)
        : pipe(std::move(connection.own)), transferred(::CreateEventW(nullptr, TRUE, FALSE, nullptr), program),
          child(start(program, connection.childs.get(), file)) {}
    State(State const&) = delete;
    State& operator=(State const&) = delete;
    // Also where the process could not be put into the job.
    ~State() { ::TerminateProcess(child.process.get(), 1); }

    // Waits for an operation that was begun; nothing passed unless it is done.
    Transfer finish(bool isBegun, OVERLAPPED& operation, DWORD& passed, std::chrono::milliseconds patience) const {
        if (!isBegun && ::GetLastError() != ERROR_IO_PENDING) return Transfer::ended;
        bool const isSilent = ::WaitForSingleObject(transferred.get(), waitOf(patience)) != WAIT_OBJECT_0;
        if (isSilent) ::CancelIoEx(pipe.get(), &operation);
        bool const isDone = ::GetOverlappedResult(pipe.get(), &operation, &passed, TRUE) && passed > 0;
        if (isDone) return Transfer::done;
        return isSilent ? Transfer::silent : Transfer::ended;
    }

    // Calls `begin` until all the bytes are transferred.
    template <typename Bytes, typename Begin>
    Transfer transfer(Bytes bytes, std::chrono::milliseconds patience, Begin begin) const {
        while (!bytes.empty()) {
            OVERLAPPED operation{};
            operation.hEvent = transferred.get();
            DWORD passed = 0;
            bool const isBegun = begin(bytes.first(std::min(bytes.size(), largestTransfer)), operation);
            auto const outcome = finish(isBegun, operation, passed, patience);
            if (outcome != Transfer::done) return outcome;
            bytes = bytes.subspan(passed);
        }
        return Transfer::done;
    }

    Handle pipe;
    Handle transferred;
    Started child;
};

ChildProcess::ChildProcess(std::string const& program, File const& file)
    : state_(std::make_unique<State>(program, file)) {}

ChildProcess::~ChildProcess() = default;

Transfer ChildProcess::write(std::span<std::byte const> bytes, std::chrono::milliseconds patience) {
    return state_->transfer(bytes, patience, [this](std::span<std::byte const> part, OVERLAPPED& operation) {
        return ::WriteFile(state_->pipe.get(), part.data(), static_cast<DWORD>(part.size()), nullptr, &operation) != 0;
    });
}

Transfer ChildProcess::read(std::span<std::byte> bytes, std::chrono::milliseconds patience) {
    return state_->transfer(bytes, patience, [this](std::span<std::byte> part, OVERLAPPED& operation) {
        return ::ReadFile(state_->pipe.get(), part.data(), static_cast<DWORD>(part.size()), nullptr, &operation) != 0;
    });
}

std::uint64_t ChildProcess::id() const noexcept {
    return state_->child.id;
}

void prepareAsChild(std::uint64_t memory) {
    ::_setmode(::_fileno(stdin), _O_BINARY);
    ::_setmode(::_fileno(stdout), _O_BINARY);
    ::SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    // A job within the parent's; its handle stays open as long as the process.
    HANDLE const job = ::CreateJobObjectW(nullptr, nullptr);
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_PROCESS_MEMORY;
    limits.ProcessMemoryLimit = static_cast<SIZE_T>(memory);
    ::SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof limits);
    ::AssignProcessToJobObject(job, ::GetCurrentProcess());
}

File inheritedFile(std::string const& number) {
    return File::adopt(static_cast<std::intptr_t>(std::stoull(number)), "the file");
}

}
