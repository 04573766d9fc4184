#include <cubes/project/TRkGlobalSettings.h>

TRkGlobalSettings::TRkGlobalSettings(TRkFString matrixDirectory, TRkFString workingDirectory)
    : matrixDirectory_(std::move(matrixDirectory)), workingDirectory_(std::move(workingDirectory)) {}

TRkObject* TRkGlobalSettings::Get(char const* key) const {
    if (!key) return nullptr;
    auto const found = objects_.find(std::string_view(key));
    return found == objects_.end() ? nullptr : found->second;
}

void TRkGlobalSettings::Set(char const* key, TRkObject* value) {
    if (!key) return;
    if (value)
        objects_[key] = value;
    else
        objects_.erase(key);
}
