#pragma once

#include <cubes/Export.h>
#include <cubes/text/AnsiString.h>
#include <cubes/text/TRkString.h>

#include <string>

/// The text of a file path, split at its last delimiter ("\" or "/") into a directory part
/// and a file part. A value type; only the file operations access the file system.
///
/// Operations with a name: empty or null means the path itself, any other name an entry of
/// Path(). File operations return whether they succeeded and never throw.
class CUBES_API TRkFString {
public:
    TRkFString() = default;
    /// A null pointer gives the empty path.
    TRkFString(char const* text);
    TRkFString(std::string text);
    /// `asDirectory`: the text names a directory, see Directory().
    TRkFString(TRkString const& text, bool asDirectory = false);
    TRkFString(AnsiString const& text, bool asDirectory = false);

    /// A path that names the directory alone: its text ends in exactly one native delimiter,
    /// so that the text followed by a file name is a full path. Empty stays empty.
    static TRkFString Directory(std::string const& text);

    char const* c_str() const noexcept { return text_.c_str(); }
    std::string const& str() const noexcept { return text_; }
    int Length() const noexcept { return static_cast<int>(text_.size()); }
    bool IsEmpty() const noexcept { return text_.empty(); }
    operator TRkString() const { return TRkString(text_); }

    /// The directory part, up to and including the last delimiter; empty when there is none.
    TRkString Path() const;
    /// The file part with its extension.
    TRkString File() const;
    void SetPath(char const* path);
    /// Replaces the file part's name, that is all before its extension.
    void SetName(char const* name);
    /// Replaces the file part's extension, which begins at its last point.
    void SetExtension(char const* extension);

    /// Whether a file or directory of that name exists.
    bool Exists(char const* name = nullptr) const;
    /// Creates the directory with all missing levels; true for an existing one.
    bool MkDir(char const* name = nullptr) const;
    /// Removes a directory: with its content when `withContent`, or only an empty one.
    bool RmDir(bool withContent, char const* name = nullptr) const;
    /// Copies the file, or the directory with its content, to `target`. Replaces an existing
    /// target file when `overwrite`, and returns false otherwise.
    bool CopyTo(char const* target, bool overwrite) const;
    /// Deletes a regular file; false for anything else, which stays.
    bool RmFile(char const* name = nullptr) const;

    /// Whether both texts name the same file: made absolute, lexically normalised, separators
    /// unified, letter case ignored on Windows only. Links are not followed. An empty path
    /// is the same as none.
    bool IsSameFile(TRkFString const& other) const;

    friend bool operator==(TRkFString const&, TRkFString const&) = default;

private:
    TRkString Inside(char const* name) const;

    std::string text_;
};
