#include "BadFile.h"

#include <random>

namespace cubes::tool {

namespace {

// Characters with a meaning in one of the formats, digits, and a few others.
std::string const alphabet = "0123456789+-.eE,;:\"<>~\t\r\n naninf\xEF\xBB\xBF" + std::string(1, '\0');

class Mutations {
public:
    explicit Mutations(unsigned seed) : random_(seed) {}

    std::string of(std::string text) {
        for (std::size_t left = 1 + below(4); left > 0 && !text.empty(); --left) mutate(text);
        return text;
    }

private:
    std::size_t below(std::size_t bound) { return random_() % bound; }

    void mutate(std::string& text) {
        auto const place = below(text.size());
        char const letter = alphabet[below(alphabet.size())];
        switch (below(5)) {
        case 0:
            text[place] = letter;
            break;
        case 1:
            text.insert(place, 1, letter);
            break;
        case 2:
            text.erase(place, 1 + below(5));
            break;
        case 3:
            text.resize(place);
            break;
        default:
            text.insert(place, text.substr(below(text.size()), below(20)));
        }
    }

    std::mt19937 random_;
};

struct Outcomes {
    int read = 0;
    int refused = 0;
};

// Reads the mutated files; any result other than a table or a FormatError fails the test.
Outcomes readMutations(std::string const& fileName, std::string const& good) {
    test::TempDir const directory;
    auto const path = directory.file(fileName);
    Mutations mutations(20240517);
    Outcomes outcomes;
    for (int i = 0; i < 300; ++i) {
        test::writeFile(path, mutations.of(good));
        try {
            auto const table = readTripTable(path);
            EXPECT_EQ(table.cells.size(), table.zones.size() * table.zones.size());
            EXPECT_TRUE(std::is_sorted(table.zones.begin(), table.zones.end()));
            ++outcomes.read;
        } catch (FormatError const& error) {
            std::string const message = error.what();
            EXPECT_TRUE(message.starts_with("line ") || message.starts_with("it ")) << message;
            ++outcomes.refused;
        }
    }
    return outcomes;
}

}

TEST(Mutations, ofALongCsvAreAcceptedOrRefused) {
    auto const outcomes = readMutations("t.csv", "origin,destination,value\n1,2,3.5\n2,1,0.25\n\"3\",3,1e3\n");
    EXPECT_GT(outcomes.read, 10);
    EXPECT_GT(outcomes.refused, 10);
}

TEST(Mutations, ofAWideCsvAreAcceptedOrRefused) {
    auto const outcomes = readMutations("t.csv", "zone,1,2,3\n1,0,3.5,7\n2,\"0.25\",1,1\n3,0,0,1e3\n");
    EXPECT_GT(outcomes.read, 10);
    EXPECT_GT(outcomes.refused, 10);
}

TEST(Mutations, ofTntpAreAcceptedOrRefused) {
    auto const outcomes = readMutations("t.tntp", "<NUMBER OF ZONES> 3\n<TOTAL OD FLOW> 6.25\n<END OF METADATA>\n\n"
                                                  "~ by hand\nOrigin 1\n 1 : 0.5; 2 : 1.75;\nOrigin 3\n 2 : 4;\n");
    EXPECT_GT(outcomes.read, 10);
    EXPECT_GT(outcomes.refused, 10);
}

}
