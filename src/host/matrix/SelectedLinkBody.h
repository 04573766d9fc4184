#pragma once

#include "host/matrix/Body.h"

#include <cubes/matrix/TRkVLSelectedLinkMatrix.h>

#include <memory>
#include <optional>
#include <string>

namespace cubes::matrix {

/// A selected-link matrix, new or opened from its file.
class SelectedLinkBody : public Body, public TRkVLSelectedLinkMatrix {
public:
    /// For a new file, or for none. Creates the temporary file, so that a directory that cannot be written to is
    /// reported at once. REQUIRES: the header outlives this object.
    SelectedLinkBody(std::string file, TRkMatrixHeader const& header);
    SelectedLinkBody(std::string file, TRkMatrixHeader const& header, OpenedFile opened);

    char const* FileName() const noexcept override { return Body::FileName(); }
    void Add(int row, int column, float value) override;
    void Flush() const override;

    float* row(int row) override { return elements_->row(row); }
    float* writableRow(int row) override;
    float* all() override { return elements_->all(); }
    float* writableAll() override;
    void assign(TRkMatrixHeader const& header, float const* elements) override;
    bool release() override;
    void finish(TRkMatrixHeader const& header) override;
    bool isIntact() override;

private:
    void publish() const;

    TRkMatrixHeader const& header_;
    std::unique_ptr<FileBody> elements_;
    // Created beforehand for a new file; used by the first attempt to write it.
    mutable std::optional<StagedFile> staged_;
    bool isNew_;
    mutable bool hasFile_;
    mutable bool isChanged_ = false;
};

}
