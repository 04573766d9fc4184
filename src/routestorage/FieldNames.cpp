#include "routestorage/FieldNames.h"

namespace cubes::routestorage {

namespace {

constexpr char quote = '"';

bool isBlank(char c) {
    return static_cast<unsigned char>(c) <= ' ';
}

/// Splits a list from its beginning.
class List {
public:
    explicit List(std::string_view text) : rest_(text) { skipBlanks(); }

    bool isEmpty() const { return rest_.empty(); }

    std::string takeName() {
        std::string name;
        while (!rest_.empty() && rest_.front() != ',' && !isBlank(rest_.front()))
            rest_.front() == quote ? takeQuoted(name) : takeCharacter(name);
        return name;
    }

    /// Returns whether there was a comma.
    bool takeSeparator() {
        skipBlanks();
        if (rest_.empty() || rest_.front() != ',') return false;
        rest_.remove_prefix(1);
        skipBlanks();
        return true;
    }

private:
    void skipBlanks() {
        while (!rest_.empty() && isBlank(rest_.front())) rest_.remove_prefix(1);
    }

    void takeCharacter(std::string& name) {
        name += rest_.front();
        rest_.remove_prefix(1);
    }

    void takeQuoted(std::string& name) {
        rest_.remove_prefix(1);
        while (!rest_.empty()) {
            bool const isQuote = rest_.front() == quote;
            if (isQuote) rest_.remove_prefix(1);
            bool const isDoubled = isQuote && !rest_.empty() && rest_.front() == quote;
            if (isQuote && !isDoubled) return;
            takeCharacter(name);
        }
    }

    std::string_view rest_;
};

}

std::vector<std::string> splitFieldNames(std::string_view text) {
    std::vector<std::string> names;
    List list(text);
    // There is no empty name before the first comma.
    list.takeSeparator();
    while (!list.isEmpty()) {
        names.push_back(list.takeName());
        list.takeSeparator();
    }
    return names;
}

}
