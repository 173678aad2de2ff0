// Manifests: what is read of a sound one, and what is said of others.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "library.hpp"
#include "yfw/error.hpp"
#include "yfw/manifest.hpp"

namespace {

class ManifestFile {
 public:
  explicit ManifestFile(const std::string &text)
      : path_(std::filesystem::temp_directory_path() / ("manifest-" + std::to_string(getpid()) + ".json")) {
    std::ofstream(path_) << text;
  }
  ~ManifestFile() {
    std::filesystem::remove(path_);
  }
  ManifestFile(const ManifestFile &) = delete;
  ManifestFile &operator=(const ManifestFile &) = delete;

  const std::filesystem::path &path() const {
    return path_;
  }

 private:
  std::filesystem::path path_;
};

TEST(Manifest, KeepsWhatItSays) {
  const ManifestFile file(R"({"abi-version": 1,
    "entry-points": [{"direction": "xo", "module": "store", "at": "/", "function": "walk"}],
    "lists": [{"high": "/shop/shelf", "high-key": "name", "low": "/depot/rack", "low-key": "id"}],
    "defaults": [{"direction": "ox", "at": "/shop/shelf", "function": "create"}]})");
  const yfw::manifest read = yfw::manifest::read(file.path());
  ASSERT_EQ(1U, read.entry_points.size());
  EXPECT_EQ(yfw::direction::xo, read.entry_points[0].dir);
  EXPECT_EQ("store", read.entry_points[0].module);
  EXPECT_EQ("walk", read.entry_points[0].function);
  ASSERT_EQ(1U, read.defaults.size());
  EXPECT_EQ(yfw::direction::ox, read.defaults[0].dir);
  ASSERT_NE(nullptr, read.pair_of_low("/depot/rack"));
  EXPECT_EQ("name", read.pair_of_low("/depot/rack")->high_key);
  EXPECT_EQ(nullptr, read.pair_of_low("/shop/shelf"));
}

struct RefusedRow {
  const char *name, *text;
  unsigned line;
  const char *path, *message;
};

class RefusedManifest : public testing::TestWithParam<RefusedRow> {};

TEST_P(RefusedManifest, SaysWhereAndWhy) {
  const ManifestFile file(GetParam().text);
  try {
    (void)yfw::manifest::read(file.path());
    FAIL() << "was accepted";
  } catch (const yfw::error &refusal) {
    EXPECT_EQ(file.path().string(), refusal.where().file);
    EXPECT_EQ(GetParam().line, refusal.where().line);
    EXPECT_EQ(GetParam().path, refusal.where().path);
    EXPECT_EQ(GetParam().message, refusal.text());
  }
}

INSTANTIATE_TEST_SUITE_P(
    Rows, RefusedManifest,
    testing::Values(
        RefusedRow{"OtherAbi", R"({"abi-version": 2})", 0, "/abi-version", "invalid ABI version '2', expected '1'"},
        RefusedRow{"NoAbi", "{}", 0, "", "requires a number 'abi-version'"},
        RefusedRow{"NoObject", "[]", 0, "", "is not an object"},
        RefusedRow{"UnknownMember", R"({"abi-version": 1, "list": []})", 0, "", "unknown member 'list'"},
        RefusedRow{"NoArray", R"({"abi-version": 1, "lists": {}})", 0, "/lists", "is not an array"},
        RefusedRow{"Direction", R"({"abi-version": 1, "defaults": [{"direction": "up", "at": "/", "function": "f"}]})",
                   0, "/defaults[0]", "invalid direction 'up', expected 'ox', 'xo'"},
        RefusedRow{"NoText", R"({"abi-version": 1, "lists": [{"high": "/a", "high-key": 1, "low": "/b"}]})", 0,
                   "/lists[0]", "requires a string 'high-key'"},
        RefusedRow{"Syntax", "{\n\"abi-version\": 1,\n]", 3, "", "not JSON: Missing a name for object member."}),
    [](const auto &row) { return std::string(row.param.name); });

// Both modules of the library have nodes of the plain paths /library, /library/shelf and /library/visit, all of which
// are served: the list is meant.
TEST(ManifestInModules, IsFound) {
  const yfw::manifest sound = yfw::manifest::parse(R"({"abi-version": 1,
    "entry-points": [{"direction": "ox", "module": "library", "at": "/", "function": "f"},
                     {"direction": "ox", "module": "shop", "at": "/", "function": "f"},
                     {"direction": "ox", "module": "shop", "at": "/library/book", "function": "f"}],
    "lists": [{"high": "/library/book", "high-key": "edition", "low": "/library/visit", "low-key": "minutes"},
              {"high": "/library/shelf", "high-key": "number", "low": "/library/visit", "low-key": "minutes"}],
    "defaults": [{"direction": "ox", "at": "/library/visit", "function": "f"}]})",
                                                   "m.json");
  EXPECT_EQ("", thrown_by([&] { check_manifest(sound, library(), "m.json"); }));
}

struct MisplacedRow {
  const char *name;
  yfw::manifest description;
  const char *message;
};

class MisplacedManifest : public testing::TestWithParam<MisplacedRow> {};

TEST_P(MisplacedManifest, SaysWhereAndWhatIsRight) {
  EXPECT_EQ(std::string("m.json: ") + GetParam().message,
            thrown_by([] { check_manifest(GetParam().description, library(), "m.json"); }));
}

yfw::manifest entry(const std::string &module, const std::string &at) {
  return {{{yfw::direction::ox, "shop", "/", "f"}, {yfw::direction::xo, module, at, "f"}}, {}, {}};
}
yfw::manifest pair(const std::string &high, const std::string &high_key, const std::string &low,
                   const std::string &low_key) {
  return {{}, {{high, high_key, low, low_key}}, {}};
}

INSTANTIATE_TEST_SUITE_P(
    Rows, MisplacedManifest,
    testing::Values(
        MisplacedRow{"Module", entry("libary", "/"),
                     "/entry-points[1]/module: unknown module 'libary'; did you mean 'library'?"},
        MisplacedRow{"OtherModule", entry("garden", "/"), "/entry-points[1]/module: unknown module 'garden'"},
        MisplacedRow{"At", entry("shop", "/library/boo"),
                     "/entry-points[1]/at: module 'shop' has no nodes below '/library/boo', expected '/', "
                     "'/library/book'"},
        MisplacedRow{"AtTooDeep", entry("library", "/library/book/loan/reader"),
                     "/entry-points[1]/at: module 'library' has no nodes below '/library/book/loan/reader', expected "
                     "'/'"},
        MisplacedRow{"High", pair("/library/bok", "title", "/library/visit", "minutes"),
                     "/lists[0]/high: '/library/bok' is not in the modules: 'bok' is not a child of '/library'; did "
                     "you mean 'book'?"},
        MisplacedRow{
            "FirstOfHigh", pair("/garden/bed", "title", "/library/visit", "minutes"),
            "/lists[0]/high: '/garden/bed' is not in the modules: 'garden' is not a top-level node of the modules"},
        MisplacedRow{"NoSlash", pair("library/book", "title", "/library/visit", "minutes"),
                     "/lists[0]/high: 'library/book' is not in the modules: it does not begin with '/'"},
        MisplacedRow{"HighKey", pair("/library/book", "titel", "/library/visit", "minutes"),
                     "/lists[0]/high-key: 'titel' is not a key of '/library/book', expected 'title', 'edition'"},
        MisplacedRow{"NoList", pair("/library/book", "title", "/library", "name"),
                     "/lists[0]/low: '/library' is not a list"},
        MisplacedRow{"LowKey", pair("/library/book", "title", "/library/visit", "hours"),
                     "/lists[0]/low-key: 'hours' is not a key of '/library/visit', expected 'minutes'"},
        MisplacedRow{"LeafAsKey", pair("/library/book", "price", "/library/visit", "minutes"),
                     "/lists[0]/high-key: 'price' is not a key of '/library/book', expected 'title', 'edition'"},
        MisplacedRow{"Defaults", yfw::manifest{{}, {}, {{yfw::direction::xo, "/library/book/loan", "f"}}},
                     "/defaults[0]/at: '/library/book/loan' is not a list"}),
    [](const auto &row) { return std::string(row.param.name); });

}  // namespace
