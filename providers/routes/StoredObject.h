#pragma once

#include "Border.h"
#include "StoredFile.h"

#include <cubes/routestorage/RouteStorageInterface.h>

#include <optional>

namespace cubes::routes {

/// What route sets and route data have in common: a file by name, its stamp, and its content in memory
/// while it is open. A Content has the `kind` of its files, is empty by default, and has read(file, record),
/// write(file) and describe(record), which sets its ids.
template <typename Interface, typename Content>
class StoredObject : public Counted<Interface> {
public:
    explicit StoredObject(char const* fileName) : fileName_(fileName) {}

    void open(long mode, VL::Interface::SettingsInterface*) final {
        content_.reset();
        answering("open", [&] {
            openAs(mode & 0xFF);
            return VL::Interface::rrDone;
        });
    }
    char const* getFileName() const final { return fileName_.c_str(); }
    void setCubeType(int cubeType) final {
        Stamp changed = stamp_;
        changed.cubeType = cubeType;
        setStamp(changed);
    }
    void setKey(short purpose, short mode, short time, short user, short result, short iteration) final {
        Stamp changed = stamp_;
        changed.key = Key{purpose, mode, time, user, result, iteration};
        setStamp(changed);
    }
    VL::Interface::RouteResult commit() final {
        return answering("write", [&] {
            write(changing());
            return VL::Interface::rrDone;
        });
    }

protected:
    template <typename Operation>
    VL::Interface::RouteResult answering(char const* action, Operation operation) const noexcept {
        return answer(action, fileName_, VL::Interface::rrFailed, operation);
    }
    /// For operations that return a number.
    template <typename Operation>
    std::int64_t counting(Operation operation) const noexcept {
        return answer("count in", fileName_, std::int64_t{VL::Interface::rrFailed}, operation);
    }

    Content const& content() const {
        if (!content_) throw std::runtime_error("it is not open");
        return *content_;
    }
    Content& changing() {
        if (content(); !isForAdding_) throw std::runtime_error("it is open for reading only");
        return *content_;
    }
    std::string const& fileName() const noexcept { return fileName_; }

private:
    void openAs(long mode) {
        switch (mode) {
        case VL::Interface::romRead:
            return openExisting(false);
        case VL::Interface::romExtend:
            return openExisting(true);
        case VL::Interface::romCreate:
            return create();
        default:
            throw std::runtime_error("unknown mode " + std::to_string(mode));
        }
    }

    void create() {
        Content empty;
        place_ = {};
        write(empty);
        hold(std::move(empty), true);
    }

    void openExisting(bool forAdding) {
        Content read = readFile();
        if (!stamp_.cubeType) stamp_.cubeType = inFile_.cubeType;
        if (!stamp_.key) stamp_.key = inFile_.key;
        hold(std::move(read), forAdding);
    }

    /// The content of the file, whose stamp and record become known.
    Content readFile() {
        std::optional<Content> read;
        readStoredFile(fileName_, Content::kind, [&](hdf5::GuardedFile const& file, FileRoot const& root) {
            read = Content::read(file, root.record);
            requireRecorded(*read, root.record.content);
            inFile_ = root.stamp;
            place_ = root.record.stamp;
        });
        return *std::move(read);
    }

    static void requireRecorded(Content const& content, hdf5::Id128 const& recorded) {
        hdf5::IndexRecord found;
        content.describe(found);
        if (recorded.isKnown() && found.content != recorded)
            throw std::runtime_error(
                hdf5::reasonOfDamage("it") + "; restore it, or accept the change by deleting its dataset /cubes_index");
    }

    void hold(Content content, bool forAdding) {
        content_ = std::move(content);
        isForAdding_ = forAdding;
    }

    void write(Content& content) {
        FileRoot root{stamp_, {}};
        root.record.stamp = place_;
        content.describe(root.record);
        writeStoredFile(fileName_, Content::kind, root, [&](hid_t file) { content.write(file); });
        inFile_ = stamp_;
    }

    // An open file gets the stamp at once, with the content that it has: that in memory is not yet committed.
    void setStamp(Stamp const& changed) {
        answering("change the key of", [&] {
            stamp_ = changed;
            bool const isInFile = content_ && isForAdding_;
            if (!isInFile || inFile_ == changed) return VL::Interface::rrDone;
            Content stored = readFile();
            write(stored);
            return VL::Interface::rrDone;
        });
    }

    std::string fileName_;
    Stamp stamp_;
    /// The stamp and the record of the file, as far as they are known.
    Stamp inFile_;
    hdf5::FileStamp place_;
    std::optional<Content> content_;
    bool isForAdding_ = false;
};

}
