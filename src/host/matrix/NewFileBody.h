#pragma once

#include "host/matrix/Body.h"
#include "host/platform/TemporaryFile.h"

#include <memory>
#include <optional>
#include <string>

namespace cubes::matrix {

/// A matrix for a new file. Its elements are in memory while they are filled by rows; the file
/// takes its place when all are assigned, or at the end.
class NewFileBody : public Body {
public:
    /// Makes the temporary file, so that a place where nothing can be written is known at once.
    NewFileBody(std::string file, int rows, int columns);

    float* row(int row) override;
    float* writableRow(int row) override;
    float* all() override;
    void assign(TRkMatrixHeader const& header, float const* elements) override;
    bool release() override;
    void finish(TRkMatrixHeader const& header) override;

private:
    MemoryElements& memory();
    void publish(TRkMatrixHeader const& header, float const* elements);

    int rows_;
    int columns_;
    std::optional<platform::TemporaryFile> temporary_;
    std::unique_ptr<MemoryElements> memory_;
    std::optional<FileBody> published_;
    bool filled_ = false;
};

}
