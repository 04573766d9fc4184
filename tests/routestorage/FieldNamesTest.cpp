#include "routestorage/FieldNames.h"

#include <gtest/gtest.h>

namespace cubes::routestorage {
namespace {

using Names = std::vector<std::string>;

struct List {
    char const* text;
    Names names;
};

void PrintTo(List const& list, std::ostream* out) {
    *out << testing::PrintToString(list.text);
}

class FieldNames : public testing::TestWithParam<List> {};

TEST_P(FieldNames, areSplit) {
    EXPECT_EQ(splitFieldNames(GetParam().text), GetParam().names) << GetParam().text;
}

INSTANTIATE_TEST_SUITE_P(lists, FieldNames,
    testing::Values(List{"", {}}, List{" \t", {}}, List{"a", {"a"}}, List{"a,b,c", {"a", "b", "c"}},
        List{"a, b", {"a", "b"}}, List{" a ,\t b\n", {"a", "b"}}, List{"a b", {"a", "b"}}, List{"a \r\n b", {"a", "b"}},
        List{"a\x01"
             "b",
            {"a", "b"}},
        List{"a\x7f"
             "b",
            {"a\x7f"
             "b"}},
        // An empty name occurs only between two commas.
        List{"a,,b", {"a", "", "b"}}, List{"a, ,b", {"a", "", "b"}}, List{"a,,,b", {"a", "", "", "b"}},
        List{",a", {"a"}}, List{"a,", {"a"}}, List{",", {}}, List{",,", {""}}, List{"a,, ", {"a", ""}},
        // A quoted text is one name.
        List{"\"a,b\",c", {"a,b", "c"}}, List{"\"a b\" c", {"a b", "c"}}, List{"\" a \"", {" a "}},
        List{"\"a\"\"b\"", {"a\"b"}}, List{"\"\"\"\"", {"\""}}, List{"x\"a b\"y", {"xa by"}},
        List{"a,\"\",b", {"a", "", "b"}}, List{"\"a\" , \"b\"", {"a", "b"}},
        // A missing closing mark extends the name to the end.
        List{"a,\"b,c d", {"a", "b,c d"}}, List{"a,\"", {"a", ""}},
        List{"\xc3\xa9t\xc3\xa9,\xff", {"\xc3\xa9t\xc3\xa9", "\xff"}}));

}
}
