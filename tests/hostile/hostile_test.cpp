// Inputs made to hurt are answered by one clear line and exit code 1, in bounded memory and time, and change nothing.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>

#include "inputs.hpp"
#include "program.hpp"

namespace {

using hostile::input;
using hostile::outcome;
using hostile::run_ymap;

constexpr size_t megabytes = 512;
constexpr unsigned seconds = 60;  // far more than is needed, for machines that are busy

class scratch_file {
 public:
  explicit scratch_file(const std::string &text)
      : name_(testing::TempDir() + "ymap-hostile-" + std::to_string(getpid()) + ".in") {
    std::ofstream(name_, std::ios::binary) << text;
  }
  ~scratch_file() {
    (void)std::remove(name_.c_str());
    (void)std::remove((name_ + ".lock").c_str());
  }
  scratch_file(const scratch_file &) = delete;
  scratch_file &operator=(const scratch_file &) = delete;

  const std::string &name() const {
    return name_;
  }
  std::string text() const {
    std::ifstream stream(name_, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
  }

 private:
  std::string name_;
};

std::string name_of(const testing::TestParamInfo<input> &row) {
  return row.param.name;
}

void expect_refused(const std::string &arguments, const scratch_file &file, const input &row) {
  const outcome result = run_ymap(arguments, megabytes, seconds);
  EXPECT_EQ("ymap: " + file.name() + row.message + "\n", result.errors) << "ymap " << arguments;
  EXPECT_EQ(1, result.exit_code) << "ymap " << arguments;
  EXPECT_EQ(row.text, file.text()) << "ymap " << arguments;
}

class HostileRequest : public testing::TestWithParam<input> {};

TEST_P(HostileRequest, IsRefused) {
  const scratch_file file(GetParam().text);
  expect_refused("request --operation edit " + file.name(), file, GetParam());
  expect_refused("edit --dry-run --device " YMAP_EXAMPLES "/device.xml " + file.name(), file, GetParam());
}

INSTANTIATE_TEST_SUITE_P(All, HostileRequest, testing::ValuesIn(hostile::client_inputs()), name_of);

class HostileNativeData : public testing::TestWithParam<input> {};

TEST_P(HostileNativeData, IsRefused) {
  const scratch_file file(GetParam().text);
  expect_refused("reply " + file.name(), file, GetParam());
  expect_refused("get --device " + file.name() + " //interface", file, GetParam());
  expect_refused("edit --device " + file.name() + " " YMAP_EXAMPLES "/set-mac.json", file, GetParam());
}

INSTANTIATE_TEST_SUITE_P(All, HostileNativeData, testing::ValuesIn(hostile::native_inputs()), name_of);

// A leaf of 16 megabytes, or of as many as the environment says, through a pipe. What is printed of it is short.
size_t leaf_megabytes() {
  const char *given = std::getenv("YMAP_HOSTILE_MEGABYTES");
  return given != nullptr ? std::strtoul(given, nullptr, 10) : 16;
}

struct LongLeaf {
  const char *name;
  const char *arguments;
  hostile::frame (*frame)();
  int exit_code;
  const char *message;  // a part of it
};

class HostileLeaf : public testing::TestWithParam<LongLeaf> {};

// Memory is at most eight times the leaf, and time linear.
TEST_P(HostileLeaf, TakesMemoryInProportion) {
  const hostile::frame around = GetParam().frame();
  const outcome result = run_ymap(GetParam().arguments, megabytes + 8 * leaf_megabytes(),
                                  seconds + static_cast<unsigned>(leaf_megabytes()), [&](std::FILE *to) {
                                    const std::string chunk(1 << 20, 'x');
                                    (void)std::fputs(around.before.c_str(), to);
                                    for (size_t i = 0; i < leaf_megabytes(); ++i) {
                                      (void)std::fwrite(chunk.data(), 1, chunk.size(), to);
                                    }
                                    (void)std::fputs(around.after.c_str(), to);
                                  });
  EXPECT_EQ(GetParam().exit_code, result.exit_code);
  EXPECT_NE(std::string::npos, result.errors.find(GetParam().message)) << result.errors.substr(0, 1000);
  EXPECT_GT(2000, result.errors.size());
}

INSTANTIATE_TEST_SUITE_P(
    All, HostileLeaf,
    testing::Values(
        LongLeaf{"XmlRequest", "request --operation edit -", hostile::client_xml, 1, "x...', expected a string"},
        LongLeaf{"JsonRequest", "request --operation edit -", hostile::client_json, 1, "x...', expected a string"},
        LongLeaf{"XmlReply", "reply -", hostile::native_xml, 0, "/speed: is omitted: "},
        LongLeaf{"JsonReply", "reply -", hostile::native_json, 0, "/speed: is omitted: "}),
    [](const auto &row) { return std::string(row.param.name); });

}  // namespace
