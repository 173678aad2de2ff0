// Manifests: what is read of a sound one, and what is said of others.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

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
        RefusedRow{"OtherAbi", R"({"abi-version": 2})", 0, "/abi-version",
                   "'2' is not the version of this framework, 1"},
        RefusedRow{"NoAbi", "{}", 0, "", "needs the number 'abi-version'"},
        RefusedRow{"NoObject", "[]", 0, "", "is not an object"},
        RefusedRow{"UnknownMember", R"({"abi-version": 1, "list": []})", 0, "", "unknown member 'list'"},
        RefusedRow{"NoArray", R"({"abi-version": 1, "lists": {}})", 0, "/lists", "is not an array"},
        RefusedRow{"Direction", R"({"abi-version": 1, "defaults": [{"direction": "up", "at": "/", "function": "f"}]})",
                   0, "/defaults[0]", "direction 'up' is neither 'ox' nor 'xo'"},
        RefusedRow{"NoText", R"({"abi-version": 1, "lists": [{"high": "/a", "high-key": 1, "low": "/b"}]})", 0,
                   "/lists[0]", "needs the text 'high-key'"},
        RefusedRow{"Syntax", "{\n\"abi-version\": 1,\n]", 3, "", "not JSON: Missing a name for object member."}),
    [](const auto &row) { return std::string(row.param.name); });

}  // namespace
