// Paths of data nodes as people and clients write them.
#include <gtest/gtest.h>

#include "library.hpp"
#include "yfw/instance_path.hpp"

namespace {

struct PathRow {
  const char *name, *path, *read;  // the path that is read, in plain form, or the error
};

class InstancePath : public testing::TestWithParam<PathRow> {};

TEST_P(InstancePath, IsReadOrRejected) {
  std::string read;
  const std::string fault =
      thrown_by([&] { read = yfw::path_text(yfw::read_instance_path(GetParam().path, library())); });
  EXPECT_EQ(fault.empty() ? read : fault, GetParam().read);
}

#define FORM(path) "'" path "' is not a path of the form /list[key='value']/leaf: "

INSTANTIATE_TEST_SUITE_P(
    Rows, InstancePath,
    testing::Values(
        PathRow{"Leaf", "/library/name", "/library/name"},
        PathRow{"ModuleNames", "/library:library/library:name", "/library/name"},
        PathRow{"ModulePrefix", "/lib:library/name", "/library/name"},
        PathRow{"Keys", "/library/book[title='Emma'][edition='1']/shop:price",
                "/library/book[title='Emma'][edition='1']/price"},
        PathRow{"KeysInAnyForm", "/library/book[ lib:edition = \"1\" ] [title='a/b]\"']/genre",
                "/library/book[edition='1'][title='a/b]\"']/genre"},
        PathRow{"EmptyKey", "/library/book[title=''][edition='1']", "/library/book[title=''][edition='1']"},
        PathRow{"Ambiguous", "/library/book[title='Emma'][edition='1']/price",
                "'/library/book[title='Emma'][edition='1']/price' is ambiguous, expected "
                "'/library:library/book/price' or '/library:library/book/shop:price'"},
        PathRow{"Misspelt", "/library/bok/price",
                "/library/bok: 'bok' is not a child of '/library'; did you mean 'book'?"},
        PathRow{"OtherModule", "/library:library/shop:name",
                "/library/name: 'shop:name' is not a child of '/library'; 'name' is defined in module 'library'"},
        PathRow{"MissingKey", "/library/book[title='Emma']/genre",
                "/library/book[title='Emma']/genre: key 'edition' of 'book' is missing, expected [edition='…']"},
        PathRow{"KeyTwice", "/library/book[title='a'][title='b'][edition='1']",
                "/library/book[title='a'][title='b'][edition='1']: key 'title' of 'book' is given twice"},
        PathRow{"UnknownKey", "/library/book[titel='Emma']",
                "/library/book[titel='Emma']: 'titel' is not a key of 'book'; did you mean 'title'?"},
        PathRow{"KeyOfALeaf", "/library/name[x='1']", "/library/name[x='1']: 'x' is not a key of 'name'"},
        PathRow{"NoSlash", "library/name", FORM("library/name") "it does not begin with '/'"},
        PathRow{"SlashAtTheEnd", "/library/", FORM("/library/") "a slash is not followed by a name"},
        PathRow{"Descendants", "//name", FORM("//name") "a slash is not followed by a name"},
        PathRow{"AnyName", "/library/*", FORM("/library/*") "'*' is not a name"},
        PathRow{"Position", "/library/book[1]", FORM("/library/book[1]") "'[1]' is not [key='value']"},
        PathRow{"NoQuotes", "/library/book[title=x]",
                FORM("/library/book[title=x]") "the value in '[title=x]' is not "
                                               "in quotes"},
        PathRow{"OpenQuote", "/library/book[title='x]", FORM("/library/book[title='x]") "a quote is not closed"},
        PathRow{"OpenBracket", "/library/book[title='x'",
                FORM("/library/book[title='x'") "'[title='x'' is not "
                                                "[key='value']"}),
    [](const auto &row) { return std::string(row.param.name); });

TEST(InstancePathOptions, AllowListsWithoutKeysButNotWithSome) {
  const auto read = [](const char *path) {
    return yfw::path_text(yfw::read_instance_path(path, library(), {}, yfw::path_keys::optional));
  };
  EXPECT_EQ(read("/library/book/genre"), "/library/book/genre");
  EXPECT_NE(thrown_by([&] { (void)read("/library/book[title='Emma']/genre"); }), "");
}

TEST(InstancePathOptions, PreferTheClientModel) {
  const auto is_of_shop = [](const lysc_node *node) { return yfw::module_name(node) == "shop"; };
  const auto steps = yfw::read_instance_path("/library/book/price", library(), is_of_shop, yfw::path_keys::optional);
  EXPECT_EQ(yfw::qualified_path(steps.back().node), "/library:library/book/shop:price");
}

}  // namespace
